#include <tqbase2/system/Exception.h>

#include <boost/core/demangle.hpp>
#include <boost/exception/get_error_info.hpp>
#include <boost/exception/info.hpp>

#include <typeinfo>

namespace tqbase2::system {

namespace {

/// The exception's own type: boost::throw_exception throws it wrapped into one that knows the place.
std::string typeOf(const Exception& exception) {
    const std::string wrapper = "boost::wrapexcept<";
    const std::string name = boost::core::demangle(typeid(exception).name());
    return name.rfind(wrapper, 0) == 0 ? name.substr(wrapper.size(), name.size() - wrapper.size() - 1) : name;
}

}  // namespace

std::string extractErrorMessage(const Exception& exception) {
    std::string message = typeOf(exception);
    if (std::string(exception.what()) != std::exception().what()) {
        message += std::string(": ") + exception.what();
    }
    const auto* const file = boost::get_error_info<boost::throw_file>(exception);
    const auto* const line = boost::get_error_info<boost::throw_line>(exception);
    const auto* const function = boost::get_error_info<boost::throw_function>(exception);
    if (file != nullptr && line != nullptr && function != nullptr) {
        message += std::string(" at ") + *file + ':' + std::to_string(*line) + " in " + *function;
    }
    return message;
}

}  // namespace tqbase2::system

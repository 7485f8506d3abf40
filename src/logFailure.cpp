#include "logFailure.h"

#include <businesslogic/zel/createStr.h>
#include <nsa/zel/logging.h>
#include <tqbase2/system/Exception.h>

namespace lgb {

namespace logging = tqbase2::nsa::zel::logging;

void logFailure(const char* operation, const tqbase2::system::Exception& exception) {
    if (tqbase2::system::log::detail::isEnabled(logging::error, logging::channel)) {
        tqbase2::system::log::detail::log(
            logging::error, logging::channel,
            businesslogic::zel::createStr(operation, ' ', tqbase2::system::extractErrorMessage(exception)));
    }
}

}  // namespace lgb

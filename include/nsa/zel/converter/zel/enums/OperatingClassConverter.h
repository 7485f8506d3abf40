#pragma once

#include <nsa/zel/converter/zel/enums/conversion.h>
#include <nsa/zel/enums/OperatingClass.h>

namespace tqbase2::nsa::zel::enums {

/// OperatingClass to its JSON spelling and back.
class OperatingClassConverter {
public:
    using type = OperatingClass;  ///< What is converted.

    /// @throws system::LogicError, without logging, for a number outside the enumeration
    static Json::Value fromValToJsonValue(const type& value) {
        return conversion::toJson(spelling(operatingClassSpellings, value), {file, __LINE__, BOOST_CURRENT_FUNCTION});
    }

    /// @param value compared whole and case-sensitively; null and the empty string read as the first enumerator
    /// @throws system::LogicError, logged at level 4, for another spelling; Json::LogicError for an array or object
    static type fromJsonToVal(const Json::Value& value) {
        return conversion::fromJson<type>(operatingClassSpellings, value, {file, __LINE__, BOOST_CURRENT_FUNCTION});
    }

private:
    static constexpr const char* file = "converter/zel/enums/OperatingClassConverter.h";
};

}  // namespace tqbase2::nsa::zel::enums

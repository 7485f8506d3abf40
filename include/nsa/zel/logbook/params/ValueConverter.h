#pragma once

#include <nsa/zel/export.h>

#include <string>

/// Readers of parameter records.
namespace tqbase2::nsa::zel::logbook::params {

/// Reads the "value" member of a parameter record.
class TQZEL_EXPORT ValueConverter {
public:
    /// @param params text of a parameter record
    /// @return the member as a string, empty when it is missing
    /// @throws what the platform's JSON parser throws for text that is not JSON, and Json::LogicError for a value
    ///         without a string form
    static std::string fromJsonToVal(const std::string& params);
};

}  // namespace tqbase2::nsa::zel::logbook::params

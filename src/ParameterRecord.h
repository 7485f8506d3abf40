#pragma once

#include <json/value.h>

#include <optional>
#include <string>

namespace lgb {

/// The parameter record of one entry on its way through text making: its text is parsed at first need, once, and what
/// all places of a message and the service detail read is the same value. For one thread.
class ParameterRecord {
public:
    /// @param recordText must outlive the record
    explicit ParameterRecord(const std::string& recordText) : text(recordText) {}

    /// The member of a key, null when it is missing.
    /// @throws what the platform's JSON parser throws; Json::LogicError for a text that is not an object
    const Json::Value& operator[](const char* key) const;

private:
    const std::string& text;
    mutable std::optional<Json::Value> parsed;
};

}  // namespace lgb

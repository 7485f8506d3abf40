#pragma once

#include <json/value.h>

#include <cstdint>
#include <optional>
#include <string>

namespace lgb {

/// A place in a message that the parameter record fills in.
enum class Place : std::uint8_t {
    OnOff,
    PowerUnit,
    GroupNr,
    DefectiveFan,
    WorkingFan,
    Bus,
    Module,
    Version,
    ProductType,
    Value,
    OperatingClass,
    Path,
    OutputMode,
    InterlockMode,
    Role,
    Nr,
};

/// The parameter record of one entry on its way through text making: its text is parsed at first need, once, and what
/// all fragments and the service detail read is the same value. For one thread.
class ParameterRecord {
public:
    /// @param recordText must outlive the record
    explicit ParameterRecord(const std::string& recordText) : text(recordText) {}

    /// The member of a key, null when it is missing.
    /// @throws what the platform's JSON parser throws; Json::LogicError for a text that is not an object
    const Json::Value& operator[](const char* key) const;

    /// A place as it reads in a message.
    /// @throws as above; Json::LogicError or system::LogicError for a member that can't be read as the place needs it
    std::string shown(Place place) const;

private:
    const std::string& text;
    mutable std::optional<Json::Value> parsed;
};

}  // namespace lgb

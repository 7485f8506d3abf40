#pragma once

#include "keys.h"

#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace Json {
class Value;
}

namespace lgb {

/// A place in the words of a message, `{module}`, that a member of the parameter record fills in.
struct Place {
    std::string_view name;
    const char* key;
    const char* holds;  // what the member is, for people
    /// How the member reads in a message.
    /// @throws Json::LogicError or system::LogicError for a member that can't be read so
    std::string (*shown)(const Json::Value& member);
};

namespace shown {

std::string onOff(const Json::Value& on);
std::string powerUnit(const Json::Value& watt);
std::string groupNr(const Json::Value& group);
std::string defectiveFan(const Json::Value& ok);
std::string workingFan(const Json::Value& ok);
std::string number(const Json::Value& value);
std::string word(const Json::Value& value);
std::string operatingClass(const Json::Value& value);
std::string outputMode(const Json::Value& value);
std::string interlockMode(const Json::Value& value);
std::string role(const Json::Value& value);

}  // namespace shown

// clang-format off
inline constexpr Place places[] = {
    {"module",         keys::module,         "number",                                shown::number},
    {"bus",            keys::bus,            "number",                                shown::number},
    {"onOff",          keys::on,             "boolean",                               shown::onOff},
    {"powerUnit",      keys::watt,           "boolean",                               shown::powerUnit},
    {"group",          keys::group,          "number counting from 0",                shown::groupNr},
    {"defectiveFan",   keys::ok,             "boolean",                               shown::defectiveFan},
    {"workingFan",     keys::ok,             "boolean",                               shown::workingFan},
    {"version",        keys::version,        "text",                                  shown::word},
    {"type",           keys::type,           "text",                                  shown::word},
    {"value",          keys::value,          "text",                                  shown::word},
    {"path",           keys::path,           "text",                                  shown::word},
    {"operatingClass", keys::operatingClass, "AB, step1 to step8, A",                 shown::operatingClass},
    {"outputMode",     keys::outputMode,     "VSWR, increased1 to increased9, Power", shown::outputMode},
    {"interlockMode",  keys::interlockMode,  "interactive, automatic",                shown::interlockMode},
    {"role",           keys::role,           "unit, device",                          shown::role},
    {"nr",             keys::nr,             "number",                                shown::number},
};

// clang-format on

/// Where the place of a name stands in the table; behind its end for a name that isn't there.
constexpr std::size_t indexOfPlace(std::string_view name) {
    std::size_t index = 0;
    while (index < std::size(places) && places[index].name != name) {
        ++index;
    }
    return index;
}

}  // namespace lgb

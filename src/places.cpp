#include "places.h"

#include <businesslogic/zel/onOffStr.h>
#include <lgb/params.h>
#include <nsa/zel/converter/zel/enums/InterlockModeConverter.h>
#include <nsa/zel/converter/zel/enums/OperatingClassConverter.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/converter/zel/enums/SystemConfigRoleConverter.h>

#include <json/value.h>

#include <cstdint>

namespace lgb::shown {

namespace enums = tqbase2::nsa::zel::enums;

std::string onOff(const Json::Value& on) {
    return businesslogic::zel::onOffStr(on.asBool());
}

std::string powerUnit(const Json::Value& watt) {
    return watt.asBool() ? "W" : "dBm";
}

/// Groups are stored counting from 0 and shown counting from 1. The largest stored number wraps, as its two's
/// complement does.
std::string groupNr(const Json::Value& group) {
    const auto next = static_cast<std::uint64_t>(group.asInt64()) + 1;
    return std::to_string(static_cast<std::int64_t>(next));
}

std::string defectiveFan(const Json::Value& ok) {
    return ok.asBool() ? "1" : "0";
}

std::string workingFan(const Json::Value& ok) {
    return ok.asBool() ? "0" : "1";
}

std::string number(const Json::Value& value) {
    return std::to_string(value.asUInt64());
}

std::string word(const Json::Value& value) {
    return value.asString();
}

std::string operatingClass(const Json::Value& value) {
    return params::OperatingClassStr(enums::OperatingClassConverter::fromJsonToVal(value));
}

std::string outputMode(const Json::Value& value) {
    return params::OutputModeStr(enums::OutputModeConverter::fromJsonToVal(value));
}

std::string interlockMode(const Json::Value& value) {
    const auto mode = enums::InterlockModeConverter::fromJsonToVal(value);
    return std::string(enums::spelling(enums::interlockModeSpellings, mode));
}

std::string role(const Json::Value& value) {
    const auto role = enums::SystemConfigRoleConverter::fromJsonToVal(value);
    return std::string(enums::spelling(enums::systemConfigRoleSpellings, role));
}

}  // namespace lgb::shown

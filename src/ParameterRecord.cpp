#include "ParameterRecord.h"

#include "keys.h"

#include <businesslogic/zel/onOffStr.h>
#include <lgb/params.h>
#include <nsa/zel/converter/zel/enums/InterlockModeConverter.h>
#include <nsa/zel/converter/zel/enums/OperatingClassConverter.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/converter/zel/enums/SystemConfigRoleConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <cstddef>

namespace lgb {

namespace enums = tqbase2::nsa::zel::enums;

namespace {

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

struct Reading {
    Place place;
    const char* key;
    std::string (*shown)(const Json::Value& member);
};

// clang-format off
constexpr Reading readings[] = {
    {Place::OnOff,          keys::on,             onOff},
    {Place::PowerUnit,      keys::watt,           powerUnit},
    {Place::GroupNr,        keys::group,          groupNr},
    {Place::DefectiveFan,   keys::ok,             defectiveFan},
    {Place::WorkingFan,     keys::ok,             workingFan},
    {Place::Bus,            keys::bus,            number},
    {Place::Module,         keys::module,         number},
    {Place::Version,        keys::version,        word},
    {Place::ProductType,    keys::type,           word},
    {Place::Value,          keys::value,          word},
    {Place::OperatingClass, keys::operatingClass, operatingClass},
    {Place::Path,           keys::path,           word},
    {Place::OutputMode,     keys::outputMode,     outputMode},
    {Place::InterlockMode,  keys::interlockMode,  interlockMode},
    {Place::Role,           keys::role,           role},
    {Place::Nr,             keys::nr,             number},
};

// clang-format on

constexpr bool indexIsPlace() {
    std::size_t index = 0;
    for (const Reading& reading : readings) {
        if (static_cast<std::size_t>(reading.place) != index++) {
            return false;
        }
    }
    return index == static_cast<std::size_t>(Place::Nr) + 1;
}

static_assert(indexIsPlace(), "one row a place, in the order of the places");

}  // namespace

const Json::Value& ParameterRecord::operator[](const char* key) const {
    if (!parsed) {
        parsed = tqbase2::system::JsonUtility::toJsonValue(text);
    }
    return static_cast<const Json::Value&>(*parsed)[key];
}

std::string ParameterRecord::shown(Place place) const {
    const Reading& reading = readings[static_cast<std::size_t>(place)];
    return reading.shown((*this)[reading.key]);
}

}  // namespace lgb

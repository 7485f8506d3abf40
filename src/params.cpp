#include "keys.h"

#include <lgb/params.h>
#include <nsa/zel/converter/zel/enums/InterlockModeConverter.h>
#include <nsa/zel/converter/zel/enums/OperatingClassConverter.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/converter/zel/enums/SystemConfigRoleConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <cstdint>
#include <initializer_list>
#include <utility>

namespace lgb::params {

using namespace tqbase2::nsa::zel::enums;

namespace {

std::string record(std::initializer_list<std::pair<const char*, Json::Value>> members) {
    Json::Value object;
    for (const auto& [key, value] : members) {
        object[key] = value;
    }
    return tqbase2::system::JsonUtility::toJsonString(object);
}

// Json::Value has an overload for each width of integer; naming the width keeps 32 and 64 bit machines alike.
Json::Value number(unsigned int value) {
    return Json::UInt64{value};
}

}  // namespace

std::string createOn(bool on) {
    return record({{keys::on, on}});
}

std::string createWatt(bool watt) {
    return record({{keys::watt, watt}});
}

std::string createGroup(int group) {
    return record({{keys::group, Json::Int64{group}}});
}

std::string createFans(bool ok) {
    return record({{keys::ok, ok}});
}

std::string createBusModule(unsigned int bus, unsigned int module) {
    return record({{keys::bus, number(bus)}, {keys::module, number(module)}});
}

std::string createVersion(const std::string& version) {
    return record({{keys::version, version}});
}

std::string createType(const std::string& type) {
    return record({{keys::type, type}});
}

std::string createValue(const std::string& value) {
    return record({{keys::value, value}});
}

std::string createService(const std::string& service) {
    return record({{keys::service, service}});
}

std::string createBusModuleAndService(unsigned int bus, unsigned int module, const std::string& service) {
    return record({{keys::bus, number(bus)}, {keys::module, number(module)}, {keys::service, service}});
}

std::string createOperatingClass(OperatingClass operatingClass) {
    return record({{keys::operatingClass, OperatingClassConverter::fromValToJsonValue(operatingClass)}});
}

std::string createPathAndOperatingClass(const std::string& path, OperatingClass operatingClass) {
    return record(
        {{keys::path, path}, {keys::operatingClass, OperatingClassConverter::fromValToJsonValue(operatingClass)}});
}

std::string createOutputMode(OutputMode outputMode) {
    return record({{keys::outputMode, OutputModeConverter::fromValToJsonValue(outputMode)}});
}

std::string createPathAndOutputMode(const std::string& path, OutputMode outputMode) {
    return record({{keys::path, path}, {keys::outputMode, OutputModeConverter::fromValToJsonValue(outputMode)}});
}

std::string createInterlockMode(InterlockMode interlockMode) {
    return record({{keys::interlockMode, InterlockModeConverter::fromValToJsonValue(interlockMode)}});
}

std::string createRoleWithNr(SystemConfigRole role, unsigned int nr) {
    return record({{keys::role, SystemConfigRoleConverter::fromValToJsonValue(role)}, {keys::nr, number(nr)}});
}

std::string createValueAndService(const std::string& value, const std::string& service) {
    return record({{keys::value, value}, {keys::service, service}});
}

std::string OutputModeStr(OutputMode outputMode) {
    switch (outputMode) {
        case OutputMode::Vswr:
            return "High VSWR";
        case OutputMode::Power:
            return "High Power";
        default:
            return std::to_string(static_cast<std::int32_t>(outputMode));
    }
}

std::string OperatingClassStr(OperatingClass operatingClass) {
    switch (operatingClass) {
        case OperatingClass::AB:
        case OperatingClass::A:
            return std::string(spelling(operatingClassSpellings, operatingClass));
        default:
            return std::to_string(static_cast<std::int32_t>(operatingClass));
    }
}

}  // namespace lgb::params

#include "fragments.h"

#include <lgb/commontexts.h>

namespace lgb::commontexts {

const char* const forPdStr = "for power detector";
const char* const failedStr = "failed";
const char* const forAmpStr = "for amplifier";
const char* const forPabStr = "for power supply";
const char* const rfPathStr = "RF-Path";

namespace {

std::string located(const char* what, const ParameterRecord& params) {
    return std::string(what) + ' ' + ModuleOnBus(params);
}

std::string failedPlace(const std::string& place) {
    return std::string(failedStr) + ' ' + place;
}

}  // namespace

std::string OnOff(const ParameterRecord& params) {
    return params.shown(Place::OnOff);
}

std::string GroupNrExtern(const ParameterRecord& params) {
    return params.shown(Place::GroupNr);
}

std::string ModuleOnBus(const ParameterRecord& params) {
    const std::string module = params.shown(Place::Module);
    return module + " on bus " + params.shown(Place::Bus);
}

std::string ForPd(const ParameterRecord& params) {
    return located(forPdStr, params);
}

std::string FailedForPd(const ParameterRecord& params) {
    return failedPlace(ForPd(params));
}

std::string ForAmp(const ParameterRecord& params) {
    return located(forAmpStr, params);
}

std::string FailedForAmp(const ParameterRecord& params) {
    return failedPlace(ForAmp(params));
}

std::string ForPab(const ParameterRecord& params) {
    return located(forPabStr, params);
}

std::string FailedForPab(const ParameterRecord& params) {
    return failedPlace(ForPab(params));
}

std::string OnOff(const std::string& params) {
    return OnOff(ParameterRecord(params));
}

std::string GroupNrExtern(const std::string& params) {
    return GroupNrExtern(ParameterRecord(params));
}

std::string Reduced(tqbase2::nsa::zel::enums::LogbookEntryType type) {
    return type == tqbase2::nsa::zel::enums::LogbookEntryType::Warning ? reduced : "";
}

std::string OutOfR(const std::string& what) {
    return what + " out of range";
}

std::string failed() {
    return std::string(" ") + failedStr;
}

std::string Setting(const std::string& what) {
    return what.empty() ? "Setting" : "Setting " + what;
}

std::string ModuleOnBus(const std::string& params) {
    return ModuleOnBus(ParameterRecord(params));
}

std::string ForPd(const std::string& params) {
    return ForPd(ParameterRecord(params));
}

std::string FailedForPd(const std::string& params) {
    return FailedForPd(ParameterRecord(params));
}

std::string ForAmp(const std::string& params) {
    return ForAmp(ParameterRecord(params));
}

std::string FailedForAmp(const std::string& params) {
    return FailedForAmp(ParameterRecord(params));
}

std::string ForPab(const std::string& params) {
    return ForPab(ParameterRecord(params));
}

std::string FailedForPab(const std::string& params) {
    return FailedForPab(ParameterRecord(params));
}

}  // namespace lgb::commontexts

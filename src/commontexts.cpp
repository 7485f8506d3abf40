#include "Message.h"

#include <lgb/commontexts.h>

namespace lgb::commontexts {

const char* const forPdStr = "for power detector";
const char* const failedStr = "failed";
const char* const forAmpStr = "for amplifier";
const char* const forPabStr = "for power supply";
const char* const rfPathStr = "RF-Path";

std::string OnOff(const std::string& params) {
    return compose("{onOff}", params);
}

std::string GroupNrExtern(const std::string& params) {
    return compose("{group}", params);
}

std::string Reduced(tqbase2::nsa::zel::enums::LogbookEntryType type) {
    return type == tqbase2::nsa::zel::enums::LogbookEntryType::Warning ? " reduced RF Power" : "";
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
    return compose("{module} on bus {bus}", params);
}

std::string ForPd(const std::string& params) {
    return compose("for power detector {module} on bus {bus}", params);
}

std::string FailedForPd(const std::string& params) {
    return compose("failed for power detector {module} on bus {bus}", params);
}

std::string ForAmp(const std::string& params) {
    return compose("for amplifier {module} on bus {bus}", params);
}

std::string FailedForAmp(const std::string& params) {
    return compose("failed for amplifier {module} on bus {bus}", params);
}

std::string ForPab(const std::string& params) {
    return compose("for power supply {module} on bus {bus}", params);
}

std::string FailedForPab(const std::string& params) {
    return compose("failed for power supply {module} on bus {bus}", params);
}

}  // namespace lgb::commontexts

#include "Message.h"
#include "fragments.h"
#include "texts.h"

#include <lgb/ErrorTextCreator.h>

namespace lgb {

namespace {

using namespace commontexts;

std::string value(const ParameterRecord& params) {
    return params.shown(Place::Value);
}

std::string productType(const ParameterRecord& params) {
    return params.shown(Place::ProductType);
}

std::string version(const ParameterRecord& params) {
    return params.shown(Place::Version);
}

std::string powerUnit(const ParameterRecord& params) {
    return params.shown(Place::PowerUnit);
}

std::string outputMode(const ParameterRecord& params) {
    return params.shown(Place::OutputMode);
}

std::string operatingClass(const ParameterRecord& params) {
    return params.shown(Place::OperatingClass);
}

std::string systemBusInterrupted(const std::string& where, const ParameterRecord& params) {
    return "Interrupted System Bus (X102) before " + where + ' ' + value(params);
}

std::string interruptedBeforeUnit(const ParameterRecord& params) {
    return systemBusInterrupted("unit", params);
}

std::string interruptedBeforeDevice(const ParameterRecord& params) {
    return systemBusInterrupted("device", params);
}

std::string invalidConfiguration(const ParameterRecord& params) {
    const std::string role = params.shown(Place::Role);
    return "Invalid configuration for " + role + ' ' + params.shown(Place::Nr);
}

// clang-format off
constexpr Message messages[] = {
    {  3, "Temperature below average ",                        ForAmp},
    {  4, "Temperature above average ",                        ForAmp},
    {  9, "Setting POTI ",                                     FailedForAmp},
    { 10, "Setting to OFF ",                                   FailedForAmp},
    { 13, "Setting to Operate 1 ",                             FailedForAmp},
    { 15, "Self-Protection occurred ",                         ForAmp},
    { 17, "RF can not be activated with invalid system cfg"},
    { 28, "Inconsistent firmware versions"},
    { 62, "Too high driver current ",                          ForAmp},
    { 67, "Invalid device cfg! Wrong amplifier ",              ModuleOnBus},
    { 68, "Invalid device cfg! Wrong power det. ",             ModuleOnBus},
    { 73, "Voltage out of range ",                             ForPab},
    { 77, "Bias-Current-Cal. ",                                FailedForAmp},
    { 79, "Detected all fans to be defective"},
    { 80, "Too high input level ",                             ForAmp},
    { 82, "Switching ",                                        FailedForPab},
    { 83, "Too high amp-input ",                               ForAmp},

    {100, "Bias-Current-Calibration failed"},
    {131, "Invalid device cfg! Wrong power supply ",           ModuleOnBus},

    {203, "Setting AMPL_ON failed for bus ",                   value},
    {205, "Too high pre driver current ",                      ForAmp},
    {207, "Setting vGateCha3024 ",                             FailedForAmp},
    {208, "Setting vGateHmc998 ",                              FailedForAmp},
    {209, "Setting vGateHmc994 ",                              FailedForAmp},
    {211, "Setting of RfCtrlVdd ",                             FailedForAmp},
    {212, "Setting of VDD_1 ",                                 FailedForAmp},
    {213, "Setting of VDD_2 ",                                 FailedForAmp},
    {237, "Connecting failed"},
    {238, "Connection lost"},
    {258, "Invalid Product Type ",                             productType},
    {259, "Incompatible Firmware ",                            version},
    {260, "Start not finished"},
    {261, "Not in REMOTE mode"},
    {262, "Acquiring exclusive lock failed"},
    {263, "Initialization failed"},
    {264, "Cyclic check failed"},
    {265, "Setting Automatic Standby to ",                     OnOff,                    " failed"},
    {266, "Setting Fan Control Mode to ",                      value,                    " failed"},
    {267, "Turning RF ",                                       OnOff,                    " failed"},
    {268, "Setting Power Unit to ",                            powerUnit,                " failed"},
    {269, "Setting Mute Ready to ",                            OnOff,                    " failed"},
    {270, "Selecting of RF-Path Group ",                       GroupNrExtern,            " failed"},
    {271, "Selecting of RF-Path ",                             GroupNrExtern,            " failed"},
    {272, "Setting Output Mode to ",                           outputMode,               " failed"},
    {273, "Setting Operating Class to ",                       operatingClass,           " failed"},
    {274, "Setting Gain to ",                                  value,                    " failed"},
    {275, "Connecting to unit failed"},
    {276, "Connection to unit lost"},
    {278, "",                                                  interruptedBeforeUnit},
    {279, "",                                                  interruptedBeforeDevice},
    {282, "",                                                  invalidConfiguration},
    {286, "+3.5V out of range ",                               ForAmp},
    {292, "Setting DAC V_G_PRE ",                              FailedForAmp},
    {297, "V_PRE_MON  out of range ",                          ForAmp},

    {301, "PRE_VDD_MON out of range ",                         ForAmp},
    {305, "Too low HMC998 current ",                           ForAmp},
    {306, "Too high HMC998 current ",                          ForAmp},
    {307, "Too low HMC994 current ",                           ForAmp},
    {308, "Too high HMC994 current ",                          ForAmp},
    {309, "Temperature failure ",                              ForAmp},
    {310, "RF input overdrive ",                               ForAmp},
    {311, "-6V failure ",                                      ForAmp},
    {312, "All VDDs out of range for all amplifiers of RF-Path ", GroupNrExtern},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");

}  // namespace

std::string errorText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = find(messages, code.id());
    return message != nullptr ? compose(*message, params) : errorWarningText(code, params);
}

ErrorTextCreator::~ErrorTextCreator() = default;

std::string ErrorTextCreator::create(const code::Code& code, const std::string& params) const {
    return errorText(code, ParameterRecord(params));
}

std::string systemBusErrorMsg(const std::string& where, const std::string& params) {
    return systemBusInterrupted(where, ParameterRecord(params));
}

std::string invalidConfig(const std::string& params) {
    return invalidConfiguration(ParameterRecord(params));
}

}  // namespace lgb

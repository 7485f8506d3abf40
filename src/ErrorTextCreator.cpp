#include "Message.h"
#include "ParameterRecord.h"
#include "texts.h"

#include <lgb/ErrorTextCreator.h>

namespace lgb {

namespace {

constexpr const char* invalidConfiguration = "Invalid configuration for {role} {nr}";

// clang-format off
constexpr Message messages[] = {
    {  3, "Temperature below average for amplifier {module} on bus {bus}"},
    {  4, "Temperature above average for amplifier {module} on bus {bus}"},
    {  9, "Setting POTI failed for amplifier {module} on bus {bus}"},
    { 10, "Setting to OFF failed for amplifier {module} on bus {bus}"},
    { 13, "Setting to Operate 1 failed for amplifier {module} on bus {bus}"},
    { 15, "Self-Protection occurred for amplifier {module} on bus {bus}"},
    { 17, "RF can not be activated with invalid system cfg"},
    { 28, "Inconsistent firmware versions"},
    { 62, "Too high driver current for amplifier {module} on bus {bus}"},
    { 67, "Invalid device cfg! Wrong amplifier {module} on bus {bus}"},
    { 68, "Invalid device cfg! Wrong power det. {module} on bus {bus}"},
    { 73, "Voltage out of range for power supply {module} on bus {bus}"},
    { 77, "Bias-Current-Cal. failed for amplifier {module} on bus {bus}"},
    { 79, "Detected all fans to be defective"},
    { 80, "Too high input level for amplifier {module} on bus {bus}"},
    { 82, "Switching failed for power supply {module} on bus {bus}"},
    { 83, "Too high amp-input for amplifier {module} on bus {bus}"},

    {100, "Bias-Current-Calibration failed"},
    {131, "Invalid device cfg! Wrong power supply {module} on bus {bus}"},

    {203, "Setting AMPL_ON failed for bus {value}"},
    {205, "Too high pre driver current for amplifier {module} on bus {bus}"},
    {207, "Setting vGateCha3024 failed for amplifier {module} on bus {bus}"},
    {208, "Setting vGateHmc998 failed for amplifier {module} on bus {bus}"},
    {209, "Setting vGateHmc994 failed for amplifier {module} on bus {bus}"},
    {211, "Setting of RfCtrlVdd failed for amplifier {module} on bus {bus}"},
    {212, "Setting of VDD_1 failed for amplifier {module} on bus {bus}"},
    {213, "Setting of VDD_2 failed for amplifier {module} on bus {bus}"},
    {237, "Connecting failed"},
    {238, "Connection lost"},
    {258, "Invalid Product Type {type}"},
    {259, "Incompatible Firmware {version}"},
    {260, "Start not finished"},
    {261, "Not in REMOTE mode"},
    {262, "Acquiring exclusive lock failed"},
    {263, "Initialization failed"},
    {264, "Cyclic check failed"},
    {265, "Setting Automatic Standby to {onOff} failed"},
    {266, "Setting Fan Control Mode to {value} failed"},
    {267, "Turning RF {onOff} failed"},
    {268, "Setting Power Unit to {powerUnit} failed"},
    {269, "Setting Mute Ready to {onOff} failed"},
    {270, "Selecting of RF-Path Group {group} failed"},
    {271, "Selecting of RF-Path {group} failed"},
    {272, "Setting Output Mode to {outputMode} failed"},
    {273, "Setting Operating Class to {operatingClass} failed"},
    {274, "Setting Gain to {value} failed"},
    {275, "Connecting to unit failed"},
    {276, "Connection to unit lost"},
    {278, "Interrupted System Bus (X102) before unit {value}"},
    {279, "Interrupted System Bus (X102) before device {value}"},
    {282, invalidConfiguration},
    {286, "+3.5V out of range for amplifier {module} on bus {bus}"},
    {292, "Setting DAC V_G_PRE failed for amplifier {module} on bus {bus}"},
    {297, "V_PRE_MON  out of range for amplifier {module} on bus {bus}"},

    {301, "PRE_VDD_MON out of range for amplifier {module} on bus {bus}"},
    {305, "Too low HMC998 current for amplifier {module} on bus {bus}"},
    {306, "Too high HMC998 current for amplifier {module} on bus {bus}"},
    {307, "Too low HMC994 current for amplifier {module} on bus {bus}"},
    {308, "Too high HMC994 current for amplifier {module} on bus {bus}"},
    {309, "Temperature failure for amplifier {module} on bus {bus}"},
    {310, "RF input overdrive for amplifier {module} on bus {bus}"},
    {311, "-6V failure for amplifier {module} on bus {bus}"},
    {312, "All VDDs out of range for all amplifiers of RF-Path {group}"},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");
static_assert(placesAreKnown(messages), "each {place} is one of those in places.h");

}  // namespace

MessageTable errorMessages() {
    return MessageTable(messages);
}

std::string errorText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = errorMessages().find(code.id());
    return message != nullptr ? compose(message->words, params) : errorWarningText(code, params);
}

ErrorTextCreator::~ErrorTextCreator() = default;

std::string ErrorTextCreator::create(const code::Code& code, const std::string& params) const {
    return errorText(code, ParameterRecord(params));
}

std::string systemBusErrorMsg(const std::string& where, const std::string& params) {
    return "Interrupted System Bus (X102) before " + where + ' ' + ParameterRecord(params)[keys::value].asString();
}

std::string invalidConfig(const std::string& params) {
    return compose(invalidConfiguration, params);
}

}  // namespace lgb

#include "Message.h"
#include "ParameterRecord.h"
#include "texts.h"

#include <lgb/WarningTextCreator.h>

namespace lgb {

namespace {

constexpr const char* defectiveFan = "Detected defective fan {defectiveFan} (with fan {workingFan} ok)";

// clang-format off
constexpr Message messages[] = {
    { 19, "RF can not be activated with open Interlock"},
    { 23, "Mute can not be activated without option Y542"},
    { 70, "High input level for amplifier {module} on bus {bus}"},
    { 78, defectiveFan},
    { 97, "Gate current out of range for amplifier {module} on bus {bus}"},

    {102, "Bias-Curr.-Cal. can not run with open Interlock"},
    {103, "Bias-Curr.-Cal. can not run while RF is on"},
    {104, "Bias-Curr.-Cal. can not run while Self-Test runs"},

    {218, "Unexpected VDD_1 for amplifier {module} on bus {bus}"},
    {219, "Unexpected VDD_2 for amplifier {module} on bus {bus}"},
    {220, "Unexpected VDD_1 for amplifier {module} on bus {bus}"},
    {221, "Unexpected VDD_2 for amplifier {module} on bus {bus}"},
    {222, "Gate current out of range for amplifier {module} on bus {bus}"},
    {223, "Voltage drop for drain switch (VDD_1) for amplifier {module} on bus {bus}"},
    {224, "Voltage drop for drain switch (VDD_2) for amplifier {module} on bus {bus}"},
    {231, "3V6 out of range for amplifier {module} on bus {bus}"},
    {232, "5V25 out of range for amplifier {module} on bus {bus}"},
    {233, "6V_INT out of range for amplifier {module} on bus {bus}"},
    {234, "-5V out of range for amplifier {module} on bus {bus}"},
    {240, "3V3_REF out of range for power detector {module} on bus {bus}"},
    {241, "3V6_INT out of range for power detector {module} on bus {bus}"},
    {242, "5V_REF out of range for power detector {module} on bus {bus}"},
    {243, "6V out of range for power detector {module} on bus {bus}"},
    {250, "ACB 5V out of range"},
    {251, "ACB 5V_FPGA out of range"},
    {252, "ACB 3V5 out of range"},
    {253, "ACB 12V_SWITCHED out of range"},
    {254, "ACB 6V out of range"},
    {255, "ACB 1V8_PL out of range"},
    {256, "ACB -6V out of range"},
    {257, "Too high internal temperature of ACB"},
    {284, "Setting regulated voltage limit  failed for amplifier {module} on bus {bus}"},
    {290, "Setting limit PRE_ODR_REF failed for amplifier {module} on bus {bus}"},
    {291, "Setting temperature limit failed for amplifier {module} on bus {bus}"},
    {298, "Voltage drop for drain switch (VDD_SW_MON) for amplifier {module} on bus {bus}"},

    {300, "-6V-ACB out of range for amplifier {module} on bus {bus}"},
    {303, "+6V-ACB out of range for amplifier {module} on bus {bus}"},
    {304, "+7V out of range for amplifier {module} on bus {bus}"},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");
static_assert(placesAreKnown(messages), "each {place} is one of those in places.h");

}  // namespace

MessageTable warningMessages() {
    return MessageTable(messages);
}

std::string warningText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = warningMessages().find(code.id());
    return message != nullptr ? compose(message->words, params) : errorWarningText(code, params);
}

WarningTextCreator::~WarningTextCreator() = default;

std::string WarningTextCreator::create(const code::Code& code, const std::string& params) const {
    return warningText(code, ParameterRecord(params));
}

std::string getFanText(const std::string& params) {
    return compose(defectiveFan, params);
}

}  // namespace lgb

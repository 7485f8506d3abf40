#include "Message.h"
#include "fragments.h"
#include "texts.h"

#include <lgb/WarningTextCreator.h>

namespace lgb {

namespace {

using namespace commontexts;

std::string defectiveFan(const ParameterRecord& params) {
    const std::string defective = params.shown(Place::DefectiveFan);
    return "Detected defective fan " + defective + " (with fan " + params.shown(Place::WorkingFan) + " ok)";
}

// clang-format off
constexpr Message messages[] = {
    { 19, "RF can not be activated with open Interlock"},
    { 23, "Mute can not be activated without option Y542"},
    { 70, "High input level ",                                 ForAmp},
    { 78, "",                                                  defectiveFan},
    { 97, "Gate current out of range ",                        ForAmp},

    {102, "Bias-Curr.-Cal. can not run with open Interlock"},
    {103, "Bias-Curr.-Cal. can not run while RF is on"},
    {104, "Bias-Curr.-Cal. can not run while Self-Test runs"},

    {218, "Unexpected VDD_1 ",                                 ForAmp},
    {219, "Unexpected VDD_2 ",                                 ForAmp},
    {220, "Unexpected VDD_1 ",                                 ForAmp},
    {221, "Unexpected VDD_2 ",                                 ForAmp},
    {222, "Gate current out of range ",                        ForAmp},
    {223, "Voltage drop for drain switch (VDD_1) ",            ForAmp},
    {224, "Voltage drop for drain switch (VDD_2) ",            ForAmp},
    {231, "3V6 out of range ",                                 ForAmp},
    {232, "5V25 out of range ",                                ForAmp},
    {233, "6V_INT out of range ",                              ForAmp},
    {234, "-5V out of range ",                                 ForAmp},
    {240, "3V3_REF out of range ",                             ForPd},
    {241, "3V6_INT out of range ",                             ForPd},
    {242, "5V_REF out of range ",                              ForPd},
    {243, "6V out of range ",                                  ForPd},
    {250, "ACB 5V out of range"},
    {251, "ACB 5V_FPGA out of range"},
    {252, "ACB 3V5 out of range"},
    {253, "ACB 12V_SWITCHED out of range"},
    {254, "ACB 6V out of range"},
    {255, "ACB 1V8_PL out of range"},
    {256, "ACB -6V out of range"},
    {257, "Too high internal temperature of ACB"},
    {284, "Setting regulated voltage limit  ",                 FailedForAmp},
    {290, "Setting limit PRE_ODR_REF ",                        FailedForAmp},
    {291, "Setting temperature limit ",                        FailedForAmp},
    {298, "Voltage drop for drain switch (VDD_SW_MON) ",       ForAmp},

    {300, "-6V-ACB out of range ",                             ForAmp},
    {303, "+6V-ACB out of range ",                             ForAmp},
    {304, "+7V out of range ",                                 ForAmp},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");

}  // namespace

std::string warningText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = find(messages, code.id());
    return message != nullptr ? compose(*message, params) : errorWarningText(code, params);
}

WarningTextCreator::~WarningTextCreator() = default;

std::string WarningTextCreator::create(const code::Code& code, const std::string& params) const {
    return warningText(code, ParameterRecord(params));
}

std::string getFanText(const std::string& params) {
    return defectiveFan(ParameterRecord(params));
}

}  // namespace lgb

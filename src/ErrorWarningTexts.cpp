#include "Message.h"
#include "fragments.h"
#include "texts.h"

#include <lgb/ErrorWarningTexts.h>

namespace lgb {

using tqbase2::nsa::zel::enums::LogbookEntryType;

namespace {

using namespace commontexts;

// The ending is said of warnings alone: the amplifier goes on, with less power.
// clang-format off
constexpr Message messages[] = {
    {  1, "Too high temperature ",            ForAmp},
    {  6, "Too low current ",                 ForAmp, reduced},
    {  7, "-5V out of range ",                ForAmp},
    { 12, "Setting to Operate 0 ",            FailedForAmp},
    { 14, "Setting attenuation ",             FailedForAmp},
    { 44, "Setting current ",                 FailedForAmp},
    { 63, "Too low driver current ",          ForAmp, reduced},

    {202, "VDD out of range ",                ForAmp, reduced},
    {204, "Too low pre driver current ",      ForAmp, reduced},
    {210, "Setting vGateHmc994 ",             FailedForAmp},
    {214, "6V-Switched out of range ",        ForAmp},
    {215, "VDD_1 out of range ",              ForAmp, reduced},
    {216, "VDD_2 out of range ",              ForAmp, reduced},
    {217, "Unexpected VDD ",                  ForAmp},
    {225, "VD_DRV out of range ",             ForAmp, reduced},
    {226, "VD_PRE_DRV out of range ",         ForAmp, reduced},
    {227, "Setting POTI 0 ",                  FailedForPd},
    {228, "Setting POTI 1 ",                  FailedForPd},
    {235, "Gate current out of range ",       ForAmp},

    {285, "-6V out of range ",                ForAmp},
    {286, "+3.5V out of range ",              ForAmp},
    {287, "+5V out of range ",                ForAmp},
    {288, "VDD_PRE_10V_MON out of range ",    ForAmp},
    {289, "VDD_PRE_15V_MON out of range ",    ForAmp},
    {293, "Setting ZERO_GATE ",               FailedForPd},
    {294, "-3.5V out of range ",              FailedForPd},
    {295, "Unexpected VDD_SW_MON ",           ForAmp},
    {296, "VDD_SW_MON out of range ",         FailedForPd},
    {302, "VDD_MON out of range ",            ForAmp},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");

}  // namespace

std::string errorWarningText(const code::Code& code, const ParameterRecord& params) {
    const Message* const found = find(messages, code.id());
    if (found == nullptr) {
        ModuleOnBus(params);  // unreadable parameters are a failure here too, not an unknown entry
        return unknownEntry;
    }
    Message message = *found;
    if (code.type() != LogbookEntryType::Warning) {
        message.ending = {};
    }
    return compose(message, params);
}

std::string ErrorWarningTexts::getText(const code::Code& code, const std::string& params) const {
    return errorWarningText(code, ParameterRecord(params));
}

}  // namespace lgb

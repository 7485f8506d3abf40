#include "Message.h"
#include "ParameterRecord.h"
#include "texts.h"

#include <lgb/ErrorWarningTexts.h>
#include <lgb/commontexts.h>

namespace lgb {

namespace {

// clang-format off
constexpr Message messages[] = {
    {  1, "Too high temperature for amplifier {module} on bus {bus}"},
    {  6, "Too low current for amplifier {module} on bus {bus}",                       Power::Reduced},
    {  7, "-5V out of range for amplifier {module} on bus {bus}"},
    { 12, "Setting to Operate 0 failed for amplifier {module} on bus {bus}"},
    { 14, "Setting attenuation failed for amplifier {module} on bus {bus}"},
    { 44, "Setting current failed for amplifier {module} on bus {bus}"},
    { 63, "Too low driver current for amplifier {module} on bus {bus}",                Power::Reduced},

    {202, "VDD out of range for amplifier {module} on bus {bus}",                      Power::Reduced},
    {204, "Too low pre driver current for amplifier {module} on bus {bus}",            Power::Reduced},
    {210, "Setting vGateHmc994 failed for amplifier {module} on bus {bus}"},
    {214, "6V-Switched out of range for amplifier {module} on bus {bus}"},
    {215, "VDD_1 out of range for amplifier {module} on bus {bus}",                    Power::Reduced},
    {216, "VDD_2 out of range for amplifier {module} on bus {bus}",                    Power::Reduced},
    {217, "Unexpected VDD for amplifier {module} on bus {bus}"},
    {225, "VD_DRV out of range for amplifier {module} on bus {bus}",                   Power::Reduced},
    {226, "VD_PRE_DRV out of range for amplifier {module} on bus {bus}",               Power::Reduced},
    {227, "Setting POTI 0 failed for power detector {module} on bus {bus}"},
    {228, "Setting POTI 1 failed for power detector {module} on bus {bus}"},
    {235, "Gate current out of range for amplifier {module} on bus {bus}"},

    {285, "-6V out of range for amplifier {module} on bus {bus}"},
    {286, "+3.5V out of range for amplifier {module} on bus {bus}"},
    {287, "+5V out of range for amplifier {module} on bus {bus}"},
    {288, "VDD_PRE_10V_MON out of range for amplifier {module} on bus {bus}"},
    {289, "VDD_PRE_15V_MON out of range for amplifier {module} on bus {bus}"},
    {293, "Setting ZERO_GATE failed for power detector {module} on bus {bus}"},
    {294, "-3.5V out of range failed for power detector {module} on bus {bus}"},
    {295, "Unexpected VDD_SW_MON for amplifier {module} on bus {bus}"},
    {296, "VDD_SW_MON out of range failed for power detector {module} on bus {bus}"},
    {302, "VDD_MON out of range for amplifier {module} on bus {bus}"},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");
static_assert(placesAreKnown(messages), "each {place} is one of those in places.h");

}  // namespace

MessageTable sharedMessages() {
    return MessageTable(messages);
}

std::string errorWarningText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = sharedMessages().find(code.id());
    if (message == nullptr) {
        compose("{module} {bus}", params);  // unreadable parameters are a failure here too, not an unknown entry
        return unknownEntry;
    }
    std::string text = compose(message->words, params);
    if (message->power == Power::Reduced) {
        text += commontexts::Reduced(code.type());
    }
    return text;
}

std::string ErrorWarningTexts::getText(const code::Code& code, const std::string& params) const {
    return errorWarningText(code, ParameterRecord(params));
}

}  // namespace lgb

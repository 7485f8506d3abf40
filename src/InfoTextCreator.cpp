#include "Message.h"
#include "ParameterRecord.h"
#include "texts.h"

#include <lgb/InfoTextCreator.h>

namespace lgb {

namespace {

constexpr const char* outputModeOfPath = "Output Mode of RF-Path \"{path}\" changed to {outputMode}";
constexpr const char* operatingClassOfPath = "Operating Class of RF-Path \"{path}\" changed to {operatingClass}";

// clang-format off
constexpr Message messages[] = {
    { 20, "System restarted"},
    {101, "Bias-Current-Calibration finished"},
    {125, "Mute was activated"},
    {126, "Mute was deactivated"},
    {127, "Interlock 1 ({interlockMode}) was opened"},
    {128, "Interlock 1 ({interlockMode}) was closed"},
    {129, "Interlock 2 ({interlockMode}) was opened"},
    {130, "Interlock 2 ({interlockMode}) was closed"},

    {200, outputModeOfPath},
    {201, operatingClassOfPath},
    {206, "RF was turned off because of opened interlock"},
    {229, "RF was turned on"},
    {230, "RF was turned off"},
    {236, "RF-Path {group} selected"},
    {239, "Connected"},
    {277, "All units connected"},
    {280, "User settings were reset to their factory defaults"},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");
static_assert(placesAreKnown(messages), "each {place} is one of those in places.h");

}  // namespace

MessageTable infoMessages() {
    return MessageTable(messages);
}

std::string infoText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = infoMessages().find(code.id());
    return message != nullptr ? compose(message->words, params) : unknownEntry;
}

InfoTextCreator::~InfoTextCreator() = default;

std::string InfoTextCreator::create(const code::Code& code, const std::string& params) const {
    return infoText(code, ParameterRecord(params));
}

std::string interlock(unsigned int number, const std::string& params, bool opened) {
    return compose("Interlock " + std::to_string(number) + " ({interlockMode}) was " + (opened ? "opened" : "closed"),
                   params);
}

std::string outputMode(const std::string& params) {
    return compose(outputModeOfPath, params);
}

std::string operatingClass(const std::string& params) {
    return compose(operatingClassOfPath, params);
}

}  // namespace lgb

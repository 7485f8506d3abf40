#include "Message.h"
#include "fragments.h"
#include "texts.h"

#include <lgb/InfoTextCreator.h>

namespace lgb {

namespace {

using namespace commontexts;

std::string interlockChange(unsigned int number, const ParameterRecord& params, const char* change) {
    return "Interlock " + std::to_string(number) + " (" + params.shown(Place::InterlockMode) + ") was " + change;
}

std::string interlock1Opened(const ParameterRecord& params) {
    return interlockChange(1, params, "opened");
}

std::string interlock1Closed(const ParameterRecord& params) {
    return interlockChange(1, params, "closed");
}

std::string interlock2Opened(const ParameterRecord& params) {
    return interlockChange(2, params, "opened");
}

std::string interlock2Closed(const ParameterRecord& params) {
    return interlockChange(2, params, "closed");
}

std::string changeOfPath(const ParameterRecord& params, Place changed) {
    const std::string path = params.shown(Place::Path);
    return '"' + path + "\" changed to " + params.shown(changed);
}

std::string outputModeOfPath(const ParameterRecord& params) {
    return "Output Mode of RF-Path " + changeOfPath(params, Place::OutputMode);
}

std::string operatingClassOfPath(const ParameterRecord& params) {
    return "Operating Class of RF-Path " + changeOfPath(params, Place::OperatingClass);
}

// clang-format off
constexpr Message messages[] = {
    { 20, "System restarted"},
    {101, "Bias-Current-Calibration finished"},
    {125, "Mute was activated"},
    {126, "Mute was deactivated"},
    {127, "",                                                  interlock1Opened},
    {128, "",                                                  interlock1Closed},
    {129, "",                                                  interlock2Opened},
    {130, "",                                                  interlock2Closed},

    {200, "",                                                  outputModeOfPath},
    {201, "",                                                  operatingClassOfPath},
    {206, "RF was turned off because of opened interlock"},
    {229, "RF was turned on"},
    {230, "RF was turned off"},
    {236, "RF-Path ",                                          GroupNrExtern,            " selected"},
    {239, "Connected"},
    {277, "All units connected"},
    {280, "User settings were reset to their factory defaults"},
};
// clang-format on

static_assert(idsAscend(messages), "one row an id, ids ascending");

}  // namespace

std::string infoText(const code::Code& code, const ParameterRecord& params) {
    const Message* const message = find(messages, code.id());
    return message != nullptr ? compose(*message, params) : unknownEntry;
}

InfoTextCreator::~InfoTextCreator() = default;

std::string InfoTextCreator::create(const code::Code& code, const std::string& params) const {
    return infoText(code, ParameterRecord(params));
}

std::string interlock(unsigned int number, const std::string& params, bool opened) {
    return interlockChange(number, ParameterRecord(params), opened ? "opened" : "closed");
}

std::string outputMode(const std::string& params) {
    return outputModeOfPath(ParameterRecord(params));
}

std::string operatingClass(const std::string& params) {
    return operatingClassOfPath(ParameterRecord(params));
}

}  // namespace lgb

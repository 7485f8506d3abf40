#include "parameters.h"

#include "validators.h"

#include <nsa/zel/enums/InterlockMode.h>
#include <nsa/zel/enums/OperatingClass.h>
#include <nsa/zel/enums/OutputMode.h>
#include <nsa/zel/enums/SystemConfigRole.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <array>
#include <limits>
#include <string_view>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;

namespace {

Json::Value text(const std::string& value) {
    return value;
}

Json::Value boolean(const std::string& value) {
    return value == "true";
}

Json::Value number(const std::string& value) {
    return Json::Int64{std::stoll(value)};
}

CLI::Validator isAnything() {
    return {};
}

CLI::Validator isBoolean() {
    return oneOf(std::array<std::string_view, 2>{"true", "false"});
}

CLI::Validator isUnsigned() {
    return between<unsigned int>(0, std::numeric_limits<unsigned int>::max());
}

CLI::Validator isGroup() {
    return between(0, std::numeric_limits<int>::max());
}

CLI::Validator isOperatingClass() {
    return oneOf(enums::operatingClassSpellings);
}

CLI::Validator isOutputMode() {
    return oneOf(enums::outputModeSpellings);
}

CLI::Validator isInterlockMode() {
    return oneOf(enums::interlockModeSpellings);
}

CLI::Validator isRole() {
    return oneOf(enums::systemConfigRoleSpellings);
}

struct ParameterOption {
    const char* name;
    const char* key;
    const char* type;
    CLI::Validator (*valid)();
    Json::Value (*value)(const std::string& text);
    const char* help;
};

// clang-format off
constexpr ParameterOption options[] = {
    {"--bus",             "bus",            "NUMBER",                       isUnsigned,       number,  "Bus of the module"},
    {"--module",          "module",         "NUMBER",                       isUnsigned,       number,  "Amplifier, power detector or power supply"},
    {"--group",           "group",          "NUMBER",                       isGroup,          number,  "Group of RF paths, counting from 0"},
    {"--nr",              "nr",             "NUMBER",                       isUnsigned,       number,  "Number of a unit or device"},
    {"--on",              "on",             "true|false",                   isBoolean,        boolean, "Whether it was to be on"},
    {"--ok",              "ok",             "true|false",                   isBoolean,        boolean, "Whether fan 0 is the working one"},
    {"--watt",            "watt",           "true|false",                   isBoolean,        boolean, "Whether power is shown in watt"},
    {"--path",            "path",           "TEXT",                         isAnything,       text,    "Name of an RF path"},
    {"--type",            "type",           "TEXT",                         isAnything,       text,    "Product type"},
    {"--value",           "value",          "TEXT",                         isAnything,       text,    "A value as it is shown"},
    {"--version",         "version",        "TEXT",                         isAnything,       text,    "Firmware version"},
    {"--operating-class", "operatingClass", "AB|step1..step8|A",            isOperatingClass, text,    "Operating class"},
    {"--output-mode",     "outputMode",     "VSWR|increased1..9|Power",     isOutputMode,     text,    "Output mode"},
    {"--interlock-mode",  "interlockMode",  "interactive|automatic",        isInterlockMode,  text,    "Interlock mode"},
    {"--role",            "role",           "unit|device",                  isRole,           text,    "What is configured"},
    {"--service",         "service",        "TEXT",                         isAnything,       text,    "Detail for the service logbook"},
};
// clang-format on

}  // namespace

void declareParameters(CLI::App& command, Parameters& parameters) {
    for (const ParameterOption& option : options) {
        command
            .add_option_function<std::string>(
                option.name,
                [&parameters, &option](const std::string& given) {
                    parameters.members[option.key] = option.value(given);
                },
                option.help)
            ->type_name(option.type)
            ->check(option.valid())
            ->group("Parameters");
    }
    command.add_option("--params", parameters.json, "The whole record, a JSON object; other options add to it")
        ->type_name("JSON")
        ->group("Parameters");
}

std::string recordText(const Parameters& parameters) {
    Json::Value record;
    try {
        record = tqbase2::system::JsonUtility::toJsonValue(parameters.json);
    } catch (const tqbase2::system::Exception& exception) {
        throw CLI::ValidationError("--params", exception.what());
    }
    if (!record.isObject() && !record.isNull()) {
        throw CLI::ValidationError("--params", R"(expected a JSON object such as {"bus":1,"module":3})");
    }
    for (const std::string& key : parameters.members.getMemberNames()) {
        record[key] = parameters.members[key];
    }
    return record.empty() ? "" : tqbase2::system::JsonUtility::toJsonString(record);
}

}  // namespace tool

#include "parameters.h"

#include "validators.h"
#include "words.h"

#include <nsa/zel/enums/InterlockMode.h>
#include <nsa/zel/enums/OperatingClass.h>
#include <nsa/zel/enums/OutputMode.h>
#include <nsa/zel/enums/SystemConfigRole.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <vector>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;

namespace {

constexpr std::int64_t highestNumber = std::numeric_limits<std::uint32_t>::max();
constexpr std::int64_t highestGroup = std::numeric_limits<std::int32_t>::max();

/// A kind of member: how an option takes it, and what --params must hold for it.
struct Kind {
    CLI::Option* (*take)(CLI::Option* option);
    Json::Value (*value)(const std::string& text);
    bool (*isHeldBy)(const Json::Value& value);
    std::string (*expected)();
};

Json::Value textValue(const std::string& text) {
    return text;
}

constexpr Kind anyText{[](CLI::Option* option) { return option->type_name("TEXT"); }, textValue,
                       [](const Json::Value& value) { return value.isString(); }, [] { return std::string("a text"); }};

constexpr Kind boolean{[](CLI::Option* option) {
                           return takeOneOf(option, {"true", "false"});
                       },
                       [](const std::string& given) { return Json::Value(given == "true"); },
                       [](const Json::Value& value) { return value.isBool(); },
                       [] { return std::string("true or false"); }};

template <std::int64_t highest>
constexpr Kind numberUpTo{
    [](CLI::Option* option) { return takeNumber(option, highest); },
    [](const std::string& given) { return Json::Value(Json::Int64{std::stoll(given)}); },
    [](const Json::Value& value) { return value.isInt64() && value.asInt64() >= 0 && value.asInt64() <= highest; },
    [] { return "a number from 0 to " + std::to_string(highest); }};

template <const auto& spellings>
std::vector<std::string> wordsIn() {
    return {spellings.begin(), spellings.end()};
}

template <const auto& spellings>
constexpr Kind wordOf{[](CLI::Option* option) { return takeOneOf(option, wordsIn<spellings>()); }, textValue,
                      [](const Json::Value& value) {
                          return value.isString() &&
                                 std::find(spellings.begin(), spellings.end(), value.asString()) != spellings.end();
                      },
                      [] { return "one of " + listed(wordsIn<spellings>()); }};

struct ParameterOption {
    const char* name;
    const char* key;
    const Kind& kind;
    const char* help;
    const char* shownType = "";  // where its words are too many to be shown
};

// clang-format off
constexpr ParameterOption options[] = {
    {"--bus",             "bus",            numberUpTo<highestNumber>,             "Bus of the module"},
    {"--module",          "module",         numberUpTo<highestNumber>,             "Amplifier, power detector or power supply"},
    {"--group",           "group",          numberUpTo<highestGroup>,              "Group of RF paths, counting from 0"},
    {"--nr",              "nr",             numberUpTo<highestNumber>,             "Number of a unit or device"},
    {"--on",              "on",             boolean,                               "Whether it was to be on"},
    {"--ok",              "ok",             boolean,                               "Whether fan 0 is the working one"},
    {"--watt",            "watt",           boolean,                               "Whether power is shown in watt"},
    {"--path",            "path",           anyText,                               "Name of an RF path"},
    {"--type",            "type",           anyText,                               "Product type"},
    {"--value",           "value",          anyText,                               "A value as it is shown"},
    {"--version",         "version",        anyText,                               "Firmware version"},
    {"--operating-class", "operatingClass", wordOf<enums::operatingClassSpellings>,   "Operating class", "AB|step1..step8|A"},
    {"--output-mode",     "outputMode",     wordOf<enums::outputModeSpellings>,       "Output mode", "VSWR|increased1..increased9|Power"},
    {"--interlock-mode",  "interlockMode",  wordOf<enums::interlockModeSpellings>,    "Interlock mode"},
    {"--role",            "role",           wordOf<enums::systemConfigRoleSpellings>, "What is configured"},
    {"--service",         "service",        anyText,                               "Detail for the service logbook"},
};

// clang-format on

const ParameterOption& optionOf(const std::string& key) {
    const auto* const found = std::find_if(std::begin(options), std::end(options),
                                           [&](const ParameterOption& option) { return option.key == key; });
    if (found == std::end(options)) {
        throw std::logic_error("no option stands for \"" + key + '"');
    }
    return *found;
}

}  // namespace

void declareParameters(CLI::App& command, Parameters& parameters) {
    for (const ParameterOption& option : options) {
        const auto keep = [&parameters, &option](const std::string& given) {
            parameters.members[option.key] = option.kind.value(given);
        };
        option.kind.take(command.add_option_function<std::string>(option.name, keep, option.help))
            ->option_text(option.shownType)
            ->group("Parameters");
    }
    command.add_option("--params", parameters.json, "The whole record, a JSON object; other options add to it")
        ->type_name("JSON")
        ->group("Parameters");
}

Json::Value recordOf(const Parameters& parameters) {
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
    return record;
}

std::string optionFor(const std::string& key) {
    return optionOf(key).name;
}

std::string expectedInstead(const std::string& key, const Json::Value& value) {
    const Kind& kind = optionOf(key).kind;
    return kind.isHeldBy(value) ? "" : kind.expected();
}

}  // namespace tool

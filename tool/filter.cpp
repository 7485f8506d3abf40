#include "filter.h"

#include "decimal.h"
#include "moments.h"
#include "validators.h"

#include <re2/re2.h>

#include <algorithm>
#include <cctype>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace tool {

using tqbase2::nsa::zel::enums::LogbookEntryType;

namespace {

constexpr const char* filterGroup = "Which entries";

Span parsedSpan(const std::string& option, const std::string& text) {
    try {
        return spanOf(text, now());
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError(option, error.what());
    }
}

std::shared_ptr<const re2::RE2> parsedPattern(const std::string& text) {
    re2::RE2::Options options;
    options.set_case_sensitive(false);
    options.set_log_errors(false);
    auto pattern = std::make_shared<const re2::RE2>(text, options);
    if (!pattern->ok()) {
        throw CLI::ValidationError("--grep", '"' + text + "\" is no regular expression: " + pattern->error());
    }
    return pattern;
}

template <typename Value, typename Values>
bool holds(const Values& values, const Value& value) {
    return values.empty() || std::find(values.begin(), values.end(), value) != values.end();
}

bool isOneOf(const std::vector<lgb::code::Code>& codes, const ReadEntry& read) {
    return codes.empty() || std::any_of(codes.begin(), codes.end(), [&](const lgb::code::Code& code) {
               return code.type() == read.entry.type && code.id() == static_cast<std::uint32_t>(read.entry.code);
           });
}

}  // namespace

bool Filter::matches(const ReadEntry& read) const {
    const std::int64_t seconds = read.entry.timestamp.seconds;
    return seconds >= since.value_or(seconds) && seconds <= until.value_or(seconds) &&
           (isRead(read) ? matchesContent(read) : !asksForContent());
}

bool Filter::asksForContent() const {
    return !types.empty() || !codes.empty() || unit || device || pattern != nullptr;
}

bool Filter::matchesContent(const ReadEntry& read) const {
    return holds(types, read.entry.type) && isOneOf(codes, read) &&
           unit.value_or(read.entry.details.unit) == read.entry.details.unit &&
           device.value_or(read.entry.details.device) == read.entry.details.device &&
           (pattern == nullptr || re2::RE2::PartialMatch(read.entry.description, *pattern));
}

lgb::code::Code codeNamed(const std::string& argument, const std::string& name) {
    constexpr std::string_view letters = "IWE";
    const auto type = name.empty() ? std::string_view::npos
                                   : letters.find(static_cast<char>(std::toupper(static_cast<unsigned char>(name[0]))));
    std::uint32_t id = 0;
    if (type == std::string_view::npos || !readDecimal(std::string_view(name).substr(1), id)) {
        throw CLI::ValidationError(argument, '"' + name + "\" is no code; expected E, W or I and a number, like E14");
    }
    return {id, static_cast<LogbookEntryType>(type)};
}

void declareFilter(CLI::App& command, Filter& filter) {
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    takeOneOf(command.add_option_function<std::vector<std::string>>(
                  "--type",
                  [&filter](const std::vector<std::string>& names) {
                      for (const std::string& name : names) {
                          filter.types.push_back(typeNamed(name));
                      }
                  },
                  "Only of this type; may be given several times"),
              typeNames)
        ->delimiter(',')
        ->allow_extra_args(false)
        ->group(filterGroup);
    command
        .add_option_function<std::vector<std::string>>(
            "--code",
            [&filter](const std::vector<std::string>& names) {
                for (const std::string& name : names) {
                    filter.codes.push_back(codeNamed("--code", name));
                }
            },
            "Only with this code, such as E14; may be given several times")
        ->type_name("CODE")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->group(filterGroup);
    takeNumber(command.add_option("--unit", filter.unit, "Only of this unit"), highest)->group(filterGroup);
    takeNumber(command.add_option("--device", filter.device, "Only of this device"), highest)->group(filterGroup);
    command
        .add_option_function<std::string>(
            "--since", [&filter](const std::string& text) { filter.since = parsedSpan("--since", text).first; },
            "Only from this time on: a day, a time, or \"2 hours ago\"")
        ->type_name("TIME")
        ->group(filterGroup);
    command
        .add_option_function<std::string>(
            "--until", [&filter](const std::string& text) { filter.until = parsedSpan("--until", text).last; },
            "Only up to this time; a day counts whole")
        ->type_name("TIME")
        ->group(filterGroup);
    command
        .add_option_function<std::string>(
            "--grep", [&filter](const std::string& text) { filter.pattern = parsedPattern(text); },
            "Only with this regular expression in the description, in upper or lower case")
        ->type_name("PATTERN")
        ->group(filterGroup);
}

}  // namespace tool

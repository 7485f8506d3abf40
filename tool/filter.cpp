#include "filter.h"

#include "decimal.h"
#include "moments.h"
#include "validators.h"

#include <algorithm>
#include <cctype>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace tool {

namespace enums = tqbase2::nsa::zel::enums;

namespace {

Span parsedSpan(const std::string& option, const std::string& text) {
    try {
        return spanOf(text, now());
    } catch (const std::invalid_argument& error) {
        throw CLI::ValidationError(option, error.what());
    }
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

/// An option that may be given several times, also with several values between commas.
CLI::Option* declareEach(CLI::App& command, const std::string& name,
                         const std::function<void(const std::string&)>& take, const std::string& help) {
    const auto takeAll = [take](const std::vector<std::string>& values) {
        std::for_each(values.begin(), values.end(), take);
    };
    return command.add_option_function<std::vector<std::string>>(name, takeAll, help + "; may be given several times")
        ->delimiter(',')
        ->allow_extra_args(false);
}

/// An option for one end of what a text speaks of.
CLI::Option* declareTime(CLI::App& command, const std::string& name, std::optional<std::int64_t>& moment,
                         std::int64_t Span::*end, const std::string& help) {
    const auto take = [name, &moment, end](const std::string& text) { moment = parsedSpan(name, text).*end; };
    return command.add_option_function<std::string>(name, take, help)->type_name("TIME");
}

}  // namespace

bool Filter::matches(const ReadEntry& read) const {
    const std::int64_t seconds = read.entry.timestamp.seconds;
    return seconds >= since.value_or(seconds) && seconds <= until.value_or(seconds) &&
           (isRead(read) ? matchesContent(read) : !asksForContent());
}

bool Filter::asksForContent() const {
    return !types.empty() || !codes.empty() || unit || device || !pattern.isNone();
}

bool Filter::matchesContent(const ReadEntry& read) const {
    return holds(types, read.entry.type) && isOneOf(codes, read) &&
           unit.value_or(read.entry.details.unit) == read.entry.details.unit &&
           device.value_or(read.entry.details.device) == read.entry.details.device &&
           pattern.isIn(read.entry.description);
}

lgb::code::Code codeNamed(const std::string& argument, const std::string& name) {
    const auto& letters = enums::logbookEntryTypeSpellings;
    const auto isMeant = [&name](std::string_view letter) {
        return !name.empty() && std::toupper(static_cast<unsigned char>(name[0])) == letter[0];
    };
    const auto* const type = std::find_if(letters.begin(), letters.end(), isMeant);
    std::uint32_t id = 0;
    if (type == letters.end() || !readDecimal(std::string_view(name).substr(1), id)) {
        throw CLI::ValidationError(argument, '"' + name + "\" is no code; expected E, W or I and a number, like E14");
    }
    return {id, static_cast<enums::LogbookEntryType>(type - letters.begin())};
}

void declareFilter(CLI::App& command, Filter& filter) {
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    const auto takeType = [&filter](const std::string& name) { filter.types.push_back(typeNamed(name)); };
    const auto takeCode = [&filter](const std::string& name) { filter.codes.push_back(codeNamed("--code", name)); };
    CLI::Option* const options[] = {
        takeOneOf(declareEach(command, "--type", takeType, "Only of this type"), typeNames),
        declareEach(command, "--code", takeCode, "Only with this code, such as E14")->type_name("CODE"),
        takeNumber(command.add_option("--unit", filter.unit, "Only of this unit"), highest),
        takeNumber(command.add_option("--device", filter.device, "Only of this device"), highest),
        declareTime(command, "--since", filter.since, &Span::first,
                    "Only from this time on: a day, a time, or \"2 hours ago\""),
        declareTime(command, "--until", filter.until, &Span::last, "Only up to this time; a day counts whole"),
        declarePattern(command, filter.pattern,
                       "Only with this regular expression in the description, in upper or lower case"),
    };
    for (CLI::Option* const option : options) {
        option->group("Which entries");
    }
}

void requirePeriod(const Filter& filter) {
    if (filter.since && filter.until && *filter.until < *filter.since) {
        throw CLI::ValidationError("--until", "lies before --since");
    }
}

}  // namespace tool

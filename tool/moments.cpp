#include "moments.h"

#include "durations.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <ctime>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace tool {

namespace {

struct Unit {
    std::string_view name;
    std::string_view symbol;  // empty: no duration is told in it
    std::int64_t seconds;
};

constexpr Unit units[] = {
    {"week", "", 7 * day}, {"day", "d", day}, {"hour", "h", hour}, {"minute", "min", minute}, {"second", "s", 1}};

/// How a time may be written, and how long what it names lasts.
struct MomentFormat {
    const char* format;
    std::int64_t seconds;
};

constexpr MomentFormat momentFormats[] = {
    {"%Y-%m-%d", day},        {"%Y-%m-%dT%H:%M", minute}, {"%Y-%m-%d %H:%M", minute},
    {"%Y-%m-%dT%H:%M:%S", 1}, {"%Y-%m-%d %H:%M:%S", 1},
};

/// The end of what a format takes from a text, or null.
const char* take(const std::string& text, const char* format, std::tm& time) {
    time = {};
    return strptime(text.c_str(), format, &time);
}

/// The calendar and the clock have this time; there is no 30th of February.
bool exists(std::tm time) {
    const std::tm before = time;
    timegm(&time);
    return time.tm_mday == before.tm_mday && time.tm_sec == before.tm_sec;
}

/// Where the clock shows this time in summer or in winter, if it does.
std::optional<std::int64_t> shownIn(std::tm time, int isSummer) {
    const int clock = time.tm_hour * 60 + time.tm_min;
    time.tm_isdst = isSummer;
    const std::int64_t seconds = std::mktime(&time);
    return time.tm_hour * 60 + time.tm_min == clock ? std::optional(seconds) : std::nullopt;
}

/// The moments at which the clock shows this time: one, in the night when it is put back two.
Span localMoments(std::tm time) {
    const auto summer = shownIn(time, 1);
    const auto winter = shownIn(time, 0);
    time.tm_isdst = -1;
    const std::int64_t leapt = std::mktime(&time);  // what the clock never shows in the night when it is put forward
    return {summer.value_or(winter.value_or(leapt)), winter.value_or(summer.value_or(leapt))};
}

Span localSpan(const std::tm& time, std::int64_t length) {
    const Span begin = localMoments(time);
    if (length < day) {
        return {begin.first, begin.last + length - 1};
    }
    std::tm nextDay = time;
    ++nextDay.tm_mday;
    return {begin.first, localMoments(nextDay).first - 1};
}

std::optional<Span> isoSpan(const std::string& text) {
    for (const MomentFormat& format : momentFormats) {
        std::tm time{};
        const char* const end = take(text, format.format, time);
        if (end != nullptr && !exists(time)) {
            return std::nullopt;
        }
        if (end != nullptr && *end == '\0') {
            return localSpan(time, format.seconds);
        }
        const std::string zoned = std::string(format.format) + (end != nullptr && *end == ' ' ? " %z" : "%z");
        const char* const zonedEnd = end == nullptr ? nullptr : take(text, zoned.c_str(), time);
        if (zonedEnd != nullptr && *zonedEnd == '\0') {
            const long offset = time.tm_gmtoff;
            const std::int64_t first = timegm(&time) - offset;
            return Span{first, first + format.seconds - 1};
        }
    }
    return std::nullopt;
}

std::optional<Span> dayOf(std::int64_t seconds) {
    return isoSpan(localMinute(seconds).substr(0, std::string_view("2026-11-21").size()));
}

/// "2 hours ago"
std::optional<Span> ago(const std::string& text, std::int64_t now) {
    std::size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        ++digits;
    }
    constexpr std::size_t mostDigits = 9;
    if (digits == 0 || digits > mostDigits) {
        return std::nullopt;
    }
    const std::int64_t count = std::stoll(text.substr(0, digits));
    for (const Unit& unit : units) {
        const std::string name(unit.name);
        if (text.substr(digits) == ' ' + name + " ago" || text.substr(digits) == ' ' + name + "s ago") {
            return Span{now - count * unit.seconds, now - count * unit.seconds};
        }
    }
    return std::nullopt;
}

std::optional<Span> named(const std::string& text, std::int64_t now) {
    if (text == "now") {
        return Span{now, now};
    }
    if (text == "today") {
        return dayOf(now);
    }
    if (text == "yesterday") {
        return dayOf(dayOf(now)->first - 1);
    }
    return std::nullopt;
}

using Calendar = std::tm* (*)(const std::time_t*, std::tm*);

/// @param calendar gmtime_r, or localtime_r for local time
std::string formatted(std::int64_t seconds, Calendar calendar, const char* format) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    // A time beyond all years that the calendar holds is shown as the number it is.
    return calendar(&time, &parts) == nullptr ? std::to_string(seconds)
                                              : fmt::format(fmt::runtime(fmt::format("{{:{}}}", format)), parts);
}

}  // namespace

Span spanOf(const std::string& text, std::int64_t now) {
    for (const std::optional<Span>& span : {isoSpan(text), named(text, now), ago(text, now)}) {
        if (span) {
            return *span;
        }
    }
    throw std::invalid_argument('"' + text + R"(" is no time; expected one like 2026-11-21, "2026-11-21 19:02", )" +
                                R"(2026-11-21T19:02:11Z, yesterday or "2 hours ago")");
}

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::string utc(std::int64_t seconds) {
    return formatted(seconds, gmtime_r, "%Y-%m-%d %H:%M:%S +0000");
}

std::string iso8601(std::int64_t seconds, std::int64_t nanoseconds) {
    const std::string time = formatted(seconds, gmtime_r, "%Y-%m-%dT%H:%M:%S");
    return nanoseconds == 0 ? time + 'Z' : fmt::format("{}.{:09}Z", time, nanoseconds);
}

std::string localMinute(std::int64_t seconds) {
    return formatted(seconds, localtime_r, "%Y-%m-%d %H:%M");
}

std::string localSecond(std::int64_t seconds) {
    return formatted(seconds, localtime_r, "%Y-%m-%d %H:%M:%S");
}

std::string localZonedMinute(std::int64_t seconds) {
    return formatted(seconds, localtime_r, "%Y-%m-%d %H:%M %z");
}

std::int64_t secondsBetween(std::int64_t first, std::int64_t last) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max() - 1;
    return first < 0 && last > most + first ? most : last - first;
}

std::string duration(std::int64_t seconds) {
    std::string text;
    int named = 0;
    for (const Unit& unit : units) {
        const std::int64_t count = seconds / unit.seconds;
        if (unit.symbol.empty()) {
            continue;
        }
        if (count > 0 && named < 2) {
            text += fmt::format("{}{} {}", named == 0 ? "" : " ", count, unit.symbol);
            ++named;
        }
        seconds %= unit.seconds;
    }
    return text;
}

}  // namespace tool

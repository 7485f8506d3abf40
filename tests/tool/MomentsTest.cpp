#include "moments.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>

namespace {

constexpr std::int64_t evening = 1795284131;  // 2026-11-21T18:02:11Z

/// In the local time of Berlin, where the clock is put forward on 2026-03-29 and back on 2026-10-25.
class Moments : public testing::Test {
protected:
    Moments() { setZone("Europe/Berlin"); }

    ~Moments() override { setZone("UTC"); }

    static void setZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }

    /// First and last second in UTC.
    static std::string span(const std::string& text) {
        const tool::Span span = tool::spanOf(text, evening);
        return tool::iso8601(span.first, 0) + ' ' + tool::iso8601(span.last, 0);
    }

    static std::string refusal(const std::string& text) {
        try {
            return span(text);
        } catch (const std::invalid_argument& error) {
            return error.what();
        }
    }
};

TEST_F(Moments, ReadsDaysMinutesAndSecondsOfLocalTime) {
    EXPECT_EQ(span("2026-11-21"), "2026-11-20T23:00:00Z 2026-11-21T22:59:59Z");
    EXPECT_EQ(span("2026-11-21 19:02"), "2026-11-21T18:02:00Z 2026-11-21T18:02:59Z");
    EXPECT_EQ(span("2026-11-21T19:02"), "2026-11-21T18:02:00Z 2026-11-21T18:02:59Z");
    EXPECT_EQ(span("2026-11-21 19:02:11"), "2026-11-21T18:02:11Z 2026-11-21T18:02:11Z");
    EXPECT_EQ(span("2026-07-01T19:02:11"), "2026-07-01T17:02:11Z 2026-07-01T17:02:11Z");
}

TEST_F(Moments, ReadsZones) {
    EXPECT_EQ(span("2026-11-21Z"), "2026-11-21T00:00:00Z 2026-11-21T23:59:59Z");
    EXPECT_EQ(span("2026-11-21T18:02Z"), "2026-11-21T18:02:00Z 2026-11-21T18:02:59Z");
    EXPECT_EQ(span("2026-11-21T18:02:11-05:30"), "2026-11-21T23:32:11Z 2026-11-21T23:32:11Z");
    EXPECT_EQ(span("2026-11-21 19:02:11 +0100"), "2026-11-21T18:02:11Z 2026-11-21T18:02:11Z");  // as it is shown
}

TEST_F(Moments, ReadsWords) {
    EXPECT_EQ(span("now"), "2026-11-21T18:02:11Z 2026-11-21T18:02:11Z");
    EXPECT_EQ(span("today"), "2026-11-20T23:00:00Z 2026-11-21T22:59:59Z");
    EXPECT_EQ(span("yesterday"), "2026-11-19T23:00:00Z 2026-11-20T22:59:59Z");
    EXPECT_EQ(span("1 second ago"), "2026-11-21T18:02:10Z 2026-11-21T18:02:10Z");
    EXPECT_EQ(span("2 hours ago"), "2026-11-21T16:02:11Z 2026-11-21T16:02:11Z");
    EXPECT_EQ(span("3 weeks ago"), "2026-10-31T18:02:11Z 2026-10-31T18:02:11Z");
}

TEST_F(Moments, CountsADayWholeWhenTheClockIsPutForwardOrBack) {
    EXPECT_EQ(span("2026-03-29"), "2026-03-28T23:00:00Z 2026-03-29T21:59:59Z");
    EXPECT_EQ(span("2026-10-25"), "2026-10-24T22:00:00Z 2026-10-25T22:59:59Z");
}

TEST_F(Moments, TakesBothWhenTheClockShowsATimeTwice) {
    EXPECT_EQ(span("2026-10-25 02:30"), "2026-10-25T00:30:00Z 2026-10-25T01:30:59Z");
    EXPECT_EQ(span("2026-10-25 03:00"), "2026-10-25T02:00:00Z 2026-10-25T02:00:59Z");
}

TEST_F(Moments, BearsATimeThatTheClockLeapsOver) {
    EXPECT_EQ(span("2026-03-29 02:30:00"), "2026-03-29T01:30:00Z 2026-03-29T01:30:00Z");
}

TEST_F(Moments, RefusesWhatTheCalendarDoesNotHave) {
    EXPECT_EQ(span("2028-02-29Z"), "2028-02-29T00:00:00Z 2028-02-29T23:59:59Z");
    for (const std::string text :
         {"2026-02-30", "2026-02-29", "2026-13-01", "2026-11-31T10:00Z", "2026-11-21T24:00", "2026-11-21T19:60",
          "2026-11-21T19:02:60Z", "2026-11-21T19", "2026-11-21 x", "21.11.2026", "19:02", "", "tomorrow", "ago",
          "hours ago", "2 hours", "-2 hours ago", "2 years ago", "9999999999 weeks ago"}) {
        EXPECT_EQ(refusal(text), '"' + text +
                                     "\" is no time; expected one like 2026-11-21, \"2026-11-21 19:02\", "
                                     "2026-11-21T19:02:11Z, yesterday or \"2 hours ago\"");
    }
}

TEST_F(Moments, ShowsTimes) {
    EXPECT_EQ(tool::utc(evening), "2026-11-21 18:02:11 +0000");
    EXPECT_EQ(tool::iso8601(evening, 0), "2026-11-21T18:02:11Z");
    EXPECT_EQ(tool::iso8601(evening, 250), "2026-11-21T18:02:11.000000250Z");
    EXPECT_EQ(tool::iso8601(-1, 999999999), "1969-12-31T23:59:59.999999999Z");
    EXPECT_EQ(tool::localMinute(evening), "2026-11-21 19:02");
    EXPECT_EQ(tool::localSecond(evening), "2026-11-21 19:02:11");
    EXPECT_EQ(tool::utc(4102444800), "2100-01-01 00:00:00 +0000");
}

TEST_F(Moments, ShowsANumberWhereNoCalendarGoes) {
    EXPECT_EQ(tool::utc(INT64_MAX), "9223372036854775807");
    EXPECT_EQ(tool::localMinute(INT64_MIN), "-9223372036854775808");
}

TEST_F(Moments, MeasuresBetweenAnyTimes) {
    EXPECT_EQ(tool::secondsBetween(-5, 7), 12);
    EXPECT_EQ(tool::secondsBetween(3, 3), 0);
    EXPECT_EQ(tool::secondsBetween(INT64_MIN, INT64_MAX), INT64_MAX - 1);
}

TEST_F(Moments, TellsADurationInItsTwoLargestUnits) {
    EXPECT_EQ(tool::duration(1), "1 s");
    EXPECT_EQ(tool::duration(7380), "2 h 3 min");
    EXPECT_EQ(tool::duration(3605), "1 h 5 s");
    EXPECT_EQ(tool::duration(86399), "23 h 59 min");
    EXPECT_EQ(tool::duration(700000), "8 d 2 h");
}

}  // namespace

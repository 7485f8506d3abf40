#include "run.h"

#include <businesslogic/zel/onOffStr.h>
#include <lgb/timestamp.h>
#include <standalone/errors.h>
#include <tqbase2/system/Exception.h>

#include <gmock/gmock.h>
#include <boost/throw_exception.hpp>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using tqbase2::system::extractErrorMessage;

std::string messageOf(const std::function<void()>& failing) {
    try {
        failing();
        return "";
    } catch (const tqbase2::system::Exception& exception) {
        return extractErrorMessage(exception);
    }
}

TEST(ErrorMessage, IsTheTypeOfAnExceptionWithoutAMessage) {
    EXPECT_EQ(extractErrorMessage(tqbase2::system::LogicError()), "tqbase2::system::LogicError");
}

TEST(ErrorMessage, HoldsTheExceptionsOwnMessage) {
    EXPECT_EQ(extractErrorMessage(standalone::JsonError("not JSON: Line 1")),
              "standalone::JsonError: not JSON: Line 1");
}

TEST(ErrorMessage, NamesThePlaceWhenItIsKnown) {
    EXPECT_EQ(messageOf([] {
                  boost::throw_exception(tqbase2::system::LogicError(), {"src/here.cpp", 7, "void act()"});
              }),
              "tqbase2::system::LogicError at src/here.cpp:7 in void act()");
}

TEST(Words, AreOnAndOff) {
    EXPECT_EQ(businesslogic::zel::onOffStr(true), "on");
    EXPECT_EQ(businesslogic::zel::onOffStr(false), "off");
}

TEST(Clock, TellsTheTimeInNumbersAndInWords) {
    setenv("TZ", "Asia/Kolkata", 1);
    tzset();
    const auto seconds = [] {  // std::time is late by as much as a tick of the system
        return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    };
    const std::time_t before = seconds();
    const lgb::timestamp::Timestamp now = lgb::timestamp::now();
    const std::time_t after = seconds();
    EXPECT_GE(now.seconds, before);
    EXPECT_LE(now.seconds, after);
    EXPECT_GE(now.nanoseconds, 0);
    EXPECT_LE(now.nanoseconds, 999999999);

    const auto local = static_cast<std::time_t>(now.seconds + 19800);  // 5 h 30 min east
    char expected[32];
    std::strftime(expected, sizeof expected, "%Y-%m-%d %H:%M:%S +0530", std::gmtime(&local));
    EXPECT_EQ(now.text, expected);
}

/// What the logger writes for one message a level, "first" to "fourth", the third on two lines.
std::string logAtLevel(const std::string& level) {
    return support::run("TQZEL_LOG_LEVEL=" + level + ' ' + TQZEL_LOG_PROGRAM).errors;
}

constexpr const char* time = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}\\.[0-9]{3} ";

TEST(Logger, WritesALineAMessageToStandardErrorFromLevel3On) {
    const std::string expected =
        std::string(time) + "warning channel: third\\\\x0aline\\\\x7f\n" + time + "error channel: fourth\n";
    EXPECT_THAT(logAtLevel(""), testing::MatchesRegex(expected));
}

TEST(Logger, IsOffBelowTheLevelThatTheEnvironmentSets) {
    const std::string fourth = std::string(time) + "error channel: fourth\n";
    const std::string third = std::string(time) + "warning channel: third\\\\x0aline\\\\x7f\n";
    const std::string second = std::string(time) + "info channel: second\n";
    const std::string first = std::string(time) + "trace channel: first\n";
    EXPECT_THAT(logAtLevel("4"), testing::MatchesRegex(fourth));
    EXPECT_THAT(logAtLevel("2"), testing::MatchesRegex(second + third + fourth));
    EXPECT_THAT(logAtLevel("1"), testing::MatchesRegex(first + second + third + fourth));
    EXPECT_EQ(logAtLevel("5"), "");
}

TEST(Logger, SaysThatALevelIsNotOneAndUsesTheDefault) {
    for (const std::string level : {"0", "6", "11", "loud"}) {
        const std::string complaint =
            std::string(time) + "warning TQZEL_LOG_LEVEL is \"" + level + "\", expected 1 to 5; using 3\n";
        EXPECT_THAT(logAtLevel(level), testing::MatchesRegex(complaint + time + "warning .*\n" + time + "error .*\n"));
    }
}

}  // namespace

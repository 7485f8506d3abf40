// The platform reads plain texts, and writes all values, by itself: as jsoncpp would.

#include "jsoncpp.h"
#include "random.h"

#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace {

using support::Random;
using tqbase2::system::JsonUtility;

std::optional<Json::Value> readText(const std::string& text) {
    try {
        return JsonUtility::toJsonValue(text);
    } catch (const tqbase2::system::Exception&) {
        return std::nullopt;
    }
}

/// A text that jsoncpp sees nothing in is null to the platform.
void expectReadAsByJsoncpp(const std::string& text) {
    const bool blank = text.find_first_not_of(" \t\r\n") == std::string::npos;
    EXPECT_EQ(readText(text), blank ? Json::Value() : support::readByJsoncpp(text)) << text;
}

const std::string& oneOf(Random& random, const std::vector<std::string>& pieces) {
    return pieces[static_cast<std::size_t>(support::upTo(random, static_cast<std::int64_t>(pieces.size()) - 1))];
}

std::string textOfPieces(Random& random) {
    static const std::vector<std::string> pieces{"{",
                                                 "}",
                                                 "[",
                                                 "]",
                                                 ",",
                                                 ":",
                                                 "\"",
                                                 "\"a\"",
                                                 "\"b\":",
                                                 "\"a\":1",
                                                 "\"\\u0000\"",
                                                 "\"\\ud83d\\ude00\"",
                                                 "\"\\ud83d\"",
                                                 "\"\\udc00\"",
                                                 "\"\\/\\b\\f\\n\\r\\t\\\\\"",
                                                 "\"\xc3\xa4\"",
                                                 "\"\xff\xfe\"",
                                                 "\"\x01\"",
                                                 "\\u00",
                                                 "-0",
                                                 "-1",
                                                 "0",
                                                 "00",
                                                 "7",
                                                 "-",
                                                 "+1",
                                                 "1.",
                                                 ".5",
                                                 "1.5",
                                                 "1e3",
                                                 "1E400",
                                                 "-1e-400",
                                                 "2147483648",
                                                 "4294967295",
                                                 "9223372036854775807",
                                                 "9223372036854775808",
                                                 "-9223372036854775808",
                                                 "-9223372036854775809",
                                                 "18446744073709551615",
                                                 "18446744073709551616",
                                                 "true",
                                                 "false",
                                                 "null",
                                                 "nul",
                                                 " ",
                                                 "\t\r\n",
                                                 "//",
                                                 "/**/",
                                                 std::string(1, '\0'),
                                                 "NaN",
                                                 "Infinity"};
    std::string text;
    for (std::int64_t left = 1 + support::upTo(random, 9); left > 0; --left) {
        text += oneOf(random, pieces);
    }
    return text;
}

Json::Value anyString(Random& random) {
    std::string text;
    for (std::int64_t left = support::upTo(random, 20); left > 0; --left) {
        text += static_cast<char>(support::upTo(random, 255));
    }
    return text;
}

Json::Value anyValue(Random& random, int depth) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    Json::Value value;
    switch (support::upTo(random, depth > 0 ? 7 : 5)) {
        case 0:
            return {};
        case 1:
            return support::oneIn(random, 2);
        case 2:
            return Json::Int64{support::upTo(random, largest)} - Json::Int64{support::upTo(random, largest)};
        case 3:
            return Json::UInt64{largest} + static_cast<Json::UInt64>(support::upTo(random, largest));
        case 4:
            return static_cast<double>(support::upTo(random, largest)) / static_cast<double>(random());
        case 5:
            return anyString(random);
        case 6:
            value = Json::Value(Json::arrayValue);
            for (std::int64_t left = support::upTo(random, 4); left > 0; --left) {
                value.append(anyValue(random, depth - 1));
            }
            return value;
        default:
            value = Json::Value(Json::objectValue);
            for (std::int64_t left = support::upTo(random, 4); left > 0; --left) {
                value[anyString(random).asString()] = anyValue(random, depth - 1);
            }
            return value;
    }
}

TEST(JsonTexts, AreReadAsByJsoncpp) {
    Random random(1);
    for (int round = 0; round < 20000; ++round) {
        expectReadAsByJsoncpp(textOfPieces(random));
    }
}

TEST(JsonTexts, ThatWereChangedAnywhereAreReadAsByJsoncpp) {
    const std::string document =
        R"({"code":14,"details":{"device":-1,"params":"{\"bus\":1,\"\u00e4\":[true,null]}","unit":-9},"n":[1,[]],"type":"E"})";
    for (std::size_t at = 0; at < document.size(); ++at) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = document;
            changed[at] = static_cast<char>(byte);
            expectReadAsByJsoncpp(changed);
        }
        expectReadAsByJsoncpp(document.substr(0, at));
        expectReadAsByJsoncpp(std::string(document).erase(at, 1));
    }
}

TEST(JsonTexts, OfAnyDepthAreReadAsByJsoncpp) {
    for (std::size_t depth = 1; depth <= 103; ++depth) {
        expectReadAsByJsoncpp(std::string(depth, '[') + std::string(depth, ']'));
        expectReadAsByJsoncpp(std::string(depth, '[') + "{\"a\":1}" + std::string(depth, ']'));
    }
}

TEST(JsonTexts, OfAnyLengthAreReadAsByJsoncpp) {
    for (std::size_t size = 1000; size <= 1050; ++size) {
        expectReadAsByJsoncpp('"' + std::string(size, 'x') + '"');
    }
}

TEST(JsonTexts, AreWrittenAsByJsoncpp) {
    Random random(1);
    for (int round = 0; round < 5000; ++round) {
        const Json::Value value = anyValue(random, 4);
        EXPECT_EQ(JsonUtility::toJsonString(value), support::writtenByJsoncpp(value));
    }
}

TEST(JsonTexts, OfNumbersWithoutAValueAreWrittenAsByJsoncpp) {
    using Limits = std::numeric_limits<double>;
    for (const double number : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::denorm_min(),
                                Limits::max(), -0.0, 1.0, 0.1, 1e17}) {
        EXPECT_EQ(JsonUtility::toJsonString(number), support::writtenByJsoncpp(number));
    }
}

TEST(JsonTexts, OfAnArrayWithGapsAreWrittenAsByJsoncpp) {
    Json::Value array;
    array[3] = 1;
    EXPECT_EQ(JsonUtility::toJsonString(array), "[null,null,null,1]");
    EXPECT_EQ(support::writtenByJsoncpp(array), "[null,null,null,1]");
}

}  // namespace

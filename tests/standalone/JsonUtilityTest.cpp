#include <standalone/errors.h>
#include <tqbase2/cia/StringConverter.h>
#include <tqbase2/system/JsonUtility.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using tqbase2::cia::StringConverter;
using tqbase2::system::JsonUtility;

std::string thereAndBack(const std::string& text) {
    return StringConverter::fromJsonToVal(
        JsonUtility::toJsonValue(JsonUtility::toJsonString(StringConverter::fromValToJsonValue(text))));
}

/// What a text is refused with.
std::string refusal(const std::string& text) {
    try {
        JsonUtility::toJsonValue(text);
        return "read";
    } catch (const tqbase2::system::Exception& exception) {
        return exception.what();
    }
}

std::string nested(int depth) {
    const auto brackets = static_cast<std::size_t>(depth);
    return std::string(brackets, '[') + std::string(brackets, ']');
}

TEST(JsonUtility, WritesOneCompactLine) {
    Json::Value value;
    value["bus"] = 1;
    value["path"] = "A";
    value["on"] = true;
    EXPECT_EQ(JsonUtility::toJsonString(value), R"({"bus":1,"on":true,"path":"A"})");
}

TEST(JsonUtility, KeepsUtf8AsItIs) {
    EXPECT_EQ(JsonUtility::toJsonString("Verstärker Ω"), "\"Verstärker Ω\"");
}

TEST(JsonUtility, GivesEverySingleByteBack) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        EXPECT_EQ(thereAndBack(text), text) << byte;
    }
}

TEST(JsonUtility, GivesAnyStringBack) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        std::string text(random() % 40, '\0');
        for (char& character : text) {
            character = static_cast<char>(random() % 256);
        }
        ASSERT_EQ(thereAndBack(text), text);
    }
}

TEST(JsonUtility, ReadsEmptyTextAndWhiteSpaceAsNull) {
    EXPECT_TRUE(JsonUtility::toJsonValue("").isNull());
    EXPECT_TRUE(JsonUtility::toJsonValue(" \t\r\n").isNull());
}

TEST(JsonUtility, ReadsABareValue) {
    EXPECT_EQ(JsonUtility::toJsonValue("42").asInt(), 42);
    EXPECT_EQ(JsonUtility::toJsonValue("\"word\"").asString(), "word");
    EXPECT_TRUE(JsonUtility::toJsonValue("null").isNull());
}

TEST(JsonUtility, ReadsIntegersOf64Bits) {
    EXPECT_EQ(JsonUtility::toJsonValue("18446744073709551615").asUInt64(), 18446744073709551615u);
    EXPECT_EQ(JsonUtility::toJsonValue("-9223372036854775808").asInt64(), INT64_MIN);
}

TEST(JsonUtility, ReadsTextWithoutATerminatingZero) {
    const std::string text = "[1]garbage";
    EXPECT_EQ(JsonUtility::toJsonValue(std::string_view(text).substr(0, 3))[0].asInt(), 1);
}

TEST(JsonUtility, SaysWhereATextBroke) {
    EXPECT_EQ(refusal("{\"bus\":1,\n\"module\"}"), "not JSON: Line 2, Column 9: Missing ':' after object member name");
    EXPECT_EQ(refusal("{}foobar"), "not JSON: Line 1, Column 3: Extra non-whitespace after JSON value.");
}

TEST(JsonUtility, RefusesWhatIsNotOneWholeJsonValue) {
    for (const char* text : {"{", "}", "{}{}", "1 2", "[1,]", "{\"a\":1,}", "{'a':1}", "{a:1}", "// note\n1", "/**/1",
                             "NaN", "Infinity", "nul", "\"open", "[1,,2]", "\xEF\xBB\xBF{}", "\x01", "{\"a\" 1}"}) {
        EXPECT_THROW(JsonUtility::toJsonValue(text), standalone::JsonError) << text;
    }
}

TEST(JsonUtility, RefusesAZeroByteWhereverItStands) {
    using namespace std::string_literals;
    EXPECT_EQ(refusal("{\"bus\":1}\0garbage"s), "not JSON: byte 10 is zero");
    for (const std::string& text : {"\0"s, " \0"s, "{}\0"s, "{}\n\0\0"s, "\0{}"s, "{\0}"s, "\"a\0b\""s, "1\0"s,
                                    "[1\0]"s, "[1,\0"s, "{\"a\0\":1}"s, "{}" + std::string(2000, ' ') + '\0'}) {
        EXPECT_THROW(JsonUtility::toJsonValue(text), standalone::JsonError) << text;
    }
    EXPECT_EQ(JsonUtility::toJsonValue("\"a\\u0000b\"").asString(), "a\0b"s);
}

TEST(JsonUtility, LimitsNesting) {
    EXPECT_EQ(JsonUtility::toJsonValue(nested(99)).size(), 1u);
    EXPECT_THROW(JsonUtility::toJsonValue(nested(101)), standalone::JsonError);
    EXPECT_THROW(JsonUtility::toJsonValue(nested(1000000)), standalone::JsonError);
    EXPECT_THROW(JsonUtility::toJsonValue(std::string(1000000, '[')), standalone::JsonError);
}

TEST(JsonUtility, GoesOnAfterAFailure) {
    EXPECT_THROW(JsonUtility::toJsonValue("{"), standalone::JsonError);
    EXPECT_THROW(JsonUtility::toJsonValue(nested(1000)), standalone::JsonError);
    EXPECT_EQ(JsonUtility::toJsonValue("[1]").size(), 1u);
}

TEST(JsonUtility, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (int round = 0; round < 500; ++round) {
                const std::string text = std::to_string(thread * 1000 + round);
                EXPECT_EQ(thereAndBack(text), text);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(StringConverter, ReadsNullAsTheEmptyString) {
    EXPECT_EQ(StringConverter::fromJsonToVal(Json::Value()), "");
}

}  // namespace

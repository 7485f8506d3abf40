#include "LibraryTest.h"

#include <nsa/zel/converter/zel/enums/GenerationConverter.h>
#include <nsa/zel/converter/zel/enums/InterlockModeConverter.h>
#include <nsa/zel/converter/zel/enums/LogbookEntryTypeConverter.h>
#include <nsa/zel/converter/zel/enums/OperatingClassConverter.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/converter/zel/enums/SystemConfigRoleConverter.h>
#include <nsa/zel/converter/zel/enums/TypeProductConverter.h>
#include <tqbase2/system/Exception.h>

#include <json/value.h>
#include <json/writer.h>
#include <boost/exception/get_error_info.hpp>

#include <cctype>
#include <exception>
#include <functional>
#include <iomanip>
#include <limits>
#include <regex>
#include <sstream>
#include <type_traits>

namespace librarytest {

namespace {

using tqbase2::system::LogicError;

struct Spelling {
    std::int32_t value;
    std::string text;
};

/// An enumeration with its type taken away, so that one loop walks all of them.
struct Enumeration {
    std::string name;
    std::vector<Spelling> spellings;
    std::function<Json::Value(std::int32_t)> toJson;
    std::function<std::int32_t(const Json::Value&)> fromJson;

    std::int32_t size() const { return static_cast<std::int32_t>(spellings.size()); }
};

void PrintTo(const Enumeration& enumeration, std::ostream* stream) {
    *stream << enumeration.name;
}

template <typename Enum>
struct EnumSpelling {
    Enum value;
    const char* text;
};

template <typename Converter>
Enumeration enumeration(const char* name, const std::vector<EnumSpelling<typename Converter::type>>& spellings) {
    using Enum = typename Converter::type;
    static_assert(std::is_same_v<std::underlying_type_t<Enum>, std::int32_t>, "stored in 32 bits");
    Enumeration result{
        name,
        {},
        [](std::int32_t value) { return Converter::fromValToJsonValue(static_cast<Enum>(value)); },
        [](const Json::Value& value) { return static_cast<std::int32_t>(Converter::fromJsonToVal(value)); }};
    for (const auto& [value, text] : spellings) {
        result.spellings.push_back({static_cast<std::int32_t>(value), text});
    }
    return result;
}

/// Every enumeration that travels as JSON. Their spellings are in stored entries: they are not to change.
std::vector<Enumeration> everyEnumeration() {
    using namespace enums;
    return {
        enumeration<LogbookEntryTypeConverter>(
            "LogbookEntryType",
            {{LogbookEntryType::Info, "I"}, {LogbookEntryType::Warning, "W"}, {LogbookEntryType::Error, "E"}}),
        enumeration<GenerationConverter>(
            "Generation",
            {{Generation::Unknown, "Unknown"}, {Generation::Kestrel, "Kestrel"}, {Generation::Heron, "Heron"}}),
        enumeration<TypeProductConverter>("TypeProduct", {{TypeProduct::Osprey, "Osprey"},
                                                          {TypeProduct::Plover, "Plover"},
                                                          {TypeProduct::Wren, "Wren"},
                                                          {TypeProduct::Kestrel, "Kestrel"}}),
        enumeration<OperatingClassConverter>("OperatingClass", {{OperatingClass::AB, "AB"},
                                                                {OperatingClass::Step1, "step1"},
                                                                {OperatingClass::Step2, "step2"},
                                                                {OperatingClass::Step3, "step3"},
                                                                {OperatingClass::Step4, "step4"},
                                                                {OperatingClass::Step5, "step5"},
                                                                {OperatingClass::Step6, "step6"},
                                                                {OperatingClass::Step7, "step7"},
                                                                {OperatingClass::Step8, "step8"},
                                                                {OperatingClass::A, "A"}}),
        enumeration<OutputModeConverter>("OutputMode", {{OutputMode::Vswr, "VSWR"},
                                                        {OutputMode::Increased1, "increased1"},
                                                        {OutputMode::Increased2, "increased2"},
                                                        {OutputMode::Increased3, "increased3"},
                                                        {OutputMode::Increased4, "increased4"},
                                                        {OutputMode::Increased5, "increased5"},
                                                        {OutputMode::Increased6, "increased6"},
                                                        {OutputMode::Increased7, "increased7"},
                                                        {OutputMode::Increased8, "increased8"},
                                                        {OutputMode::Increased9, "increased9"},
                                                        {OutputMode::Power, "Power"}}),
        enumeration<InterlockModeConverter>(
            "InterlockMode", {{InterlockMode::Interactive, "interactive"}, {InterlockMode::Automatic, "automatic"}}),
        enumeration<SystemConfigRoleConverter>(
            "SystemConfigRole", {{SystemConfigRole::Unit, "unit"}, {SystemConfigRole::Device, "device"}}),
    };
}

/// Where an exception says that it comes from.
struct Origin {
    std::string file;
    std::string function;
    int line = 0;
    std::string what;
};

/// A signature as GCC writes it. Clang sets a blank before a reference and qualifies the type of a parameter.
std::string asGccWritesIt(const std::string& signature) {
    const std::string withoutBlank = std::regex_replace(signature, std::regex(" &"), "&");
    return std::regex_replace(withoutBlank, std::regex(R"(\(const tqbase2::nsa::zel::enums::\w+Converter::type&\))"),
                              "(const type&)");
}

Origin originOf(const std::function<void()>& failing) {
    Origin origin;
    try {
        failing();
        ADD_FAILURE() << "nothing was thrown";
    } catch (const LogicError& e) {
        const auto* const file = boost::get_error_info<boost::throw_file>(e);
        const auto* const function = boost::get_error_info<boost::throw_function>(e);
        const auto* const line = boost::get_error_info<boost::throw_line>(e);
        if (file == nullptr || function == nullptr || line == nullptr) {
            ADD_FAILURE() << "file, function or line is missing";
            return origin;
        }
        origin = {*file, asGccWritesIt(*function), *line, e.what()};
    }
    return origin;
}

class EnumConverter : public LibraryTest, public testing::WithParamInterface<Enumeration> {
protected:
    static std::int32_t read(const Json::Value& value) { return GetParam().fromJson(value); }

    static Json::Value write(std::int32_t value) { return GetParam().toJson(value); }

    /// The value can't be read, and the one line logged names it.
    static void expectUnknown(const Json::Value& value, const std::string& named) {
        platform().log.clear();
        EXPECT_THROW(read(value), LogicError) << named;
        EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value " + named});
        EXPECT_EQ(platform().log.size(), 1u);
    }

    static std::string file() { return "converter/zel/enums/" + GetParam().name + "Converter.h"; }

    static std::string qualifiedName() { return "tqbase2::nsa::zel::enums::" + GetParam().name + "Converter"; }
};

INSTANTIATE_TEST_SUITE_P(Every, EnumConverter, testing::ValuesIn(everyEnumeration()),
                         [](const auto& row) { return row.param.name; });

TEST_P(EnumConverter, CountsItsEnumeratorsFromZero) {
    std::int32_t expected = 0;
    for (const auto& [value, text] : GetParam().spellings) {
        EXPECT_EQ(value, expected++) << text;
    }
}

TEST_P(EnumConverter, WritesEachValueAsItsSpelling) {
    for (const auto& [value, text] : GetParam().spellings) {
        const Json::Value json = write(value);
        EXPECT_TRUE(json.isString()) << text;
        EXPECT_EQ(json.asString(), text);
    }
}

TEST_P(EnumConverter, ReadsEachSpellingAsItsValue) {
    for (const auto& [value, text] : GetParam().spellings) {
        EXPECT_EQ(read(text), value) << text;
    }
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, BringsEachValueBack) {
    for (const auto& [value, text] : GetParam().spellings) {
        EXPECT_EQ(read(write(value)), value) << text;
    }
}

TEST_P(EnumConverter, RefusesToWriteNumbersOutsideTheRangeWithoutLogging) {
    EXPECT_THROW(write(-1), LogicError);
    EXPECT_THROW(write(GetParam().size()), LogicError);
    EXPECT_THROW(write(std::numeric_limits<std::int32_t>::min()), LogicError);
    EXPECT_THROW(write(std::numeric_limits<std::int32_t>::max()), LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, ReadsTheEmptyStringAsTheFirstValue) {
    EXPECT_EQ(read(""), 0);
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, ReadsNullAsTheFirstValue) {
    EXPECT_EQ(read(Json::Value()), 0);
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, LogsAnUnknownSpellingAndThrows) {
    expectUnknown("X", "X");
    expectUnknown("no \"such\" value", "no \"such\" value");
}

TEST_P(EnumConverter, ComparesWithCase) {
    for (Spelling spelling : GetParam().spellings) {
        char& first = spelling.text.front();
        const auto character = static_cast<unsigned char>(first);
        first = static_cast<char>(std::isupper(character) != 0 ? std::tolower(character) : std::toupper(character));
        expectUnknown(spelling.text, spelling.text);
    }
}

TEST_P(EnumConverter, ComparesTheWholeText) {
    for (const auto& [value, text] : GetParam().spellings) {
        expectUnknown(' ' + text, ' ' + text);
        expectUnknown(text + ' ', text + ' ');
        expectUnknown(text + '\0', text + '\0');
        expectUnknown(text + "AB", text + "AB");
    }
    expectUnknown(" ", " ");
}

TEST_P(EnumConverter, TakesNumbersAndBooleansByTheirText) {
    expectUnknown(0, "0");
    expectUnknown(1, "1");
    expectUnknown(-1, "-1");
    expectUnknown(true, "true");
    expectUnknown(false, "false");
}

TEST_P(EnumConverter, LeavesArraysAndObjectsToTheJsonLibrary) {
    EXPECT_THROW(read(Json::Value(Json::arrayValue)), Json::LogicError);
    EXPECT_THROW(read(Json::Value(Json::objectValue)), Json::LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, ThrowsForAnUnknownSpellingAlsoWhenErrorsAreNotLogged) {
    platform().lowestLevel = 5;
    EXPECT_THROW(read("X"), LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_P(EnumConverter, LogsAnUnknownSpellingAsAnError) {
    platform().lowestLevel = 4;
    expectUnknown("X", "X");
}

TEST_P(EnumConverter, NamesThePlaceThatRefusesToWrite) {
    const Origin origin = originOf([] { write(GetParam().size()); });
    EXPECT_EQ(origin.file, file());
    EXPECT_EQ(origin.function, "static Json::Value " + qualifiedName() + "::fromValToJsonValue(const type&)");
    EXPECT_GT(origin.line, 0);
}

TEST_P(EnumConverter, NamesThePlaceThatRefusesToRead) {
    const Origin origin = originOf([] { read("X"); });
    EXPECT_EQ(origin.file, file());
    EXPECT_EQ(origin.function,
              "static " + qualifiedName() + "::type " + qualifiedName() + "::fromJsonToVal(const Json::Value&)");
    EXPECT_GT(origin.line, 0);
}

TEST_P(EnumConverter, NamesALineOfEachFunction) {
    const Origin writing = originOf([] { write(-1); });
    const Origin reading = originOf([] { read("X"); });
    EXPECT_LT(writing.line, reading.line) << "writing stands before reading in the header";
}

TEST_P(EnumConverter, ThrowsWithoutAMessage) {
    const std::string ofStdException = std::exception().what();
    EXPECT_EQ(originOf([] { write(-1); }).what, ofStdException);
    EXPECT_EQ(originOf([] { read("X"); }).what, ofStdException);
}

template <typename Enum>
std::string streamed(int value) {
    std::ostringstream text;
    text << static_cast<Enum>(value) << '|';
    return text.str();
}

TEST(EnumStreaming, WritesTheSpellingOfAnOperatingClass) {
    const std::vector<std::string> expected{"AB|",    "step1|", "step2|", "step3|", "step4|",
                                            "step5|", "step6|", "step7|", "step8|", "A|"};
    for (int value = 0; value < 10; ++value) {
        EXPECT_EQ(streamed<enums::OperatingClass>(value), expected.at(static_cast<std::size_t>(value)));
    }
}

TEST(EnumStreaming, WritesTheSpellingOfATypeProduct) {
    EXPECT_EQ(streamed<enums::TypeProduct>(0), "Osprey|");
    EXPECT_EQ(streamed<enums::TypeProduct>(1), "Plover|");
    EXPECT_EQ(streamed<enums::TypeProduct>(2), "Wren|");
    EXPECT_EQ(streamed<enums::TypeProduct>(3), "Kestrel|");
}

TEST(EnumStreaming, WritesNothingForANumberOutsideTheEnumeration) {
    EXPECT_EQ(streamed<enums::OperatingClass>(-1), "|");
    EXPECT_EQ(streamed<enums::OperatingClass>(10), "|");
    EXPECT_EQ(streamed<enums::TypeProduct>(-1), "|");
    EXPECT_EQ(streamed<enums::TypeProduct>(4), "|");
}

TEST(EnumStreaming, LeavesTheWidthToWhatFollowsANumberOutsideTheEnumeration) {
    std::ostringstream text;
    text << std::setw(3) << static_cast<enums::OperatingClass>(10) << '|' << std::setw(3)
         << static_cast<enums::TypeProduct>(4) << '|';
    EXPECT_EQ(text.str(), "  |  |");
}

}  // namespace

}  // namespace librarytest

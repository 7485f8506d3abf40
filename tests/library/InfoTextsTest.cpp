#include "LibraryTest.h"
#include "MessageRows.h"

#include <lgb/InfoTextCreator.h>

#include <json/value.h>

namespace librarytest {

namespace {

using InfoTextCreator = LibraryTest;
using Interlock = LibraryTest;
using OutputModeText = LibraryTest;
using OperatingClassText = LibraryTest;

const std::string everyMember =
    R"({"interlockMode":"automatic","path":"A","outputMode":"Power","operatingClass":"step3","group":4})";

// clang-format off
const std::vector<Row> fixedTexts{
    { 20, "System restarted"},
    {101, "Bias-Current-Calibration finished"},
    {125, "Mute was activated"},
    {126, "Mute was deactivated"},
    {206, "RF was turned off because of opened interlock"},
    {229, "RF was turned on"},
    {230, "RF was turned off"},
    {239, "Connected"},
    {277, "All units connected"},
    {280, "User settings were reset to their factory defaults"},
};

const std::vector<MemberRow> textsWithMembers{
    {127, R"(Interlock 1 (automatic) was opened)",               R"(Interlock 1 (interactive) was opened)"},
    {128, R"(Interlock 1 (automatic) was closed)",               R"(Interlock 1 (interactive) was closed)"},
    {129, R"(Interlock 2 (automatic) was opened)",               R"(Interlock 2 (interactive) was opened)"},
    {130, R"(Interlock 2 (automatic) was closed)",               R"(Interlock 2 (interactive) was closed)"},
    {200, R"(Output Mode of RF-Path "A" changed to High Power)", R"(Output Mode of RF-Path "" changed to High VSWR)"},
    {201, R"(Operating Class of RF-Path "A" changed to 3)",      R"(Operating Class of RF-Path "" changed to AB)"},
    {236, R"(RF-Path 5 selected)",                               R"(RF-Path 1 selected)"},
};

// clang-format on

struct Spelling {
    const char* stored;
    const char* shown;
};

std::string text(unsigned int id, const std::string& params) {
    return lgb::InfoTextCreator().create(info(id), params);
}

TEST_F(InfoTextCreator, GivesFixedTexts) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, everyMember), row.text) << row.id;
    }
}

TEST_F(InfoTextCreator, NamesWhatItsParametersTell) {
    for (const MemberRow& row : textsWithMembers) {
        EXPECT_EQ(text(row.id, everyMember), row.text) << row.id;
    }
}

TEST_F(InfoTextCreator, ReadsMissingMembersAsTheFirstOrEmpty) {
    for (const MemberRow& row : textsWithMembers) {
        EXPECT_EQ(text(row.id, "{}"), row.ofNoMembers) << row.id;
    }
}

TEST_F(InfoTextCreator, KnowsNoOtherIdsAndReadsNothingForThem) {
    for (const unsigned int id : idsBesides(joined(idsOf(fixedTexts), idsOf(textsWithMembers)))) {
        EXPECT_EQ(text(id, "nonsense"), "unknown entry") << id;
    }
    EXPECT_EQ(text(4294967295, "nonsense"), "unknown entry");
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(InfoTextCreator, OfRestartWithEmptyParametersParsesNothing) {
    EXPECT_EQ(text(20, ""), "System restarted");
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(InfoTextCreator, OfIdsBetweenTheKnownOnesIsUnknown) {
    EXPECT_EQ(text(0, "{}"), "unknown entry");
    EXPECT_EQ(text(131, "{}"), "unknown entry");
    EXPECT_EQ(text(202, "{}"), "unknown entry");
}

TEST_F(InfoTextCreator, OfInterlocksNamesNumberModeAndChange) {
    EXPECT_EQ(text(127, R"({"interlockMode":"interactive"})"), "Interlock 1 (interactive) was opened");
    EXPECT_EQ(text(128, R"({"interlockMode":"automatic"})"), "Interlock 1 (automatic) was closed");
    EXPECT_EQ(text(129, R"({"interlockMode":"interactive"})"), "Interlock 2 (interactive) was opened");
    EXPECT_EQ(text(130, R"({"interlockMode":"automatic"})"), "Interlock 2 (automatic) was closed");
}

TEST_F(InfoTextCreator, OfInterlocksReadsAMissingModeAsInteractive) {
    EXPECT_EQ(text(127, "{}"), "Interlock 1 (interactive) was opened");
}

TEST_F(InfoTextCreator, OfInterlocksFailsOnAnUnknownMode) {
    EXPECT_THROW(text(127, R"({"interlockMode":"Automatic"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value Automatic"});
}

TEST_F(InfoTextCreator, OfOutputModeQuotesAMissingPathAndReadsAMissingModeAsHighVswr) {
    EXPECT_EQ(text(200, R"({"outputMode":"increased2"})"), R"(Output Mode of RF-Path "" changed to 2)");
    EXPECT_EQ(text(200, R"({"path":"A"})"), R"(Output Mode of RF-Path "A" changed to High VSWR)");
}

TEST_F(InfoTextCreator, OfPathSelectionCountsGroupsFromOne) {
    EXPECT_EQ(text(236, R"({"group":4})"), "RF-Path 5 selected");
    EXPECT_EQ(text(236, R"({"group":0})"), "RF-Path 1 selected");
}

TEST_F(InfoTextCreator, OfPathSelectionWrapsForTheHighestGroup) {
    EXPECT_EQ(text(236, R"({"group":9223372036854775807})"), "RF-Path -9223372036854775808 selected");
}

TEST_F(InfoTextCreator, LooksAtTheIdAlone) {
    const lgb::InfoTextCreator creator;
    EXPECT_EQ(creator.create(warning(20), ""), "System restarted");
    EXPECT_EQ(creator.create(error(236), R"({"group":4})"), "RF-Path 5 selected");
    EXPECT_EQ(creator.create(Code(229, noType), ""), "RF was turned on");
}

TEST_F(InfoTextCreator, GivesFixedTextsWithoutParsing) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, "nonsense"), row.text) << row.id;
    }
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(InfoTextCreator, ParsesOnceForTextsWithMembers) {
    for (const MemberRow& row : textsWithMembers) {
        platform().jsonTextsParsed = 0;
        text(row.id, everyMember);
        EXPECT_EQ(platform().jsonTextsParsed, 1) << row.id;
    }
}

TEST_F(InfoTextCreator, FailsOnUnreadableParametersForTextsWithMembers) {
    for (const unsigned int id : {127u, 128u, 129u, 130u, 200u, 201u, 236u}) {
        EXPECT_THROW(text(id, "nonsense"), recording::JsonError) << id;
        EXPECT_THROW(text(id, ""), recording::JsonError) << id;
    }
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(InfoTextCreator, FailsOnMembersOfAnotherJsonType) {
    for (const MemberRow& row : textsWithMembers) {
        EXPECT_THROW(text(row.id, R"({"interlockMode":[1],"path":[1],"group":[1]})"), Json::LogicError) << row.id;
        EXPECT_THROW(text(row.id, "[1]"), Json::LogicError) << row.id;
    }
}

TEST_F(InfoTextCreator, IgnoresMembersThatATextDoesNotName) {
    EXPECT_EQ(text(127, R"({"path":[1],"group":"x"})"), "Interlock 1 (interactive) was opened");
    EXPECT_EQ(text(236, R"({"group":4,"interlockMode":"x","path":[1]})"), "RF-Path 5 selected");
    EXPECT_EQ(text(200, R"({"path":"A","operatingClass":"x"})"), R"(Output Mode of RF-Path "A" changed to High VSWR)");
    EXPECT_EQ(text(201, R"({"path":"A","outputMode":"x"})"), R"(Operating Class of RF-Path "A" changed to AB)");
}

TEST_F(Interlock, NamesNumberModeAndChange) {
    EXPECT_EQ(lgb::interlock(1, R"({"interlockMode":"automatic"})", false), "Interlock 1 (automatic) was closed");
    EXPECT_EQ(lgb::interlock(2, R"({"interlockMode":"interactive"})", true), "Interlock 2 (interactive) was opened");
}

TEST_F(Interlock, ShowsAnyNumberWithoutSign) {
    EXPECT_EQ(lgb::interlock(4294967295, "{}", true), "Interlock 4294967295 (interactive) was opened");
    EXPECT_EQ(lgb::interlock(0, "{}", true), "Interlock 0 (interactive) was opened");
}

TEST_F(Interlock, ReadsAnEmptyModeAsInteractive) {
    EXPECT_EQ(lgb::interlock(1, R"({"interlockMode":""})", true), "Interlock 1 (interactive) was opened");
}

TEST_F(Interlock, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::interlock(1, "nonsense", true), recording::JsonError);
    EXPECT_THROW(lgb::interlock(1, R"({"interlockMode":["automatic"]})", true), Json::LogicError);
    EXPECT_TRUE(platform().log.empty());
    EXPECT_THROW(lgb::interlock(1, R"({"interlockMode":1})", true), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value 1"});
}

TEST_F(Interlock, ParsesOnce) {
    lgb::interlock(1, "{}", true);
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(OutputModeText, ShowsEachMode) {
    const std::vector<Spelling> spellings{{"VSWR", "High VSWR"}, {"increased1", "1"},    {"increased2", "2"},
                                          {"increased3", "3"},   {"increased4", "4"},    {"increased5", "5"},
                                          {"increased6", "6"},   {"increased7", "7"},    {"increased8", "8"},
                                          {"increased9", "9"},   {"Power", "High Power"}};
    for (const Spelling& mode : spellings) {
        EXPECT_EQ(lgb::outputMode(R"({"path":"A","outputMode":")" + std::string(mode.stored) + R"("})"),
                  R"(Output Mode of RF-Path "A" changed to )" + std::string(mode.shown));
    }
}

TEST_F(OutputModeText, TakesThePathAsItIs) {
    EXPECT_EQ(lgb::outputMode(R"({"path":"a \"b\" ","outputMode":"VSWR"})"),
              R"(Output Mode of RF-Path "a "b" " changed to High VSWR)");
    EXPECT_EQ(lgb::outputMode(R"({"path":2})"), R"(Output Mode of RF-Path "2" changed to High VSWR)");
}

TEST_F(OutputModeText, FailsOnAnUnknownMode) {
    EXPECT_THROW(lgb::outputMode(R"({"path":"A","outputMode":"vswr"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value vswr"});
}

TEST_F(OutputModeText, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::outputMode("nonsense"), recording::JsonError);
    EXPECT_THROW(lgb::outputMode(R"({"path":["A"]})"), Json::LogicError);
    EXPECT_THROW(lgb::outputMode(R"({"outputMode":{}})"), Json::LogicError);
}

TEST_F(OutputModeText, ParsesOnce) {
    lgb::outputMode("{}");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(OperatingClassText, ShowsEachClass) {
    const std::vector<Spelling> spellings{{"AB", "AB"},   {"step1", "1"}, {"step2", "2"}, {"step3", "3"},
                                          {"step4", "4"}, {"step5", "5"}, {"step6", "6"}, {"step7", "7"},
                                          {"step8", "8"}, {"A", "A"}};
    for (const Spelling& operatingClass : spellings) {
        EXPECT_EQ(
            lgb::operatingClass(R"({"path":"B","operatingClass":")" + std::string(operatingClass.stored) + R"("})"),
            R"(Operating Class of RF-Path "B" changed to )" + std::string(operatingClass.shown));
    }
}

TEST_F(OperatingClassText, QuotesAMissingPath) {
    EXPECT_EQ(lgb::operatingClass("{}"), R"(Operating Class of RF-Path "" changed to AB)");
}

TEST_F(OperatingClassText, FailsOnAnUnknownClass) {
    EXPECT_THROW(lgb::operatingClass(R"({"operatingClass":"9"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value 9"});
}

TEST_F(OperatingClassText, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::operatingClass("nonsense"), recording::JsonError);
    EXPECT_THROW(lgb::operatingClass(R"({"path":["A"]})"), Json::LogicError);
    EXPECT_THROW(lgb::operatingClass(R"({"operatingClass":{}})"), Json::LogicError);
}

TEST_F(OperatingClassText, ParsesOnce) {
    lgb::operatingClass("{}");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

}  // namespace

}  // namespace librarytest

#include "LibraryTest.h"
#include "MessageRows.h"

#include <lgb/WarningTextCreator.h>

#include <json/value.h>

namespace librarytest {

namespace {

using WarningTextCreator = LibraryTest;
using GetFanText = LibraryTest;

// clang-format off
const std::vector<Row> fixedTexts{
    { 19, "RF can not be activated with open Interlock"},
    { 23, "Mute can not be activated without option Y542"},
    {102, "Bias-Curr.-Cal. can not run with open Interlock"},
    {103, "Bias-Curr.-Cal. can not run while RF is on"},
    {104, "Bias-Curr.-Cal. can not run while Self-Test runs"},
    {250, "ACB 5V out of range"},
    {251, "ACB 5V_FPGA out of range"},
    {252, "ACB 3V5 out of range"},
    {253, "ACB 12V_SWITCHED out of range"},
    {254, "ACB 6V out of range"},
    {255, "ACB 1V8_PL out of range"},
    {256, "ACB -6V out of range"},
    {257, "Too high internal temperature of ACB"},
};

const std::vector<Row> textsWithPlace{
    { 70, "High input level for amplifier 3 on bus 1"},
    { 97, "Gate current out of range for amplifier 3 on bus 1"},
    {218, "Unexpected VDD_1 for amplifier 3 on bus 1"},
    {219, "Unexpected VDD_2 for amplifier 3 on bus 1"},
    {220, "Unexpected VDD_1 for amplifier 3 on bus 1"},
    {221, "Unexpected VDD_2 for amplifier 3 on bus 1"},
    {222, "Gate current out of range for amplifier 3 on bus 1"},
    {223, "Voltage drop for drain switch (VDD_1) for amplifier 3 on bus 1"},
    {224, "Voltage drop for drain switch (VDD_2) for amplifier 3 on bus 1"},
    {231, "3V6 out of range for amplifier 3 on bus 1"},
    {232, "5V25 out of range for amplifier 3 on bus 1"},
    {233, "6V_INT out of range for amplifier 3 on bus 1"},
    {234, "-5V out of range for amplifier 3 on bus 1"},
    {240, "3V3_REF out of range for power detector 3 on bus 1"},
    {241, "3V6_INT out of range for power detector 3 on bus 1"},
    {242, "5V_REF out of range for power detector 3 on bus 1"},
    {243, "6V out of range for power detector 3 on bus 1"},
    {284, "Setting regulated voltage limit  failed for amplifier 3 on bus 1"},
    {290, "Setting limit PRE_ODR_REF failed for amplifier 3 on bus 1"},
    {291, "Setting temperature limit failed for amplifier 3 on bus 1"},
    {298, "Voltage drop for drain switch (VDD_SW_MON) for amplifier 3 on bus 1"},
    {300, "-6V-ACB out of range for amplifier 3 on bus 1"},
    {303, "+6V-ACB out of range for amplifier 3 on bus 1"},
    {304, "+7V out of range for amplifier 3 on bus 1"},
};

// clang-format on

constexpr unsigned int fans = 78;

std::string text(unsigned int id, const std::string& params) {
    return lgb::WarningTextCreator().create(warning(id), params);
}

std::set<unsigned int> knownIds() {
    return joined(joined(idsOf(fixedTexts), idsOf(textsWithPlace)), joined({fans}, idsOf(sharedTexts)));
}

TEST_F(WarningTextCreator, GivesFixedTexts) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, module3Bus1), row.text) << row.id;
    }
}

TEST_F(WarningTextCreator, NamesTheModuleAndItsBus) {
    for (const Row& row : textsWithPlace) {
        EXPECT_EQ(text(row.id, module3Bus1), row.text) << row.id;
    }
}

TEST_F(WarningTextCreator, KnowsNoOtherIds) {
    for (const unsigned int id : idsBesides(knownIds())) {
        EXPECT_EQ(text(id, module3Bus1), "unknown entry") << id;
    }
    EXPECT_EQ(text(4294967295, module3Bus1), "unknown entry");
}

TEST_F(WarningTextCreator, LooksAtTheIdAloneForTextsOfItsOwn) {
    const lgb::WarningTextCreator creator;
    EXPECT_EQ(creator.create(error(70), module3Bus1), "High input level for amplifier 3 on bus 1");
    EXPECT_EQ(creator.create(info(250), ""), "ACB 5V out of range");
    EXPECT_EQ(creator.create(Code(304, noType), module3Bus1), "+7V out of range for amplifier 3 on bus 1");
}

TEST_F(WarningTextCreator, PassesTheTypeOnForSharedTexts) {
    EXPECT_EQ(lgb::WarningTextCreator().create(error(6), module3Bus1), "Too low current for amplifier 3 on bus 1");
}

TEST_F(WarningTextCreator, GivesTheSharedAnswerForIdsThatItDoesNotList) {
    EXPECT_EQ(text(1, module3Bus1), "Too high temperature for amplifier 3 on bus 1");
    EXPECT_EQ(text(225, module3Bus1), "VD_DRV out of range for amplifier 3 on bus 1 reduced RF Power");
    EXPECT_EQ(text(285, module3Bus1), "-6V out of range for amplifier 3 on bus 1");
    for (const unsigned int id : {0u, 18u, 20u, 79u, 305u, 306u, 1000u}) {
        EXPECT_EQ(text(id, module3Bus1), "unknown entry") << id;
        EXPECT_THROW(text(id, "nonsense"), recording::JsonError) << id;
    }
}

TEST_F(WarningTextCreator, OfNoMembersTellsKnownIdsFromUnknownOnes) {
    EXPECT_EQ(text(20, "{}"), "unknown entry");
    EXPECT_EQ(text(79, "{}"), "unknown entry");
    EXPECT_EQ(text(286, "{}"), "+3.5V out of range for amplifier 0 on bus 0");
}

TEST_F(WarningTextCreator, OfTheAcbNeverLooksAtItsParameters) {
    for (const char* params : {"", "{", "nonsense", "[1]", "{}", R"({"bus":"x"})", R"({"bus":1,"module":3})"}) {
        EXPECT_EQ(text(250, params), "ACB 5V out of range") << params;
        EXPECT_EQ(text(257, params), "Too high internal temperature of ACB") << params;
    }
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(WarningTextCreator, OfPowerDetectorVoltageNamesModule0OnBus2) {
    EXPECT_EQ(text(243, R"({"module":0,"bus":2})"), "6V out of range for power detector 0 on bus 2");
}

TEST_F(WarningTextCreator, OfFansNamesTheDefectiveAndTheWorkingOne) {
    EXPECT_EQ(text(78, R"({"ok":true})"), "Detected defective fan 1 (with fan 0 ok)");
    EXPECT_EQ(text(78, R"({"ok":false})"), "Detected defective fan 0 (with fan 1 ok)");
    EXPECT_EQ(text(78, "{}"), "Detected defective fan 0 (with fan 1 ok)");
}

TEST_F(WarningTextCreator, OfUnexpectedVoltageIsTheSameForTwoIds) {
    EXPECT_EQ(text(218, R"({"module":1,"bus":1})"), "Unexpected VDD_1 for amplifier 1 on bus 1");
    EXPECT_EQ(text(220, R"({"module":1,"bus":1})"), "Unexpected VDD_1 for amplifier 1 on bus 1");
}

TEST_F(WarningTextCreator, OfRegulatedVoltageLimitHasTwoBlanks) {
    EXPECT_EQ(text(284, "{}"), "Setting regulated voltage limit  failed for amplifier 0 on bus 0");
    EXPECT_EQ(text(291, "{}"), "Setting temperature limit failed for amplifier 0 on bus 0");
}

TEST_F(WarningTextCreator, GivesFixedTextsWithoutParsing) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, "nonsense"), row.text) << row.id;
    }
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(WarningTextCreator, FailsOnUnreadableParametersForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        EXPECT_THROW(text(id, "nonsense"), recording::JsonError) << id;
        EXPECT_THROW(text(id, ""), recording::JsonError) << id;
    }
}

TEST_F(WarningTextCreator, ParsesOnceForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        platform().jsonTextsParsed = 0;
        text(id, module3Bus1);
        EXPECT_EQ(platform().jsonTextsParsed, 1) << id;
    }
}

TEST_F(WarningTextCreator, FailsOnMembersOfAnotherJsonTypeForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        EXPECT_THROW(text(id, R"({"bus":[1],"module":[3],"ok":[true]})"), Json::LogicError) << id;
        EXPECT_THROW(text(id, "[1]"), Json::LogicError) << id;
    }
}

TEST_F(WarningTextCreator, FailsOnNegativeModulesAndBuses) {
    for (const Row& row : textsWithPlace) {
        EXPECT_THROW(text(row.id, R"({"bus":-1,"module":3})"), Json::LogicError) << row.id;
        EXPECT_THROW(text(row.id, R"({"bus":1,"module":-3})"), Json::LogicError) << row.id;
    }
}

TEST_F(WarningTextCreator, IgnoresMembersThatATextDoesNotName) {
    EXPECT_EQ(text(78, R"({"ok":true,"bus":[1],"module":"x"})"), "Detected defective fan 1 (with fan 0 ok)");
    for (const Row& row : textsWithPlace) {
        EXPECT_EQ(text(row.id, R"({"bus":1,"module":3,"ok":[true],"group":"x"})"), row.text) << row.id;
    }
}

TEST_F(WarningTextCreator, OfEmptyParametersReadsNoMembersWhereThePlatformTakesThem) {
    platform().emptyTextIsNull = true;
    EXPECT_EQ(text(70, ""), "High input level for amplifier 0 on bus 0");
    EXPECT_EQ(text(78, ""), "Detected defective fan 0 (with fan 1 ok)");
    EXPECT_EQ(text(20, ""), "unknown entry");
}

TEST_F(GetFanText, NamesTheOtherFanAsTheWorkingOne) {
    EXPECT_EQ(lgb::getFanText(R"({"ok":true})"), "Detected defective fan 1 (with fan 0 ok)");
    EXPECT_EQ(lgb::getFanText(R"({"ok":false})"), "Detected defective fan 0 (with fan 1 ok)");
}

TEST_F(GetFanText, ReadsAMissingMemberAsFalse) {
    EXPECT_EQ(lgb::getFanText("{}"), "Detected defective fan 0 (with fan 1 ok)");
}

TEST_F(GetFanText, ParsesOnce) {
    lgb::getFanText(R"({"ok":true})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(GetFanText, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::getFanText("nonsense"), recording::JsonError);
    EXPECT_THROW(lgb::getFanText(R"({"ok":"true"})"), Json::LogicError);
    EXPECT_THROW(lgb::getFanText("[true]"), Json::LogicError);
}

}  // namespace

}  // namespace librarytest

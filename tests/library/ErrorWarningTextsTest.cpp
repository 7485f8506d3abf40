#include "LibraryTest.h"

#include <lgb/ErrorTextCreator.h>
#include <lgb/ErrorWarningTexts.h>
#include <lgb/WarningTextCreator.h>

#include <json/value.h>

#include <set>

namespace librarytest {

namespace {

using ErrorWarningTexts = LibraryTest;

const std::string module3Bus1 = R"({"bus":1,"module":3})";

struct Row {
    unsigned int id;
    const char* error;
    const char* warning;
};

// clang-format off
const std::vector<Row> rows{
    {  1, "Too high temperature for amplifier 3 on bus 1",              "Too high temperature for amplifier 3 on bus 1"},
    {  6, "Too low current for amplifier 3 on bus 1",                   "Too low current for amplifier 3 on bus 1 reduced RF Power"},
    {  7, "-5V out of range for amplifier 3 on bus 1",                  "-5V out of range for amplifier 3 on bus 1"},
    { 12, "Setting to Operate 0 failed for amplifier 3 on bus 1",       "Setting to Operate 0 failed for amplifier 3 on bus 1"},
    { 14, "Setting attenuation failed for amplifier 3 on bus 1",        "Setting attenuation failed for amplifier 3 on bus 1"},
    { 44, "Setting current failed for amplifier 3 on bus 1",            "Setting current failed for amplifier 3 on bus 1"},
    { 63, "Too low driver current for amplifier 3 on bus 1",            "Too low driver current for amplifier 3 on bus 1 reduced RF Power"},
    {202, "VDD out of range for amplifier 3 on bus 1",                  "VDD out of range for amplifier 3 on bus 1 reduced RF Power"},
    {204, "Too low pre driver current for amplifier 3 on bus 1",        "Too low pre driver current for amplifier 3 on bus 1 reduced RF Power"},
    {210, "Setting vGateHmc994 failed for amplifier 3 on bus 1",        "Setting vGateHmc994 failed for amplifier 3 on bus 1"},
    {214, "6V-Switched out of range for amplifier 3 on bus 1",          "6V-Switched out of range for amplifier 3 on bus 1"},
    {215, "VDD_1 out of range for amplifier 3 on bus 1",                "VDD_1 out of range for amplifier 3 on bus 1 reduced RF Power"},
    {216, "VDD_2 out of range for amplifier 3 on bus 1",                "VDD_2 out of range for amplifier 3 on bus 1 reduced RF Power"},
    {217, "Unexpected VDD for amplifier 3 on bus 1",                    "Unexpected VDD for amplifier 3 on bus 1"},
    {225, "VD_DRV out of range for amplifier 3 on bus 1",               "VD_DRV out of range for amplifier 3 on bus 1 reduced RF Power"},
    {226, "VD_PRE_DRV out of range for amplifier 3 on bus 1",           "VD_PRE_DRV out of range for amplifier 3 on bus 1 reduced RF Power"},
    {227, "Setting POTI 0 failed for power detector 3 on bus 1",        "Setting POTI 0 failed for power detector 3 on bus 1"},
    {228, "Setting POTI 1 failed for power detector 3 on bus 1",        "Setting POTI 1 failed for power detector 3 on bus 1"},
    {235, "Gate current out of range for amplifier 3 on bus 1",         "Gate current out of range for amplifier 3 on bus 1"},
    {285, "-6V out of range for amplifier 3 on bus 1",                  "-6V out of range for amplifier 3 on bus 1"},
    {286, "+3.5V out of range for amplifier 3 on bus 1",                "+3.5V out of range for amplifier 3 on bus 1"},
    {287, "+5V out of range for amplifier 3 on bus 1",                  "+5V out of range for amplifier 3 on bus 1"},
    {288, "VDD_PRE_10V_MON out of range for amplifier 3 on bus 1",      "VDD_PRE_10V_MON out of range for amplifier 3 on bus 1"},
    {289, "VDD_PRE_15V_MON out of range for amplifier 3 on bus 1",      "VDD_PRE_15V_MON out of range for amplifier 3 on bus 1"},
    {293, "Setting ZERO_GATE failed for power detector 3 on bus 1",     "Setting ZERO_GATE failed for power detector 3 on bus 1"},
    {294, "-3.5V out of range failed for power detector 3 on bus 1",    "-3.5V out of range failed for power detector 3 on bus 1"},
    {295, "Unexpected VDD_SW_MON for amplifier 3 on bus 1",             "Unexpected VDD_SW_MON for amplifier 3 on bus 1"},
    {296, "VDD_SW_MON out of range failed for power detector 3 on bus 1", "VDD_SW_MON out of range failed for power detector 3 on bus 1"},
    {302, "VDD_MON out of range for amplifier 3 on bus 1",              "VDD_MON out of range for amplifier 3 on bus 1"},
};

// clang-format on

std::string text(const Code& code, const std::string& params) {
    return lgb::ErrorWarningTexts().getText(code, params);
}

std::set<unsigned int> knownIds() {
    std::set<unsigned int> ids;
    for (const Row& row : rows) {
        ids.insert(row.id);
    }
    return ids;
}

TEST_F(ErrorWarningTexts, HaveAnErrorAndAWarningFormOfEachMessage) {
    for (const Row& row : rows) {
        EXPECT_EQ(text(error(row.id), module3Bus1), row.error) << row.id;
        EXPECT_EQ(text(warning(row.id), module3Bus1), row.warning) << row.id;
    }
}

TEST_F(ErrorWarningTexts, SpeakThroughTheErrorTextCreator) {
    for (const Row& row : rows) {
        EXPECT_EQ(lgb::ErrorTextCreator().create(error(row.id), module3Bus1), row.error) << row.id;
    }
}

TEST_F(ErrorWarningTexts, SpeakThroughTheWarningTextCreator) {
    for (const Row& row : rows) {
        EXPECT_EQ(lgb::WarningTextCreator().create(warning(row.id), module3Bus1), row.warning) << row.id;
    }
}

TEST_F(ErrorWarningTexts, OfAnyOtherTypeHaveTheErrorForm) {
    for (const Row& row : rows) {
        EXPECT_EQ(text(info(row.id), module3Bus1), row.error) << row.id;
        EXPECT_EQ(text(Code(row.id, noType), module3Bus1), row.error) << row.id;
    }
}

TEST_F(ErrorWarningTexts, KnowNoOtherIds) {
    const std::set<unsigned int> known = knownIds();
    for (unsigned int id = 0; id <= 330; ++id) {
        if (known.count(id) == 0) {
            EXPECT_EQ(text(error(id), module3Bus1), "unknown entry") << id;
            EXPECT_EQ(text(warning(id), module3Bus1), "unknown entry") << id;
        }
    }
    EXPECT_EQ(text(error(4294967295), module3Bus1), "unknown entry");
}

TEST_F(ErrorWarningTexts, OfLowCurrentNameReducedPowerOnlyAsWarning) {
    EXPECT_EQ(text(error(6), module3Bus1), "Too low current for amplifier 3 on bus 1");
    EXPECT_EQ(text(warning(6), module3Bus1), "Too low current for amplifier 3 on bus 1 reduced RF Power");
}

TEST_F(ErrorWarningTexts, OfHighTemperatureNeverNameReducedPower) {
    EXPECT_EQ(text(error(1), module3Bus1), "Too high temperature for amplifier 3 on bus 1");
    EXPECT_EQ(text(warning(1), module3Bus1), "Too high temperature for amplifier 3 on bus 1");
}

TEST_F(ErrorWarningTexts, OfOperate0HaveOneBlankBeforeFailed) {
    EXPECT_EQ(text(error(12), module3Bus1), "Setting to Operate 0 failed for amplifier 3 on bus 1");
}

TEST_F(ErrorWarningTexts, OfIdsWithoutARowAreUnknown) {
    EXPECT_EQ(text(error(3), module3Bus1), "unknown entry");
    EXPECT_EQ(text(error(0), module3Bus1), "unknown entry");
    EXPECT_EQ(text(error(303), module3Bus1), "unknown entry");
}

TEST_F(ErrorWarningTexts, OfNoMembersNameModule0OnBus0) {
    EXPECT_EQ(text(error(227), "{}"), "Setting POTI 0 failed for power detector 0 on bus 0");
    EXPECT_EQ(text(warning(6), "{}"), "Too low current for amplifier 0 on bus 0 reduced RF Power");
    EXPECT_EQ(text(error(3), "{}"), "unknown entry");
}

TEST_F(ErrorWarningTexts, OfId3FailOnUnreadableParameters) {
    EXPECT_THROW(text(error(3), "nonsense"), recording::JsonError);
}

TEST_F(ErrorWarningTexts, FailOnUnreadableParametersWhateverTheId) {
    for (unsigned int id = 0; id <= 330; ++id) {
        EXPECT_THROW(text(error(id), "nonsense"), recording::JsonError) << id;
        EXPECT_THROW(text(warning(id), "nonsense"), recording::JsonError) << id;
    }
}

TEST_F(ErrorWarningTexts, FailOnMembersOfAnotherJsonTypeWhateverTheId) {
    for (unsigned int id = 0; id <= 330; ++id) {
        EXPECT_THROW(text(error(id), R"({"bus":"x","module":3})"), Json::LogicError) << id;
        EXPECT_THROW(text(error(id), R"({"bus":1,"module":-3})"), Json::LogicError) << id;
        EXPECT_THROW(text(warning(id), "[1]"), Json::LogicError) << id;
    }
}

TEST_F(ErrorWarningTexts, IgnoreOtherMembers) {
    EXPECT_EQ(text(error(1), R"({"bus":1,"group":"x","module":3,"on":[]})"),
              "Too high temperature for amplifier 3 on bus 1");
}

TEST_F(ErrorWarningTexts, ParseTheirParametersOnce) {
    for (unsigned int id = 0; id <= 330; ++id) {
        platform().jsonTextsParsed = 0;
        text(warning(id), module3Bus1);
        EXPECT_EQ(platform().jsonTextsParsed, 1) << id;
    }
}

TEST_F(ErrorWarningTexts, LogNothing) {
    text(error(3), module3Bus1);
    EXPECT_THROW(text(error(1), "nonsense"), recording::JsonError);
    EXPECT_TRUE(platform().log.empty());
}

}  // namespace

}  // namespace librarytest

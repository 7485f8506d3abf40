#include "LibraryTest.h"
#include "MessageRows.h"

#include <lgb/ErrorTextCreator.h>
#include <lgb/ErrorWarningTexts.h>
#include <lgb/WarningTextCreator.h>

#include <json/value.h>

namespace librarytest {

namespace {

using ErrorWarningTexts = LibraryTest;

std::string text(const Code& code, const std::string& params) {
    return lgb::ErrorWarningTexts().getText(code, params);
}

TEST_F(ErrorWarningTexts, HaveAnErrorAndAWarningFormOfEachMessage) {
    for (const SharedRow& row : sharedTexts) {
        EXPECT_EQ(text(error(row.id), module3Bus1), row.error) << row.id;
        EXPECT_EQ(text(warning(row.id), module3Bus1), row.warning) << row.id;
    }
}

TEST_F(ErrorWarningTexts, SpeakThroughTheErrorTextCreator) {
    for (const SharedRow& row : sharedTexts) {
        EXPECT_EQ(lgb::ErrorTextCreator().create(error(row.id), module3Bus1), row.error) << row.id;
    }
}

TEST_F(ErrorWarningTexts, SpeakThroughTheWarningTextCreator) {
    for (const SharedRow& row : sharedTexts) {
        EXPECT_EQ(lgb::WarningTextCreator().create(warning(row.id), module3Bus1), row.warning) << row.id;
    }
}

TEST_F(ErrorWarningTexts, OfAnyOtherTypeHaveTheErrorForm) {
    for (const SharedRow& row : sharedTexts) {
        EXPECT_EQ(text(info(row.id), module3Bus1), row.error) << row.id;
        EXPECT_EQ(text(Code(row.id, noType), module3Bus1), row.error) << row.id;
    }
}

TEST_F(ErrorWarningTexts, KnowNoOtherIds) {
    for (const unsigned int id : idsBesides(idsOf(sharedTexts))) {
        EXPECT_EQ(text(error(id), module3Bus1), "unknown entry") << id;
        EXPECT_EQ(text(warning(id), module3Bus1), "unknown entry") << id;
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

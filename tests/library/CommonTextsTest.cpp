#include "LibraryTest.h"

#include <businesslogic/zel/createStr.h>
#include <lgb/commontexts.h>
#include <nsa/zel/enums/TypeProduct.h>

#include <json/value.h>

#include <functional>

namespace librarytest {

namespace {

using namespace lgb::commontexts;
using businesslogic::zel::createStr;

using CommonTexts = LibraryTest;
using CreateStr = LibraryTest;

const std::string module3Bus1 = R"({"bus":1,"module":3})";

struct Fragment {
    const char* name;
    std::function<std::string(const std::string&)> text;
    const char* ofModule3Bus1;
    const char* ofNoMembers;
};

// clang-format off
const std::vector<Fragment> placeFragments{
    {"ModuleOnBus",  ModuleOnBus,  "3 on bus 1",                           "0 on bus 0"},
    {"ForPd",        ForPd,        "for power detector 3 on bus 1",        "for power detector 0 on bus 0"},
    {"FailedForPd",  FailedForPd,  "failed for power detector 3 on bus 1", "failed for power detector 0 on bus 0"},
    {"ForAmp",       ForAmp,       "for amplifier 3 on bus 1",             "for amplifier 0 on bus 0"},
    {"FailedForAmp", FailedForAmp, "failed for amplifier 3 on bus 1",      "failed for amplifier 0 on bus 0"},
    {"ForPab",       ForPab,       "for power supply 3 on bus 1",          "for power supply 0 on bus 0"},
    {"FailedForPab", FailedForPab, "failed for power supply 3 on bus 1",   "failed for power supply 0 on bus 0"},
};

// clang-format on

TEST_F(CommonTexts, ConstantsCarryNoBlanks) {
    EXPECT_STREQ(forPdStr, "for power detector");
    EXPECT_STREQ(failedStr, "failed");
    EXPECT_STREQ(forAmpStr, "for amplifier");
    EXPECT_STREQ(forPabStr, "for power supply");
    EXPECT_STREQ(rfPathStr, "RF-Path");
}

TEST_F(CommonTexts, PlacesNameModuleAndBus) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_EQ(fragment.text(module3Bus1), fragment.ofModule3Bus1) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesReadMissingMembersAsZero) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_EQ(fragment.text("{}"), fragment.ofNoMembers) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesOfANullRecordNameZeros) {
    EXPECT_EQ(ForAmp("null"), "for amplifier 0 on bus 0");
}

TEST_F(CommonTexts, PlacesIgnoreOtherMembers) {
    EXPECT_EQ(ForAmp(R"({"group":"x","bus":1,"on":[1],"module":3})"), "for amplifier 3 on bus 1");
}

TEST_F(CommonTexts, ModuleOnBusShowsModule12OnBus0) {
    EXPECT_EQ(ModuleOnBus(R"({"module":12,"bus":0})"), "12 on bus 0");
}

TEST_F(CommonTexts, ModuleOnBusOfNoMembersShowsZeros) {
    EXPECT_EQ(ModuleOnBus("{}"), "0 on bus 0");
}

TEST_F(CommonTexts, ModuleOnBusShowsAll64BitsWithoutSign) {
    EXPECT_EQ(ModuleOnBus(R"({"module":18446744073709551615,"bus":4294967296})"),
              "18446744073709551615 on bus 4294967296");
}

TEST_F(CommonTexts, FailedForPdShowsModule1OnBus2) {
    EXPECT_EQ(FailedForPd(R"({"module":1,"bus":2})"), "failed for power detector 1 on bus 2");
}

TEST_F(CommonTexts, PlacesParseTheirParametersOnce) {
    for (const Fragment& fragment : placeFragments) {
        platform().jsonTextsParsed = 0;
        fragment.text(module3Bus1);
        EXPECT_EQ(platform().jsonTextsParsed, 1) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesFailOnTextThatIsNotJson) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_THROW(fragment.text("{"), recording::JsonError) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesFailOnMembersOfAnotherJsonType) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_THROW(fragment.text(R"({"module":"x","bus":1})"), Json::LogicError) << fragment.name;
        EXPECT_THROW(fragment.text(R"({"module":3,"bus":"x"})"), Json::LogicError) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesFailOnNegativeNumbers) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_THROW(fragment.text(R"({"module":3,"bus":-1})"), Json::LogicError) << fragment.name;
        EXPECT_THROW(fragment.text(R"({"module":-1,"bus":1})"), Json::LogicError) << fragment.name;
    }
}

TEST_F(CommonTexts, PlacesFailOnARecordThatIsNoObject) {
    for (const Fragment& fragment : placeFragments) {
        EXPECT_THROW(fragment.text("[1]"), Json::LogicError) << fragment.name;
    }
}

TEST_F(CommonTexts, EmptyParametersAreWhatThePlatformMakesOfThem) {
    EXPECT_THROW(ForAmp(""), recording::JsonError);
    platform().emptyTextIsNull = true;
    EXPECT_EQ(ForAmp(""), "for amplifier 0 on bus 0");
}

TEST_F(CommonTexts, OnOffIsThePlatformsWord) {
    EXPECT_EQ(OnOff(R"({"on":true})"), "aglow");
    EXPECT_EQ(OnOff(R"({"on":false})"), "dark");
}

TEST_F(CommonTexts, OnOffOfNoMemberIsOff) {
    EXPECT_EQ(OnOff("{}"), "dark");
}

TEST_F(CommonTexts, OnOffParsesOnce) {
    OnOff(R"({"on":true})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(CommonTexts, OnOffFailsOnWhatItCannotRead) {
    EXPECT_THROW(OnOff("on"), recording::JsonError);
    EXPECT_THROW(OnOff(R"({"on":"true"})"), Json::LogicError);
    EXPECT_THROW(OnOff("[true]"), Json::LogicError);
}

TEST_F(CommonTexts, GroupNrExternCountsFromOne) {
    EXPECT_EQ(GroupNrExtern(R"({"group":0})"), "1");
    EXPECT_EQ(GroupNrExtern(R"({"group":41})"), "42");
}

TEST_F(CommonTexts, GroupNrExternOfNoMemberIsOne) {
    EXPECT_EQ(GroupNrExtern("{}"), "1");
}

TEST_F(CommonTexts, GroupNrExternTakesNegativeGroups) {
    EXPECT_EQ(GroupNrExtern(R"({"group":-1})"), "0");
    EXPECT_EQ(GroupNrExtern(R"({"group":-5})"), "-4");
    EXPECT_EQ(GroupNrExtern(R"({"group":-9223372036854775808})"), "-9223372036854775807");
}

TEST_F(CommonTexts, GroupNrExternIs64BitsWide) {
    EXPECT_EQ(GroupNrExtern(R"({"group":2147483647})"), "2147483648");
    EXPECT_EQ(GroupNrExtern(R"({"group":9223372036854775806})"), "9223372036854775807");
}

TEST_F(CommonTexts, GroupNrExternOfTheHighestGroupWraps) {
    EXPECT_EQ(GroupNrExtern(R"({"group":9223372036854775807})"), "-9223372036854775808");
}

TEST_F(CommonTexts, GroupNrExternParsesOnce) {
    GroupNrExtern(R"({"group":4})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(CommonTexts, GroupNrExternFailsOnWhatItCannotRead) {
    EXPECT_THROW(GroupNrExtern("group"), recording::JsonError);
    EXPECT_THROW(GroupNrExtern(R"({"group":"4"})"), Json::LogicError);
    EXPECT_THROW(GroupNrExtern(R"({"group":9223372036854775808})"), Json::LogicError);
    EXPECT_THROW(GroupNrExtern("[4]"), Json::LogicError);
}

TEST_F(CommonTexts, ReducedSpeaksForWarningsAlone) {
    EXPECT_EQ(Reduced(LogbookEntryType::Warning), " reduced RF Power");
    EXPECT_EQ(Reduced(LogbookEntryType::Info), "");
    EXPECT_EQ(Reduced(LogbookEntryType::Error), "");
    EXPECT_EQ(Reduced(noType), "");
}

TEST_F(CommonTexts, OutOfRFollowsWithABlank) {
    EXPECT_EQ(OutOfR("VDD"), "VDD out of range");
}

TEST_F(CommonTexts, OutOfROfNothingStartsWithTheBlank) {
    EXPECT_EQ(OutOfR(""), " out of range");
}

TEST_F(CommonTexts, OutOfRKeepsATrailingBlank) {
    EXPECT_EQ(OutOfR("V_PRE_MON "), "V_PRE_MON  out of range");
}

TEST_F(CommonTexts, FailedStartsWithABlank) {
    EXPECT_EQ(failed(), " failed");
}

TEST_F(CommonTexts, SettingOfNothingEndsWithoutBlank) {
    EXPECT_EQ(Setting(""), "Setting");
}

TEST_F(CommonTexts, SettingKeepsATrailingBlank) {
    EXPECT_EQ(Setting("POTI "), "Setting POTI ");
    EXPECT_EQ(Setting("POTI"), "Setting POTI");
}

TEST_F(CommonTexts, SettingOfABlankHasTwo) {
    EXPECT_EQ(Setting(" "), "Setting  ");
}

TEST_F(CommonTexts, FragmentsWithoutParametersParseNothing) {
    Reduced(LogbookEntryType::Warning);
    OutOfR("VDD");
    failed();
    Setting("POTI ");
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(CommonTexts, FragmentsLogNothing) {
    ForAmp(module3Bus1);
    OnOff("{}");
    GroupNrExtern("{}");
    EXPECT_THROW(ForAmp("{"), recording::JsonError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(CreateStr, PutsNothingBetweenItsArguments) {
    EXPECT_EQ(createStr('x', std::string("ab"), 'y'), "xaby");
    EXPECT_EQ(createStr("Selecting of ", rfPathStr, std::string(" Group 1"), std::string(" failed")),
              "Selecting of RF-Path Group 1 failed");
}

TEST_F(CreateStr, OfAnEmptyTextIsEmpty) {
    EXPECT_EQ(createStr(std::string()), "");
}

TEST_F(CreateStr, SpellsABool) {
    EXPECT_EQ(createStr(true), "true");
    EXPECT_EQ(createStr(false), "false");
}

TEST_F(CreateStr, WritesNumbersInPlainDecimal) {
    EXPECT_EQ(createStr(1234567, " on bus ", 18446744073709551615u), "1234567 on bus 18446744073709551615");
    EXPECT_EQ(createStr(-7), "-7");
}

TEST_F(CreateStr, WritesAProductsSpelling) {
    EXPECT_EQ(createStr(enums::TypeProduct::Wren, ' ', std::string("too hot")), "Wren too hot");
    EXPECT_EQ(createStr(static_cast<enums::TypeProduct>(4), ' ', std::string("too hot")), " too hot");
    EXPECT_EQ(createStr(static_cast<enums::TypeProduct>(-1), ' ', std::string("too hot")), " too hot");
}

TEST_F(CreateStr, KeepsZeroBytesOfAString) {
    EXPECT_EQ(createStr(std::string("a\0b", 3), 'c'), std::string("a\0bc", 4));
}

TEST_F(CreateStr, EndsAtANullText) {
    const char* const nothing = nullptr;
    EXPECT_EQ(createStr("before", nothing, "behind", 7), "before");
    EXPECT_EQ(createStr(nothing), "");
}

}  // namespace

}  // namespace librarytest

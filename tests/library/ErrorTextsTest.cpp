#include "LibraryTest.h"
#include "MessageRows.h"

#include <lgb/ErrorTextCreator.h>

#include <json/value.h>

namespace librarytest {

namespace {

using ErrorTextCreator = LibraryTest;
using SystemBusErrorMsg = LibraryTest;
using InvalidConfig = LibraryTest;

const std::string everyMember = R"({"bus":1,"module":3,"group":4,"on":true,"value":"7","type":"X","version":"2.1",)"
                                R"("watt":true,"outputMode":"Power","operatingClass":"A","role":"device","nr":2})";

const std::string placesUnreadable = R"({"bus":[1],"module":[3],"group":4,"on":true,"value":"7","type":"X",)"
                                     R"("version":"2.1","watt":true,"outputMode":"Power","operatingClass":"A",)"
                                     R"("role":"device","nr":2})";

const std::string allUnreadable = R"({"bus":[1],"module":[3],"group":[4],"on":[true],"value":["7"],"type":["X"],)"
                                  R"("version":["2.1"],"watt":[true],"outputMode":["Power"],"operatingClass":["A"],)"
                                  R"("role":["device"],"nr":[2]})";

// clang-format off
const std::vector<Row> fixedTexts{
    { 17, "RF can not be activated with invalid system cfg"},
    { 28, "Inconsistent firmware versions"},
    { 79, "Detected all fans to be defective"},
    {100, "Bias-Current-Calibration failed"},
    {237, "Connecting failed"},
    {238, "Connection lost"},
    {260, "Start not finished"},
    {261, "Not in REMOTE mode"},
    {262, "Acquiring exclusive lock failed"},
    {263, "Initialization failed"},
    {264, "Cyclic check failed"},
    {275, "Connecting to unit failed"},
    {276, "Connection to unit lost"},
};

const std::vector<Row> textsWithPlace{
    {  3, "Temperature below average for amplifier 3 on bus 1"},
    {  4, "Temperature above average for amplifier 3 on bus 1"},
    {  9, "Setting POTI failed for amplifier 3 on bus 1"},
    { 10, "Setting to OFF failed for amplifier 3 on bus 1"},
    { 13, "Setting to Operate 1 failed for amplifier 3 on bus 1"},
    { 15, "Self-Protection occurred for amplifier 3 on bus 1"},
    { 62, "Too high driver current for amplifier 3 on bus 1"},
    { 67, "Invalid device cfg! Wrong amplifier 3 on bus 1"},
    { 68, "Invalid device cfg! Wrong power det. 3 on bus 1"},
    { 73, "Voltage out of range for power supply 3 on bus 1"},
    { 77, "Bias-Current-Cal. failed for amplifier 3 on bus 1"},
    { 80, "Too high input level for amplifier 3 on bus 1"},
    { 82, "Switching failed for power supply 3 on bus 1"},
    { 83, "Too high amp-input for amplifier 3 on bus 1"},
    {131, "Invalid device cfg! Wrong power supply 3 on bus 1"},
    {205, "Too high pre driver current for amplifier 3 on bus 1"},
    {207, "Setting vGateCha3024 failed for amplifier 3 on bus 1"},
    {208, "Setting vGateHmc998 failed for amplifier 3 on bus 1"},
    {209, "Setting vGateHmc994 failed for amplifier 3 on bus 1"},
    {211, "Setting of RfCtrlVdd failed for amplifier 3 on bus 1"},
    {212, "Setting of VDD_1 failed for amplifier 3 on bus 1"},
    {213, "Setting of VDD_2 failed for amplifier 3 on bus 1"},
    {286, "+3.5V out of range for amplifier 3 on bus 1"},
    {292, "Setting DAC V_G_PRE failed for amplifier 3 on bus 1"},
    {297, "V_PRE_MON  out of range for amplifier 3 on bus 1"},
    {301, "PRE_VDD_MON out of range for amplifier 3 on bus 1"},
    {305, "Too low HMC998 current for amplifier 3 on bus 1"},
    {306, "Too high HMC998 current for amplifier 3 on bus 1"},
    {307, "Too low HMC994 current for amplifier 3 on bus 1"},
    {308, "Too high HMC994 current for amplifier 3 on bus 1"},
    {309, "Temperature failure for amplifier 3 on bus 1"},
    {310, "RF input overdrive for amplifier 3 on bus 1"},
    {311, "-6V failure for amplifier 3 on bus 1"},
};

const std::vector<MemberRow> textsWithOtherMembers{
    {203, "Setting AMPL_ON failed for bus 7",                          "Setting AMPL_ON failed for bus "},
    {258, "Invalid Product Type X",                                    "Invalid Product Type "},
    {259, "Incompatible Firmware 2.1",                                 "Incompatible Firmware "},
    {265, "Setting Automatic Standby to aglow failed",                 "Setting Automatic Standby to dark failed"},
    {266, "Setting Fan Control Mode to 7 failed",                      "Setting Fan Control Mode to  failed"},
    {267, "Turning RF aglow failed",                                   "Turning RF dark failed"},
    {268, "Setting Power Unit to W failed",                            "Setting Power Unit to dBm failed"},
    {269, "Setting Mute Ready to aglow failed",                        "Setting Mute Ready to dark failed"},
    {270, "Selecting of RF-Path Group 5 failed",                       "Selecting of RF-Path Group 1 failed"},
    {271, "Selecting of RF-Path 5 failed",                             "Selecting of RF-Path 1 failed"},
    {272, "Setting Output Mode to High Power failed",                  "Setting Output Mode to High VSWR failed"},
    {273, "Setting Operating Class to A failed",                       "Setting Operating Class to AB failed"},
    {274, "Setting Gain to 7 failed",                                  "Setting Gain to  failed"},
    {278, "Interrupted System Bus (X102) before unit 7",               "Interrupted System Bus (X102) before unit "},
    {279, "Interrupted System Bus (X102) before device 7",             "Interrupted System Bus (X102) before device "},
    {282, "Invalid configuration for device 2",                        "Invalid configuration for unit 0"},
    {312, "All VDDs out of range for all amplifiers of RF-Path 5",     "All VDDs out of range for all amplifiers of RF-Path 1"},
};

// clang-format on

std::string text(unsigned int id, const std::string& params) {
    return lgb::ErrorTextCreator().create(error(id), params);
}

std::set<unsigned int> knownIds() {
    return joined(joined(idsOf(fixedTexts), idsOf(textsWithPlace)),
                  joined(idsOf(textsWithOtherMembers), idsOf(sharedTexts)));
}

TEST_F(ErrorTextCreator, GivesFixedTexts) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, everyMember), row.text) << row.id;
    }
}

TEST_F(ErrorTextCreator, NamesTheModuleAndItsBus) {
    for (const Row& row : textsWithPlace) {
        EXPECT_EQ(text(row.id, module3Bus1), row.text) << row.id;
    }
}

TEST_F(ErrorTextCreator, NamesWhatItsParametersTell) {
    for (const MemberRow& row : textsWithOtherMembers) {
        EXPECT_EQ(text(row.id, everyMember), row.text) << row.id;
    }
}

TEST_F(ErrorTextCreator, ReadsMissingMembersAsZeroOrEmpty) {
    for (const MemberRow& row : textsWithOtherMembers) {
        EXPECT_EQ(text(row.id, "{}"), row.ofNoMembers) << row.id;
    }
}

TEST_F(ErrorTextCreator, KnowsNoOtherIds) {
    for (const unsigned int id : idsBesides(knownIds())) {
        EXPECT_EQ(text(id, everyMember), "unknown entry") << id;
    }
    EXPECT_EQ(text(4294967295, everyMember), "unknown entry");
}

TEST_F(ErrorTextCreator, LooksAtTheIdAloneForTextsOfItsOwn) {
    const lgb::ErrorTextCreator creator;
    EXPECT_EQ(creator.create(warning(62), module3Bus1), "Too high driver current for amplifier 3 on bus 1");
    EXPECT_EQ(creator.create(info(17), ""), "RF can not be activated with invalid system cfg");
    EXPECT_EQ(creator.create(Code(286, noType), module3Bus1), "+3.5V out of range for amplifier 3 on bus 1");
}

TEST_F(ErrorTextCreator, PassesTheTypeOnForSharedTexts) {
    EXPECT_EQ(lgb::ErrorTextCreator().create(warning(6), module3Bus1),
              "Too low current for amplifier 3 on bus 1 reduced RF Power");
}

TEST_F(ErrorTextCreator, GivesTheSharedAnswerForIdsThatItDoesNotList) {
    EXPECT_EQ(text(1, module3Bus1), "Too high temperature for amplifier 3 on bus 1");
    for (const unsigned int id : {2u, 5u, 200u, 277u, 331u, 1000u}) {
        EXPECT_EQ(text(id, module3Bus1), "unknown entry") << id;
        EXPECT_THROW(text(id, "nonsense"), recording::JsonError) << id;
    }
}

TEST_F(ErrorTextCreator, OfNoMembersTellsKnownIdsFromUnknownOnes) {
    EXPECT_EQ(text(5, "{}"), "unknown entry");
    EXPECT_EQ(text(277, "{}"), "unknown entry");
    EXPECT_EQ(text(400, "{}"), "unknown entry");
    EXPECT_EQ(text(6, "{}"), "Too low current for amplifier 0 on bus 0");
    EXPECT_EQ(text(286, "{}"), "+3.5V out of range for amplifier 0 on bus 0");
}

TEST_F(ErrorTextCreator, OfLowTemperatureWithoutMembersNamesModule0OnBus0) {
    EXPECT_EQ(text(3, "{}"), "Temperature below average for amplifier 0 on bus 0");
}

TEST_F(ErrorTextCreator, OfProductTypeKeepsTheBlankBeforeAMissingType) {
    EXPECT_EQ(text(258, "{}"), "Invalid Product Type ");
    EXPECT_EQ(text(258, R"({"type":"X"})"), "Invalid Product Type X");
}

TEST_F(ErrorTextCreator, OfFirmwareKeepsTheBlankBeforeAMissingVersion) {
    EXPECT_EQ(text(259, "{}"), "Incompatible Firmware ");
    EXPECT_EQ(text(259, R"({"version":"1.0"})"), "Incompatible Firmware 1.0");
}

TEST_F(ErrorTextCreator, OfPreMonitorVoltageHasTwoBlanks) {
    EXPECT_EQ(text(297, R"({"module":2,"bus":0})"), "V_PRE_MON  out of range for amplifier 2 on bus 0");
    EXPECT_EQ(text(301, R"({"module":2,"bus":0})"), "PRE_VDD_MON out of range for amplifier 2 on bus 0");
}

TEST_F(ErrorTextCreator, OfPowerUnitIsDbmUnlessWattIsTrue) {
    EXPECT_EQ(text(268, R"({"watt":true})"), "Setting Power Unit to W failed");
    EXPECT_EQ(text(268, R"({"watt":false})"), "Setting Power Unit to dBm failed");
    EXPECT_EQ(text(268, "{}"), "Setting Power Unit to dBm failed");
}

TEST_F(ErrorTextCreator, OfConfigurationReadsAMissingRoleAsUnit) {
    EXPECT_EQ(text(282, R"({"role":"unit","nr":5})"), "Invalid configuration for unit 5");
    EXPECT_EQ(text(282, R"({"nr":5})"), "Invalid configuration for unit 5");
}

TEST_F(ErrorTextCreator, OfConfigurationFailsOnAnUnknownRole) {
    EXPECT_THROW(text(282, R"({"role":"cabinet","nr":5})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value cabinet"});
}

TEST_F(ErrorTextCreator, OfOutputModeEndsInItsDisplayTextAndFailed) {
    EXPECT_EQ(text(272, R"({"outputMode":"VSWR"})"), "Setting Output Mode to High VSWR failed");
    EXPECT_EQ(text(272, R"({"outputMode":"increased7"})"), "Setting Output Mode to 7 failed");
    EXPECT_EQ(text(272, R"({"outputMode":"Power"})"), "Setting Output Mode to High Power failed");
}

TEST_F(ErrorTextCreator, OfOutputModeFailsOnAnUnknownSpelling) {
    EXPECT_THROW(text(272, R"({"outputMode":"power"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value power"});
}

TEST_F(ErrorTextCreator, OfOperatingClassEndsInItsDisplayTextAndFailed) {
    EXPECT_EQ(text(273, R"({"operatingClass":"AB"})"), "Setting Operating Class to AB failed");
    EXPECT_EQ(text(273, R"({"operatingClass":"step8"})"), "Setting Operating Class to 8 failed");
    EXPECT_EQ(text(273, R"({"operatingClass":"A"})"), "Setting Operating Class to A failed");
}

TEST_F(ErrorTextCreator, OfOperatingClassFailsOnAnUnknownSpelling) {
    EXPECT_THROW(text(273, R"({"operatingClass":"B"})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value B"});
}

TEST_F(ErrorTextCreator, OfInvalidSystemConfigurationNeverLooksAtItsParameters) {
    for (const char* params : {"", "{", "nonsense", "[1]", R"({"bus":"x"})"}) {
        EXPECT_EQ(text(17, params), "RF can not be activated with invalid system cfg") << params;
    }
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(ErrorTextCreator, OfTheHighestGroupWraps) {
    const std::string highest = R"({"group":9223372036854775807})";
    EXPECT_EQ(text(270, highest), "Selecting of RF-Path Group -9223372036854775808 failed");
    EXPECT_EQ(text(271, highest), "Selecting of RF-Path -9223372036854775808 failed");
    EXPECT_EQ(text(312, highest), "All VDDs out of range for all amplifiers of RF-Path -9223372036854775808");
}

TEST_F(ErrorTextCreator, ShowsNumbersWhereATextIsExpected) {
    EXPECT_EQ(text(203, R"({"value":7})"), "Setting AMPL_ON failed for bus 7");
    EXPECT_EQ(text(274, R"({"value":-12})"), "Setting Gain to -12 failed");
}

TEST_F(ErrorTextCreator, GivesFixedTextsWithoutParsing) {
    for (const Row& row : fixedTexts) {
        EXPECT_EQ(text(row.id, "nonsense"), row.text) << row.id;
    }
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(ErrorTextCreator, FailsOnUnreadableParametersForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        EXPECT_THROW(text(id, "nonsense"), recording::JsonError) << id;
        EXPECT_THROW(text(id, ""), recording::JsonError) << id;
    }
}

TEST_F(ErrorTextCreator, ParsesOnceForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        platform().jsonTextsParsed = 0;
        text(id, everyMember);
        EXPECT_EQ(platform().jsonTextsParsed, 1) << id;
    }
}

TEST_F(ErrorTextCreator, FailsOnMembersOfAnotherJsonTypeForEveryIdThatIsNotFixed) {
    for (const unsigned int id : idsBesides(idsOf(fixedTexts))) {
        EXPECT_THROW(text(id, allUnreadable), Json::LogicError) << id;
        EXPECT_THROW(text(id, "[1]"), Json::LogicError) << id;
    }
}

TEST_F(ErrorTextCreator, FailsOnNegativeModulesAndBuses) {
    for (const Row& row : textsWithPlace) {
        EXPECT_THROW(text(row.id, R"({"bus":-1,"module":3})"), Json::LogicError) << row.id;
        EXPECT_THROW(text(row.id, R"({"bus":1,"module":-3})"), Json::LogicError) << row.id;
    }
}

TEST_F(ErrorTextCreator, IgnoresMembersThatATextDoesNotName) {
    for (const MemberRow& row : textsWithOtherMembers) {
        EXPECT_EQ(text(row.id, placesUnreadable), row.text) << row.id;
    }
    for (const Row& row : textsWithPlace) {
        EXPECT_EQ(text(row.id, R"({"bus":1,"module":3,"group":[],"on":[],"value":[],"role":"x"})"), row.text) << row.id;
    }
}

TEST_F(ErrorTextCreator, OfEmptyParametersReadsNoMembersWhereThePlatformTakesThem) {
    platform().emptyTextIsNull = true;
    EXPECT_EQ(text(3, ""), "Temperature below average for amplifier 0 on bus 0");
    for (const MemberRow& row : textsWithOtherMembers) {
        EXPECT_EQ(text(row.id, ""), row.ofNoMembers) << row.id;
    }
}

TEST_F(SystemBusErrorMsg, NamesThePlaceAndTheValue) {
    EXPECT_EQ(lgb::systemBusErrorMsg("unit", R"({"value":"7"})"), "Interrupted System Bus (X102) before unit 7");
    EXPECT_EQ(lgb::systemBusErrorMsg("device", R"({"value":"2"})"), "Interrupted System Bus (X102) before device 2");
}

TEST_F(SystemBusErrorMsg, TakesItsPlaceAsItIs) {
    EXPECT_EQ(lgb::systemBusErrorMsg("", R"({"value":"7"})"), "Interrupted System Bus (X102) before  7");
}

TEST_F(SystemBusErrorMsg, KeepsTheBlankBeforeAMissingValue) {
    EXPECT_EQ(lgb::systemBusErrorMsg("unit", "{}"), "Interrupted System Bus (X102) before unit ");
}

TEST_F(SystemBusErrorMsg, ParsesOnce) {
    lgb::systemBusErrorMsg("unit", R"({"value":"7"})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(SystemBusErrorMsg, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::systemBusErrorMsg("unit", "nonsense"), recording::JsonError);
    EXPECT_THROW(lgb::systemBusErrorMsg("unit", R"({"value":["7"]})"), Json::LogicError);
    EXPECT_THROW(lgb::systemBusErrorMsg("unit", "[7]"), Json::LogicError);
}

TEST_F(InvalidConfig, NamesRoleAndNumber) {
    EXPECT_EQ(lgb::invalidConfig(R"({"role":"unit","nr":5})"), "Invalid configuration for unit 5");
    EXPECT_EQ(lgb::invalidConfig(R"({"role":"device","nr":2})"), "Invalid configuration for device 2");
}

TEST_F(InvalidConfig, ReadsAMissingOrEmptyRoleAsUnit) {
    EXPECT_EQ(lgb::invalidConfig(R"({"nr":5})"), "Invalid configuration for unit 5");
    EXPECT_EQ(lgb::invalidConfig(R"({"role":"","nr":5})"), "Invalid configuration for unit 5");
}

TEST_F(InvalidConfig, ReadsAMissingNumberAsZero) {
    EXPECT_EQ(lgb::invalidConfig(R"({"role":"device"})"), "Invalid configuration for device 0");
}

TEST_F(InvalidConfig, ShowsAll64BitsOfTheNumber) {
    EXPECT_EQ(lgb::invalidConfig(R"({"role":"device","nr":18446744073709551615})"),
              "Invalid configuration for device 18446744073709551615");
}

TEST_F(InvalidConfig, ParsesOnce) {
    lgb::invalidConfig(R"({"role":"unit","nr":5})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(InvalidConfig, FailsOnARoleThatIsSpelledOtherwise) {
    EXPECT_THROW(lgb::invalidConfig(R"({"role":"Unit","nr":5})"), tqbase2::system::LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value Unit"});
}

TEST_F(InvalidConfig, FailsOnWhatItCannotRead) {
    EXPECT_THROW(lgb::invalidConfig("nonsense"), recording::JsonError);
    EXPECT_THROW(lgb::invalidConfig(R"({"role":["unit"],"nr":5})"), Json::LogicError);
    EXPECT_THROW(lgb::invalidConfig(R"({"role":"unit","nr":"5"})"), Json::LogicError);
    EXPECT_THROW(lgb::invalidConfig(R"({"role":"unit","nr":-5})"), Json::LogicError);
    EXPECT_THROW(lgb::invalidConfig("[5]"), Json::LogicError);
}

}  // namespace

}  // namespace librarytest

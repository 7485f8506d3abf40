#include "LibraryTest.h"

#include <businesslogic/zel/toStringFixed.h>
#include <lgb/params.h>
#include <nsa/zel/converter/zel/enums/OutputModeConverter.h>
#include <nsa/zel/logbook/params/ValueConverter.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <json/value.h>
#include <json/writer.h>
#include <boost/exception/get_error_info.hpp>

#include <functional>
#include <limits>

namespace librarytest {

namespace {

using namespace lgb::params;
using businesslogic::zel::toStringFixed;
using enums::InterlockMode;
using enums::OperatingClass;
using enums::OutputMode;
using enums::SystemConfigRole;
using tqbase2::system::LogicError;

using Params = LibraryTest;
using ParamsEnums = LibraryTest;
using OutputModeStr = LibraryTest;
using OperatingClassStr = LibraryTest;
using ValueConverter = LibraryTest;

Json::Value parsed(const std::string& text) {
    return tqbase2::system::JsonUtility::toJsonValue(text);
}

std::string valueOf(const std::string& record) {
    return tqbase2::nsa::zel::logbook::params::ValueConverter::fromJsonToVal(record);
}

/// The record has just these members, with these values of these JSON types.
void expectRecord(const std::string& record, const std::string& expected) {
    EXPECT_EQ(parsed(record), parsed(expected)) << record;
}

/// A text that JSON must escape, with a byte that is no UTF-8 and a zero inside.
const std::string awkward = std::string("\"a\\b\"\n\xC3\xA4\xFF") + '\0' + "c";

TEST_F(Params, OnIsABoolean) {
    expectRecord(createOn(true), R"({"on":true})");
    expectRecord(createOn(false), R"({"on":false})");
}

TEST_F(Params, WattIsABoolean) {
    expectRecord(createWatt(true), R"({"watt":true})");
    expectRecord(createWatt(false), R"({"watt":false})");
}

TEST_F(Params, GroupIsASignedNumber) {
    expectRecord(createGroup(0), R"({"group":0})");
    expectRecord(createGroup(-1), R"({"group":-1})");
    expectRecord(createGroup(std::numeric_limits<int>::max()), R"({"group":2147483647})");
    expectRecord(createGroup(std::numeric_limits<int>::min()), R"({"group":-2147483648})");
}

TEST_F(Params, FansAreABooleanUnderTheKeyOk) {
    expectRecord(createFans(true), R"({"ok":true})");
    expectRecord(createFans(false), R"({"ok":false})");
}

TEST_F(Params, BusAndModuleAreUnsignedNumbers) {
    expectRecord(createBusModule(1, 3), R"({"bus":1,"module":3})");
    expectRecord(createBusModule(0, 0), R"({"bus":0,"module":0})");
}

TEST_F(Params, BusAndModuleWithTheTopBitSetStayPositive) {
    expectRecord(createBusModule(2147483648, 4294967295), R"({"bus":2147483648,"module":4294967295})");
    expectRecord(createBusModule(4294967295, 2147483648), R"({"bus":4294967295,"module":2147483648})");
}

TEST_F(Params, VersionIsAString) {
    expectRecord(createVersion("1.02"), R"({"version":"1.02"})");
}

TEST_F(Params, TypeIsAString) {
    expectRecord(createType("125"), R"({"type":"125"})");
}

TEST_F(Params, ValueIsAString) {
    expectRecord(createValue("42"), R"({"value":"42"})");
}

TEST_F(Params, ServiceIsAString) {
    expectRecord(createService("see log"), R"({"service":"see log"})");
}

TEST_F(Params, BusModuleAndServiceHaveThreeMembers) {
    expectRecord(createBusModuleAndService(1, 3, "see log"), R"({"bus":1,"module":3,"service":"see log"})");
    expectRecord(createBusModuleAndService(4294967295, 2147483648, ""),
                 R"({"bus":4294967295,"module":2147483648,"service":""})");
}

TEST_F(Params, ValueAndServiceHaveTwoMembers) {
    expectRecord(createValueAndService("42", "see log"), R"({"value":"42","service":"see log"})");
}

TEST_F(Params, EmptyTextsAreEmptyStrings) {
    expectRecord(createVersion(""), R"({"version":""})");
    expectRecord(createType(""), R"({"type":""})");
    expectRecord(createValue(""), R"({"value":""})");
    expectRecord(createService(""), R"({"service":""})");
    expectRecord(createValueAndService("", ""), R"({"value":"","service":""})");
    expectRecord(createPathAndOutputMode("", OutputMode::Vswr), R"({"path":"","outputMode":"VSWR"})");
    expectRecord(createPathAndOperatingClass("", OperatingClass::AB), R"({"path":"","operatingClass":"AB"})");
}

TEST_F(Params, TextsComeBackWithEveryByte) {
    EXPECT_EQ(parsed(createVersion(awkward))["version"].asString(), awkward);
    EXPECT_EQ(parsed(createType(awkward))["type"].asString(), awkward);
    EXPECT_EQ(parsed(createValue(awkward))["value"].asString(), awkward);
    EXPECT_EQ(parsed(createService(awkward))["service"].asString(), awkward);
    EXPECT_EQ(parsed(createBusModuleAndService(1, 3, awkward))["service"].asString(), awkward);
    EXPECT_EQ(parsed(createValueAndService(awkward, "see log"))["value"].asString(), awkward);
    EXPECT_EQ(parsed(createValueAndService("42", awkward))["service"].asString(), awkward);
    EXPECT_EQ(parsed(createPathAndOutputMode(awkward, OutputMode::Vswr))["path"].asString(), awkward);
    EXPECT_EQ(parsed(createPathAndOperatingClass(awkward, OperatingClass::AB))["path"].asString(), awkward);
}

TEST_F(Params, AreWrittenOnceByThePlatform) {
    createBusModuleAndService(1, 3, "see log");
    EXPECT_EQ(platform().jsonTextsWritten, 1);
    EXPECT_EQ(platform().jsonTextsParsed, 0);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(ParamsEnums, OperatingClassIsItsSpelling) {
    expectRecord(createOperatingClass(OperatingClass::AB), R"({"operatingClass":"AB"})");
    expectRecord(createOperatingClass(OperatingClass::Step5), R"({"operatingClass":"step5"})");
    expectRecord(createOperatingClass(OperatingClass::A), R"({"operatingClass":"A"})");
}

TEST_F(ParamsEnums, PathAndOperatingClassHaveTwoMembers) {
    expectRecord(createPathAndOperatingClass("B", OperatingClass::Step8), R"({"path":"B","operatingClass":"step8"})");
}

TEST_F(ParamsEnums, OutputModeIsItsSpelling) {
    expectRecord(createOutputMode(OutputMode::Vswr), R"({"outputMode":"VSWR"})");
    expectRecord(createOutputMode(OutputMode::Increased9), R"({"outputMode":"increased9"})");
    expectRecord(createOutputMode(OutputMode::Power), R"({"outputMode":"Power"})");
}

TEST_F(ParamsEnums, PathAndOutputModeHaveTwoMembers) {
    expectRecord(createPathAndOutputMode("B", OutputMode::Increased1), R"({"path":"B","outputMode":"increased1"})");
}

TEST_F(ParamsEnums, InterlockModeIsItsSpelling) {
    expectRecord(createInterlockMode(InterlockMode::Interactive), R"({"interlockMode":"interactive"})");
    expectRecord(createInterlockMode(InterlockMode::Automatic), R"({"interlockMode":"automatic"})");
}

TEST_F(ParamsEnums, RoleIsItsSpellingAndNrAnUnsignedNumber) {
    expectRecord(createRoleWithNr(SystemConfigRole::Unit, 5), R"({"role":"unit","nr":5})");
    expectRecord(createRoleWithNr(SystemConfigRole::Device, 4294967295), R"({"role":"device","nr":4294967295})");
}

struct EnumBuilder {
    const char* name;
    std::function<std::string(int)> create;
    int size;
    const char* refusingHeader;
};

const std::vector<EnumBuilder> enumBuilders{
    {"createOperatingClass", [](int value) { return createOperatingClass(static_cast<OperatingClass>(value)); }, 10,
     "converter/zel/enums/OperatingClassConverter.h"},
    {"createPathAndOperatingClass",
     [](int value) { return createPathAndOperatingClass("B", static_cast<OperatingClass>(value)); }, 10,
     "converter/zel/enums/OperatingClassConverter.h"},
    {"createOutputMode", [](int value) { return createOutputMode(static_cast<OutputMode>(value)); }, 11,
     "converter/zel/enums/OutputModeConverter.h"},
    {"createPathAndOutputMode", [](int value) { return createPathAndOutputMode("B", static_cast<OutputMode>(value)); },
     11, "converter/zel/enums/OutputModeConverter.h"},
    {"createInterlockMode", [](int value) { return createInterlockMode(static_cast<InterlockMode>(value)); }, 2,
     "converter/zel/enums/InterlockModeConverter.h"},
    {"createRoleWithNr", [](int value) { return createRoleWithNr(static_cast<SystemConfigRole>(value), 5); }, 2,
     "converter/zel/enums/SystemConfigRoleConverter.h"},
};

TEST_F(ParamsEnums, OfEveryEnumeratorAreWritten) {
    for (const EnumBuilder& builder : enumBuilders) {
        for (int value = 0; value < builder.size; ++value) {
            EXPECT_NO_THROW(builder.create(value)) << builder.name << ' ' << value;
        }
    }
}

TEST_F(ParamsEnums, OutsideTheEnumerationThrowWithoutLoggingOrWriting) {
    for (const EnumBuilder& builder : enumBuilders) {
        for (const int value : {-1, builder.size, std::numeric_limits<int>::max()}) {
            EXPECT_THROW(builder.create(value), LogicError) << builder.name << ' ' << value;
        }
    }
    EXPECT_TRUE(platform().log.empty());
    EXPECT_EQ(platform().jsonTextsWritten, 0);
}

TEST_F(ParamsEnums, OutsideTheEnumerationPassOnTheExceptionOfTheConverter) {
    for (const EnumBuilder& builder : enumBuilders) {
        try {
            builder.create(builder.size);
            ADD_FAILURE() << builder.name << " did not throw";
        } catch (const LogicError& e) {
            const auto* const file = boost::get_error_info<boost::throw_file>(e);
            EXPECT_STREQ(file != nullptr ? *file : "no file", builder.refusingHeader) << builder.name;
        }
    }
}

TEST_F(ParamsEnums, InterlockModeTwoThrowsWithoutLogging) {
    EXPECT_THROW(createInterlockMode(static_cast<InterlockMode>(2)), LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(ParamsEnums, OutputModePowerIsWrittenWithACapitalAndReadNoOtherWay) {
    const Json::Value record = parsed(createOutputMode(static_cast<OutputMode>(10)));
    EXPECT_EQ(record["outputMode"].asString(), "Power");
    EXPECT_EQ(enums::OutputModeConverter::fromJsonToVal(record["outputMode"]), OutputMode::Power);
    EXPECT_TRUE(platform().log.empty());
    EXPECT_THROW(enums::OutputModeConverter::fromJsonToVal("power"), LogicError);
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value power"});
}

TEST_F(ParamsEnums, MissingInARecordReadAsTheFirstEnumerator) {
    const Json::Value record = parsed("{}");
    EXPECT_EQ(enums::OutputModeConverter::fromJsonToVal(record["outputMode"]), OutputMode::Vswr);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(OutputModeStr, NamesTheEndsAndNumbersTheModesBetween) {
    const std::vector<std::string> expected{"High VSWR", "1", "2", "3", "4", "5", "6", "7", "8", "9", "High Power"};
    for (int value = 0; value < 11; ++value) {
        EXPECT_EQ(lgb::params::OutputModeStr(static_cast<OutputMode>(value)),
                  expected.at(static_cast<std::size_t>(value)));
    }
}

TEST_F(OutputModeStr, OfANumberOutsideTheEnumerationIsTheNumber) {
    EXPECT_EQ(lgb::params::OutputModeStr(static_cast<OutputMode>(11)), "11");
    EXPECT_EQ(lgb::params::OutputModeStr(static_cast<OutputMode>(12)), "12");
    EXPECT_EQ(lgb::params::OutputModeStr(static_cast<OutputMode>(-1)), "-1");
    EXPECT_EQ(lgb::params::OutputModeStr(static_cast<OutputMode>(2147483647)), "2147483647");
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(OperatingClassStr, NamesTheEndsAndNumbersTheClassesBetween) {
    const std::vector<std::string> expected{"AB", "1", "2", "3", "4", "5", "6", "7", "8", "A"};
    for (int value = 0; value < 10; ++value) {
        EXPECT_EQ(lgb::params::OperatingClassStr(static_cast<OperatingClass>(value)),
                  expected.at(static_cast<std::size_t>(value)));
    }
}

TEST_F(OperatingClassStr, OfANumberOutsideTheEnumerationIsTheNumber) {
    EXPECT_EQ(lgb::params::OperatingClassStr(static_cast<OperatingClass>(10)), "10");
    EXPECT_EQ(lgb::params::OperatingClassStr(static_cast<OperatingClass>(-1)), "-1");
    EXPECT_TRUE(platform().log.empty());
}

TEST(ToStringFixed, WritesAnIntAsPlainDecimals) {
    EXPECT_EQ((toStringFixed<int, 3, true>(0)), "0");
    EXPECT_EQ((toStringFixed<int, 3, true>(12)), "12");
    EXPECT_EQ((toStringFixed<int, 3, true>(-12)), "-12");
    EXPECT_EQ((toStringFixed<int, 3, true>(2147483647)), "2147483647");
}

TEST(ToStringFixed, WritesAnOperatingClassByItsSpelling) {
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(OperatingClass::AB)), "AB");
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(OperatingClass::Step1)), "step1");
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(OperatingClass::Step8)), "step8");
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(OperatingClass::A)), "A");
}

TEST(ToStringFixed, WritesNothingForAnOperatingClassOutsideTheEnumeration) {
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(static_cast<OperatingClass>(10))), "");
    EXPECT_EQ((toStringFixed<OperatingClass, 3, true>(static_cast<OperatingClass>(-1))), "");
}

TEST(ToStringFixed, WritesAFloatingValueWithAllDigitsAndNoExponent) {
    EXPECT_EQ((toStringFixed<double, 3, true>(1.5)), "1.500");
    EXPECT_EQ((toStringFixed<double, 3, true>(1e10)), "10000000000.000");
    EXPECT_EQ((toStringFixed<double, 1, true>(0.25e-10)), "0.0");
}

TEST(ToStringFixed, WritesABoolAsAWordOrANumber) {
    EXPECT_EQ((toStringFixed<bool, 3, true>(true)), "true");
    EXPECT_EQ((toStringFixed<bool, 3, true>(false)), "false");
    EXPECT_EQ((toStringFixed<bool, 3, false>(true)), "1");
}

TEST_F(ValueConverter, ReadsTheValueOfARecord) {
    EXPECT_EQ(valueOf(R"({"value":"42"})"), "42");
    EXPECT_EQ(valueOf(R"({"service":"see log","value":"42"})"), "42");
}

TEST_F(ValueConverter, ReadsWhatTheBuildersWrite) {
    EXPECT_EQ(valueOf(createValue(awkward)), awkward);
    EXPECT_EQ(valueOf(createValueAndService(awkward, "see log")), awkward);
}

TEST_F(ValueConverter, ReadsAMissingOrNullValueAsEmpty) {
    EXPECT_EQ(valueOf("{}"), "");
    EXPECT_EQ(valueOf(R"({"service":"see log"})"), "");
    EXPECT_EQ(valueOf(R"({"Value":"42"})"), "");
    EXPECT_EQ(valueOf(R"({"value":null})"), "");
    EXPECT_EQ(valueOf("null"), "");
}

TEST_F(ValueConverter, ReadsNumbersAndBooleansByTheirText) {
    EXPECT_EQ(valueOf(R"({"value":42})"), "42");
    EXPECT_EQ(valueOf(R"({"value":true})"), "true");
}

TEST_F(ValueConverter, RefusesAValueWithoutAStringForm) {
    EXPECT_THROW(valueOf(R"({"value":[]})"), Json::LogicError);
    EXPECT_THROW(valueOf(R"({"value":{}})"), Json::LogicError);
}

TEST_F(ValueConverter, RefusesARecordThatIsNoObject) {
    EXPECT_THROW(valueOf("[]"), Json::LogicError);
    EXPECT_THROW(valueOf(R"("42")"), Json::LogicError);
}

TEST_F(ValueConverter, PassesOnWhatTheParserThrows) {
    EXPECT_THROW(valueOf("not JSON"), recording::JsonError);
    EXPECT_THROW(valueOf(""), recording::JsonError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(ValueConverter, ReadsAnEmptyTextAsThePlatformDoes) {
    platform().emptyTextIsNull = true;
    EXPECT_EQ(valueOf(""), "");
}

TEST_F(ValueConverter, ParsesTheRecordOnce) {
    valueOf(R"({"value":"42"})");
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

}  // namespace

}  // namespace librarytest

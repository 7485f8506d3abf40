#include "LibraryTest.h"

#include <nsa/zel/converter/zel/structs/LogbookEntryConverter.h>
#include <nsa/zel/converter/zel/structs/LogbookEntryDetailsConverter.h>
#include <tqbase2/system/Exception.h>
#include <tqbase2/system/JsonUtility.h>

#include <json/value.h>
#include <json/writer.h>
#include <boost/exception/get_error_info.hpp>

#include <limits>

namespace librarytest {

namespace {

using tqbase2::nsa::zel::structs::LogbookEntryConverter;
using tqbase2::nsa::zel::structs::LogbookEntryDetails;
using tqbase2::nsa::zel::structs::LogbookEntryDetailsConverter;
using tqbase2::system::JsonUtility;
using tqbase2::system::LogicError;

using StoredEntry = LibraryTest;
using StoredEntryReading = LibraryTest;

/// Warning 23 of device 4, without unit.
LogbookEntry warning23() {
    LogbookEntry entry;
    entry.type = LogbookEntryType::Warning;
    entry.code = 23;
    entry.details = {-1, 4, R"({"bus":1})", Generation::Heron};
    return entry;
}

const char* const warning23Document = R"({"type":"W","code":23,"description":"","details":)"
                                      R"({"unit":-1,"device":4,"params":"{\"bus\":1}","generation":"Heron"}})";

Json::Value document(const LogbookEntry& entry) {
    return LogbookEntryConverter::fromValToJsonValue(entry);
}

std::string stored(const LogbookEntry& entry) {
    return JsonUtility::toJsonString(document(entry));
}

Json::Value parsed(const std::string& text) {
    return JsonUtility::toJsonValue(text);
}

LogbookEntry read(const std::string& text) {
    return LogbookEntryConverter::fromJsonToVal(parsed(text));
}

void expectSame(const LogbookEntry& entry, const LogbookEntry& expected) {
    EXPECT_EQ(entry.type, expected.type);
    EXPECT_EQ(entry.code, expected.code);
    EXPECT_EQ(entry.description, expected.description);
    EXPECT_EQ(entry.details.unit, expected.details.unit);
    EXPECT_EQ(entry.details.device, expected.details.device);
    EXPECT_EQ(entry.details.params, expected.details.params);
    EXPECT_EQ(entry.details.generation, expected.details.generation);
}

void expectComesBack(const LogbookEntry& entry) {
    expectSame(read(stored(entry)), entry);
}

LogbookEntry withTexts(const std::string& description, const std::string& params) {
    LogbookEntry entry = warning23();
    entry.description = description;
    entry.details.params = params;
    return entry;
}

std::string everyByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

/// The header that the exception of a refused record names.
std::string refusingHeader(const LogbookEntry& entry) {
    try {
        document(entry);
    } catch (const LogicError& e) {
        const auto* const file = boost::get_error_info<boost::throw_file>(e);
        return file != nullptr ? *file : "no file";
    }
    return "not refused";
}

/// The JSON library can't read the text, and nothing is said about it.
void expectJsonError(const std::string& text) {
    EXPECT_THROW(read(text), Json::LogicError) << text;
    EXPECT_TRUE(platform().log.empty()) << text;
}

/// A spelling can't be read, and the one line logged names it.
void expectUnknownSpelling(const std::string& text, const std::string& named) {
    platform().log.clear();
    EXPECT_THROW(read(text), LogicError) << text;
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value " + named}) << text;
    EXPECT_EQ(platform().log.size(), 1u) << text;
}

TEST_F(StoredEntry, IsOneDocumentOfTypeCodeDescriptionAndDetails) {
    EXPECT_EQ(parsed(stored(warning23())), parsed(warning23Document));
}

TEST_F(StoredEntry, ComesBack) {
    expectComesBack(warning23());
}

TEST_F(StoredEntry, OfADefaultRecordHasEveryMember) {
    EXPECT_EQ(parsed(stored(LogbookEntry())), parsed(R"({"type":"I","code":0,"description":"","details":)"
                                                     R"({"unit":0,"device":0,"params":"","generation":"Unknown"}})"));
}

TEST_F(StoredEntry, HasNoOtherMembers) {
    const Json::Value json = document(warning23());
    EXPECT_EQ(json.getMemberNames(), (Json::Value::Members{"code", "description", "details", "type"}));
    EXPECT_EQ(json["details"].getMemberNames(), (Json::Value::Members{"device", "generation", "params", "unit"}));
}

TEST_F(StoredEntry, WritesEachMemberWithItsJsonType) {
    const Json::Value json = document(warning23());
    EXPECT_EQ(json.type(), Json::objectValue);
    EXPECT_EQ(json["type"].type(), Json::stringValue);
    EXPECT_EQ(json["code"].type(), Json::uintValue);
    EXPECT_EQ(json["description"].type(), Json::stringValue);
    EXPECT_EQ(json["details"].type(), Json::objectValue);
    EXPECT_EQ(json["details"]["unit"].type(), Json::intValue);
    EXPECT_EQ(json["details"]["device"].type(), Json::intValue);
    EXPECT_EQ(json["details"]["params"].type(), Json::stringValue);
    EXPECT_EQ(json["details"]["generation"].type(), Json::stringValue);
}

TEST_F(StoredEntry, KeepsParamsAsTextNotAsAnObject) {
    EXPECT_EQ(document(warning23())["details"]["params"].asString(), R"({"bus":1})");
}

TEST_F(StoredEntry, StoresEmptyTextsAsEmptyStrings) {
    const Json::Value json = document(withTexts("", ""));
    EXPECT_EQ(json["description"], Json::Value(""));
    EXPECT_EQ(json["details"]["params"], Json::Value(""));
}

TEST_F(StoredEntry, KeepsTheDescriptionOfARecord) {
    EXPECT_EQ(document(withTexts("Filter cleaned", ""))["description"].asString(), "Filter cleaned");
}

TEST_F(StoredEntry, BringsBackEveryTypeAndGeneration) {
    for (const auto type : {LogbookEntryType::Info, LogbookEntryType::Warning, LogbookEntryType::Error}) {
        for (const auto generation : {Generation::Unknown, Generation::Kestrel, Generation::Heron}) {
            LogbookEntry entry = warning23();
            entry.type = type;
            entry.details.generation = generation;
            expectComesBack(entry);
        }
    }
}

TEST_F(StoredEntry, BringsBack64BitNumbers) {
    LogbookEntry entry = warning23();
    entry.code = 4294967296;
    expectComesBack(entry);
    entry.code = std::numeric_limits<std::uint64_t>::max();
    entry.details.unit = std::numeric_limits<std::int64_t>::min();
    entry.details.device = std::numeric_limits<std::int64_t>::max();
    expectComesBack(entry);
}

TEST_F(StoredEntry, WritesLargeNumbersAsTheyAre) {
    LogbookEntry entry = warning23();
    entry.code = std::numeric_limits<std::uint64_t>::max();
    entry.details.unit = std::numeric_limits<std::int64_t>::min();
    const Json::Value json = document(entry);
    EXPECT_EQ(json["code"].asUInt64(), 18446744073709551615u);
    EXPECT_EQ(json["details"]["unit"].asInt64(), std::numeric_limits<std::int64_t>::min());
}

TEST_F(StoredEntry, BringsBackQuotesAndBackslashes) {
    expectComesBack(withTexts(R"(say "no" \ or \\"yes")", R"({"value":"a\"b\\"})"));
}

TEST_F(StoredEntry, EscapesQuotesInParams) {
    EXPECT_NE(stored(withTexts("", R"({"value":"P"})")).find(R"("{\"value\":\"P\"}")"), std::string::npos);
}

TEST_F(StoredEntry, BringsBackAnyByteOfDescriptionAndParams) {
    const std::string bytes = everyByte();
    expectSame(LogbookEntryConverter::fromJsonToVal(document(withTexts(bytes, bytes))), withTexts(bytes, bytes));
    expectComesBack(withTexts(bytes, bytes));
}

TEST_F(StoredEntry, BringsBackEachByteAlone) {
    for (const char byte : everyByte()) {
        expectComesBack(withTexts(std::string(1, byte), std::string(1, byte)));
    }
}

TEST_F(StoredEntry, LogsNothing) {
    expectComesBack(warning23());
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntry, RefusesATypeOutsideTheEnumerationWithoutLogging) {
    LogbookEntry entry = warning23();
    entry.type = noType;
    EXPECT_THROW(document(entry), LogicError);
    entry.type = static_cast<LogbookEntryType>(-1);
    EXPECT_THROW(document(entry), LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntry, RefusesAGenerationOutsideTheEnumerationWithoutLogging) {
    LogbookEntry entry = warning23();
    entry.details.generation = noGeneration;
    EXPECT_THROW(document(entry), LogicError);
    EXPECT_THROW(LogbookEntryDetailsConverter::fromValToJsonValue(entry.details), LogicError);
    entry.details.generation = static_cast<Generation>(-1);
    EXPECT_THROW(document(entry), LogicError);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntry, WritesTheTypeBeforeTheGeneration) {
    LogbookEntry entry = warning23();
    entry.details.generation = noGeneration;
    EXPECT_EQ(refusingHeader(entry), "converter/zel/enums/GenerationConverter.h");
    entry.type = noType;
    EXPECT_EQ(refusingHeader(entry), "converter/zel/enums/LogbookEntryTypeConverter.h");
}

TEST_F(StoredEntry, DetailsHaveADocumentOfTheirOwn) {
    const LogbookEntryDetails details{12, -1, R"({"on":true})", Generation::Kestrel};
    const Json::Value json = LogbookEntryDetailsConverter::fromValToJsonValue(details);
    EXPECT_EQ(parsed(JsonUtility::toJsonString(json)),
              parsed(R"({"unit":12,"device":-1,"params":"{\"on\":true}","generation":"Kestrel"})"));
    const LogbookEntryDetails back = LogbookEntryDetailsConverter::fromJsonToVal(json);
    EXPECT_EQ(back.unit, 12);
    EXPECT_EQ(back.device, -1);
    EXPECT_EQ(back.params, R"({"on":true})");
    EXPECT_EQ(back.generation, Generation::Kestrel);
}

TEST_F(StoredEntryReading, DependsOnNoOrderOfMembers) {
    expectSame(read(R"({"details":{"generation":"Heron","params":"{\"bus\":1}","device":4,"unit":-1},)"
                    R"("description":"","code":23,"type":"W"})"),
               warning23());
    expectSame(read(warning23Document), warning23());
}

TEST_F(StoredEntryReading, IgnoresMembersItDoesNotKnow) {
    expectSame(read(R"({"type":"W","code":23,"description":"","colour":"red","generation":"Kestrel","unit":9,)"
                    R"("details":{"unit":-1,"device":4,"params":"{\"bus\":1}","generation":"Heron","type":"X"}})"),
               warning23());
}

TEST_F(StoredEntryReading, KeepsTheStoredDescription) {
    EXPECT_EQ(read(R"({"description":"Filter cleaned"})").description, "Filter cleaned");
}

TEST_F(StoredEntryReading, TakesMissingMembersAsZerosAndEmptyTexts) {
    expectSame(read("{}"), LogbookEntry());
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntryReading, TakesNullMembersAsMissing) {
    expectSame(read(R"({"type":null,"code":null,"description":null,"details":null})"), LogbookEntry());
    expectSame(read(R"({"details":{"unit":null,"device":null,"params":null,"generation":null}})"), LogbookEntry());
}

TEST_F(StoredEntryReading, TakesANullDocumentAsAnEmptyOne) {
    expectSame(read("null"), LogbookEntry());
}

TEST_F(StoredEntryReading, TakesMissingDetailsAsUnitAndDeviceZero) {
    const LogbookEntry entry = read(R"({"type":"E","code":17,"description":"Fan failed"})");
    EXPECT_EQ(entry.type, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 17u);
    EXPECT_EQ(entry.description, "Fan failed");
    EXPECT_EQ(entry.details.unit, 0);
    EXPECT_EQ(entry.details.device, 0);
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Unknown);
}

TEST_F(StoredEntryReading, TakesAnEmptyOrMissingTypeAsInfo) {
    EXPECT_EQ(read(R"({"type":"","code":17})").type, LogbookEntryType::Info);
    EXPECT_EQ(read(R"({"code":17})").type, LogbookEntryType::Info);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntryReading, TakesAnEmptyOrMissingGenerationAsUnknown) {
    EXPECT_EQ(read(R"({"details":{"generation":""}})").details.generation, Generation::Unknown);
    EXPECT_EQ(read(R"({"details":{"unit":1}})").details.generation, Generation::Unknown);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(StoredEntryReading, RefusesAnUnknownType) {
    expectUnknownSpelling(R"({"type":"X"})", "X");
    expectUnknownSpelling(R"({"type":"i"})", "i");
    expectUnknownSpelling(R"({"type":" I"})", " I");
    expectUnknownSpelling(R"({"type":"Warning"})", "Warning");
}

TEST_F(StoredEntryReading, RefusesATypeThatIsANumber) {
    expectUnknownSpelling(R"({"type":1})", "1");
}

TEST_F(StoredEntryReading, RefusesAnUnknownGeneration) {
    expectUnknownSpelling(R"({"details":{"generation":"heron"}})", "heron");
    expectUnknownSpelling(R"({"details":{"generation":"Heron "}})", "Heron ");
    expectUnknownSpelling(R"({"details":{"generation":2}})", "2");
}

TEST_F(StoredEntryReading, RefusesACodeThatIsNoUnsignedNumber) {
    expectJsonError(R"({"code":-1})");
    expectJsonError(R"({"code":"23"})");
    expectJsonError(R"({"code":1e20})");
    expectJsonError(R"({"code":[]})");
    expectJsonError(R"({"code":{}})");
}

TEST_F(StoredEntryReading, RefusesADescriptionWithoutAStringForm) {
    expectJsonError(R"({"description":[]})");
    expectJsonError(R"({"description":{}})");
}

TEST_F(StoredEntryReading, RefusesDetailsThatAreNoObject) {
    expectJsonError(R"({"details":"none"})");
    expectJsonError(R"({"details":1})");
    expectJsonError(R"({"details":[]})");
}

TEST_F(StoredEntryReading, RefusesUnitAndDeviceThatAreNoNumbers) {
    expectJsonError(R"({"details":{"unit":"1"}})");
    expectJsonError(R"({"details":{"device":"1"}})");
    expectJsonError(R"({"details":{"unit":9223372036854775808}})");
    expectJsonError(R"({"details":{"device":{}}})");
}

TEST_F(StoredEntryReading, RefusesParamsThatAreAnObject) {
    expectJsonError(R"({"details":{"params":{"bus":1}}})");
}

TEST_F(StoredEntryReading, RefusesADocumentThatIsNoObject) {
    expectJsonError("[]");
    expectJsonError("23");
    expectJsonError(R"("entry")");
}

TEST_F(StoredEntryReading, ReadsTheTypeFirst) {
    expectUnknownSpelling(R"({"type":"X","code":-1})", "X");
}

TEST_F(StoredEntryReading, ReadsTheGenerationLast) {
    expectJsonError(R"({"code":-1,"details":{"generation":"X"}})");
    expectJsonError(R"({"description":[],"details":{"generation":"X"}})");
    expectJsonError(R"({"details":{"unit":"1","generation":"X"}})");
    expectJsonError(R"({"details":{"device":"1","generation":"X"}})");
    expectJsonError(R"({"details":{"params":[],"generation":"X"}})");
}

}  // namespace

}  // namespace librarytest

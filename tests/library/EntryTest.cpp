#include "Grouping.h"
#include "LibraryTest.h"

#include <lgb/Entry.h>
#include <nsa/zel/logbook/Entry.h>

#include <iomanip>
#include <locale>
#include <sstream>
#include <type_traits>
#include <utility>

namespace librarytest {

namespace {

using lgb::code::ServiceCode;

constexpr std::uint64_t aboveAllIds = 4294967296;  // 2 to the 32nd

LogbookEntry entryWithCode(std::uint64_t code, LogbookEntryType type = LogbookEntryType::Info) {
    LogbookEntry entry;
    entry.code = code;
    entry.type = type;
    return entry;
}

std::string shortForm(const Code& code) {
    std::ostringstream text;
    text << code;
    return text.str();
}

void expectWithoutUnitAndDevice(const LogbookEntry& entry) {
    EXPECT_EQ(entry.details.unit, -1);
    EXPECT_EQ(entry.details.device, -1);
}

TEST(LogbookEntry, StartsWithZerosAndEmptyTexts) {
    const LogbookEntry entry;
    EXPECT_EQ(entry.type, LogbookEntryType::Info);
    EXPECT_EQ(entry.code, 0u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.unit, 0);
    EXPECT_EQ(entry.details.device, 0);
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Unknown);
}

TEST(Entry, OfCodeZeroTakesItsTextAsDescription) {
    const lgb::Entry entry(warning(0), "Filter cleaned");
    EXPECT_EQ(entry.type, LogbookEntryType::Warning);
    EXPECT_EQ(entry.code, 0u);
    EXPECT_EQ(entry.description, "Filter cleaned");
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Heron);
    expectWithoutUnitAndDevice(entry);
    EXPECT_TRUE(lgb::isServiceOnly(entry));
}

TEST(Entry, OfACodeTakesItsTextAsParameters) {
    const lgb::Entry entry(error(17), R"({"bus":1})");
    EXPECT_EQ(entry.type, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 17u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.params, R"({"bus":1})");
    EXPECT_EQ(entry.details.generation, Generation::Heron);
    expectWithoutUnitAndDevice(entry);
    EXPECT_FALSE(lgb::isServiceOnly(entry));
}

TEST(Entry, OfACodeAloneHasNoTexts) {
    const lgb::Entry entry(info(5));
    EXPECT_EQ(entry.type, LogbookEntryType::Info);
    EXPECT_EQ(entry.code, 5u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Heron);
    expectWithoutUnitAndDevice(entry);
}

TEST(Entry, WidensTheLargestIdWithoutASign) {
    EXPECT_EQ(lgb::Entry(error(4294967295)).code, 4294967295u);
}

TEST(Entry, KeepsATypeOutsideTheEnumeration) {
    EXPECT_EQ(lgb::Entry(Code(7, noType)).type, noType);
}

TEST(Entry, OwnsItsText) {
    std::string text = "Filter cleaned";
    const lgb::Entry entry(warning(0), text);
    text = "overwritten";
    EXPECT_EQ(entry.description, "Filter cleaned");
}

TEST(Entry, IsMadeFromACodeOnly) {
    EXPECT_FALSE(std::is_default_constructible_v<lgb::Entry>);
    EXPECT_EQ(sizeof(lgb::Entry), sizeof(LogbookEntry)) << "adds no members";
}

TEST(IsServiceOnly, HoldsForCodeZeroOfEveryType) {
    EXPECT_TRUE(lgb::isServiceOnly(entryWithCode(0, LogbookEntryType::Info)));
    EXPECT_TRUE(lgb::isServiceOnly(entryWithCode(0, LogbookEntryType::Warning)));
    EXPECT_TRUE(lgb::isServiceOnly(entryWithCode(0, LogbookEntryType::Error)));
    EXPECT_TRUE(lgb::isServiceOnly(entryWithCode(0, noType)));
}

TEST(IsServiceOnly, FailsForEveryOtherId) {
    EXPECT_FALSE(lgb::isServiceOnly(entryWithCode(1)));
    EXPECT_FALSE(lgb::isServiceOnly(entryWithCode(2147483648)));
    EXPECT_FALSE(lgb::isServiceOnly(entryWithCode(4294967295)));
}

TEST(IsServiceOnly, LooksAtTheLow32BitsAlone) {
    EXPECT_TRUE(lgb::isServiceOnly(entryWithCode(aboveAllIds)));
    EXPECT_FALSE(lgb::isServiceOnly(entryWithCode(aboveAllIds + 1)));
}

TEST(Code, TellsItsIdAndType) {
    EXPECT_EQ(warning(4294967295).id(), 4294967295u);
    EXPECT_EQ(warning(4294967295).type(), LogbookEntryType::Warning);
}

TEST(Code, IsCopiedWhole) {
    const Code original = error(17);
    const Code copy = original;
    EXPECT_EQ(copy.id(), 17u);
    EXPECT_EQ(copy.type(), LogbookEntryType::Error);
    Code assigned = info(1);
    assigned = original;
    EXPECT_EQ(assigned.id(), 17u);
    EXPECT_EQ(assigned.type(), LogbookEntryType::Error);
}

TEST(Code, CanBeDerivedFrom) {
    EXPECT_TRUE(std::has_virtual_destructor_v<Code>);
}

TEST(Code, MatchesAnEntryOfItsTypeAndIdInAll64Bits) {
    EXPECT_TRUE(error(17).isEntry(entryWithCode(17, LogbookEntryType::Error)));
    EXPECT_FALSE(error(17).isEntry(entryWithCode(18, LogbookEntryType::Error)));
    EXPECT_FALSE(error(17).isEntry(entryWithCode(17, LogbookEntryType::Warning)));
    EXPECT_FALSE(error(17).isEntry(entryWithCode(aboveAllIds + 17, LogbookEntryType::Error)));
}

TEST(Code, ZeroMatchesAnEntryWithoutCodeButNoneAboveAllIds) {
    EXPECT_TRUE(warning(0).isEntry(entryWithCode(0, LogbookEntryType::Warning)));
    EXPECT_FALSE(warning(0).isEntry(entryWithCode(aboveAllIds, LogbookEntryType::Warning)));
}

TEST(Code, MatchesTheEntryMadeFromIt) {
    EXPECT_TRUE(error(4294967295).isEntry(lgb::Entry(error(4294967295))));
}

TEST(Code, ShortFormIsLetterAndId) {
    EXPECT_EQ(shortForm(error(282)), "E282");
    EXPECT_EQ(shortForm(info(20)), "I20");
    EXPECT_EQ(shortForm(warning(23)), "W23");
    EXPECT_EQ(shortForm(error(4294967295)), "E4294967295");
}

TEST(Code, ShortFormOfIdZeroIsTheLetterAlone) {
    EXPECT_EQ(shortForm(info(0)), "I");
    EXPECT_EQ(shortForm(warning(0)), "W");
    EXPECT_EQ(shortForm(error(0)), "E");
}

TEST(Code, ShortFormOfATypeOutsideTheEnumerationHasNoLetter) {
    EXPECT_EQ(shortForm(Code(7, static_cast<LogbookEntryType>(5))), "7");
    EXPECT_EQ(shortForm(Code(7, static_cast<LogbookEntryType>(-1))), "7");
    EXPECT_EQ(shortForm(Code(0, noType)), "");
}

TEST(Code, ShortFormWithoutLetterLeavesTheWidthToTheId) {
    std::ostringstream text;
    text << std::setw(4) << Code(7, static_cast<LogbookEntryType>(5));
    EXPECT_EQ(text.str(), "   7");
}

TEST(Code, ShortFormIsDecimalWhateverTheStreamIsSetTo) {
    std::ostringstream text;
    text.imbue(std::locale(std::locale::classic(), new Grouping));
    text << std::hex << std::showbase << std::showpos << error(4294967295);
    EXPECT_EQ(text.str(), "E4294967295");
}

TEST(Code, ShortFormReturnsTheStream) {
    std::ostringstream text;
    text << error(282) << ", " << ServiceCode(LogbookEntryType::Info);
    EXPECT_EQ(text.str(), "E282, I");
}

TEST(ServiceCode, OfATypeHasIdZero) {
    const ServiceCode code(LogbookEntryType::Warning);
    EXPECT_EQ(code.id(), 0u);
    EXPECT_EQ(code.type(), LogbookEntryType::Warning);
}

TEST(ServiceCode, TakesAnyIdLikeACode) {
    const ServiceCode code(12, LogbookEntryType::Error);
    EXPECT_EQ(code.id(), 12u);
    EXPECT_EQ(code.type(), LogbookEntryType::Error);
}

TEST(ServiceCode, StandsInForACode) {
    const ServiceCode code(LogbookEntryType::Info);
    const Code& base = code;
    EXPECT_TRUE(base.isEntry(lgb::Entry(code, "Filter cleaned")));
    EXPECT_EQ(sizeof(ServiceCode), sizeof(Code)) << "adds no members";
}

TEST(ServiceCode, MakesAServiceOnlyEntryFromIdZeroAlone) {
    EXPECT_TRUE(lgb::isServiceOnly(lgb::Entry(ServiceCode(LogbookEntryType::Info), "Filter cleaned")));
    EXPECT_FALSE(lgb::isServiceOnly(lgb::Entry(ServiceCode(12, LogbookEntryType::Info), "Filter cleaned")));
}

tqbase2::nsa::zel::logbook::Entry stampedEntry() {
    tqbase2::nsa::zel::logbook::Entry entry;
    entry.type = LogbookEntryType::Error;
    entry.code = aboveAllIds + 17;
    entry.description = "Fan failed";
    entry.details.unit = 12;
    entry.details.device = 3;
    entry.details.params = R"({"ok":true})";
    entry.details.generation = Generation::Kestrel;
    entry.timestamp = {1600000000, 987654321, "half past two"};
    return entry;
}

void expectStampedEntry(const tqbase2::nsa::zel::logbook::Entry& entry) {
    EXPECT_EQ(entry.type, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 4294967313u);
    EXPECT_EQ(entry.description, "Fan failed");
    EXPECT_EQ(entry.details.unit, 12);
    EXPECT_EQ(entry.details.device, 3);
    EXPECT_EQ(entry.details.params, R"({"ok":true})");
    EXPECT_EQ(entry.details.generation, Generation::Kestrel);
    EXPECT_EQ(entry.timestamp.seconds, 1600000000);
    EXPECT_EQ(entry.timestamp.nanoseconds, 987654321);
    EXPECT_EQ(entry.timestamp.text, "half past two");
}

TEST(StampedEntry, IsCopiedWholeWithItsTimestamp) {
    const auto original = stampedEntry();
    const auto copy = original;
    expectStampedEntry(copy);
    tqbase2::nsa::zel::logbook::Entry assigned;
    assigned = original;
    expectStampedEntry(assigned);
}

TEST(StampedEntry, IsMovedWholeWithItsTimestamp) {
    auto original = stampedEntry();
    const auto moved = std::move(original);
    expectStampedEntry(moved);
}

TEST(StampedEntry, KeepsItsTextsWhenACopyChanges) {
    const auto original = stampedEntry();
    auto copy = original;
    copy.description = "overwritten";
    copy.details.params = "overwritten";
    copy.timestamp.text = "overwritten";
    expectStampedEntry(original);
}

TEST(StampedEntry, StandsInForARecord) {
    const auto entry = stampedEntry();
    const LogbookEntry& record = entry;
    EXPECT_EQ(record.description, "Fan failed");
}

}  // namespace

}  // namespace librarytest

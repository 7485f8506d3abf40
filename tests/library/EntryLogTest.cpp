#include "Grouping.h"
#include "LibraryTest.h"

#include <lgb/Entry.h>
#include <lgb/entryLog.h>
#include <nsa/zel/logbook/Entry.h>

#include <limits>
#include <locale>
#include <sstream>

namespace elsewhere {

struct Mine {};

/// Hides every operator<< outside this namespace from a plain look-up.
std::ostream& operator<<(std::ostream& stream, const Mine&) {
    return stream << "mine, ";
}

template <typename Value>
std::string streamed(const Value& value) {
    std::ostringstream text;
    text << Mine() << value;
    return text.str();
}

}  // namespace elsewhere

namespace librarytest {

namespace {

using EntryLongForm = LibraryTest;
using EntryStr = LibraryTest;
using EntryLog = LibraryTest;

using lgb::entryStr;

constexpr auto generation5 = static_cast<Generation>(5);

template <typename Entry>
std::string longForm(const Entry& entry) {
    std::ostringstream text;
    text << entry;
    return text.str();
}

/// A coded entry of generation Heron without unit and device.
LogbookEntry coded(LogbookEntryType type, std::uint64_t code) {
    LogbookEntry entry;
    entry.type = type;
    entry.code = code;
    entry.details.unit = -1;
    entry.details.device = -1;
    entry.details.generation = Generation::Heron;
    return entry;
}

LogbookEntry ofGeneration(Generation generation) {
    LogbookEntry entry = coded(LogbookEntryType::Warning, 23);
    entry.details.generation = generation;
    return entry;
}

LogbookEntry full() {
    LogbookEntry entry;
    entry.type = LogbookEntryType::Error;
    entry.code = 282;
    entry.description = "Fan failed";
    entry.details = {12, 3, R"({"ok":true})", Generation::Kestrel};
    return entry;
}

const char* const fullLongForm =
    R"(type: E - code: 282 - description: Fan failed - details: unit: 12 - device: 3 - params: {"ok":true} )"
    "- generation: Kestrel";

TEST_F(EntryLongForm, NamesEveryField) {
    EXPECT_EQ(longForm(full()), fullLongForm);
}

TEST_F(EntryLongForm, ShowsTwoBlanksWhereATextIsEmpty) {
    LogbookEntry entry = coded(LogbookEntryType::Warning, 23);
    entry.details.device = 4;
    EXPECT_EQ(longForm(entry),
              "type: W - code: 23 - description:  - details: unit: -1 - device: 4 - params:  - generation: Heron");
}

TEST_F(EntryLongForm, OfADefaultRecordShowsZeros) {
    EXPECT_EQ(longForm(LogbookEntry()),
              "type: I - code: 0 - description:  - details: unit: 0 - device: 0 - params:  - generation: Unknown");
}

TEST_F(EntryLongForm, ShowsNoLetterForATypeOutsideTheEnumeration) {
    EXPECT_EQ(longForm(coded(noType, 23)),
              "type:  - code: 23 - description:  - details: unit: -1 - device: -1 - params:  - generation: Heron");
}

TEST_F(EntryLongForm, EndsBehindTheColonForAGenerationOutsideTheEnumeration) {
    EXPECT_EQ(longForm(ofGeneration(generation5)),
              "type: W - code: 23 - description:  - details: unit: -1 - device: -1 - params:  - generation: ");
    EXPECT_EQ(longForm(ofGeneration(static_cast<Generation>(-1))),
              "type: W - code: 23 - description:  - details: unit: -1 - device: -1 - params:  - generation: ");
}

TEST_F(EntryLongForm, ShowsNumbersIn64Bits) {
    LogbookEntry entry = coded(LogbookEntryType::Error, std::numeric_limits<std::uint64_t>::max());
    entry.details.unit = std::numeric_limits<std::int64_t>::min();
    entry.details.device = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(longForm(entry),
              "type: E - code: 18446744073709551615 - description:  - details: unit: -9223372036854775808 - "
              "device: 9223372036854775807 - params:  - generation: Heron");
}

TEST_F(EntryLongForm, ShowsDecimalsWhateverTheStreamIsSetTo) {
    LogbookEntry entry = coded(LogbookEntryType::Error, 65535);
    entry.details.unit = 4096;
    entry.details.device = 4097;
    std::ostringstream text;
    text.imbue(std::locale(std::locale::classic(), new Grouping));
    text << std::hex << std::showbase << std::showpos << entry;
    EXPECT_EQ(text.str(),
              "type: E - code: 65535 - description:  - details: unit: 4096 - device: 4097 - params:  - "
              "generation: Heron");
}

TEST_F(EntryLongForm, EscapesNothing) {
    LogbookEntry entry = coded(LogbookEntryType::Info, 20);
    entry.description = "say \"no\"\n";
    entry.details.params = "\t{\\}";
    EXPECT_EQ(longForm(entry),
              "type: I - code: 20 - description: say \"no\"\n - details: unit: -1 - device: -1 - params: \t{\\} - "
              "generation: Heron");
}

TEST_F(EntryLongForm, ReturnsTheStreamAndWritesNoLineEnd) {
    std::ostringstream text;
    text << ofGeneration(Generation::Heron) << '|';
    EXPECT_EQ(text.str(),
              "type: W - code: 23 - description:  - details: unit: -1 - device: -1 - params:  - generation: Heron|");
}

TEST_F(EntryLongForm, IsTheSameForAnEntryMadeFromACode) {
    EXPECT_EQ(longForm(lgb::Entry(error(14), R"({"bus":1})")),
              R"(type: E - code: 14 - description:  - details: unit: -1 - device: -1 - params: {"bus":1} )"
              "- generation: Heron");
}

TEST_F(EntryLongForm, LeavesOutTheTimestamp) {
    tqbase2::nsa::zel::logbook::Entry entry;
    static_cast<LogbookEntry&>(entry) = full();
    entry.timestamp = platform().time;
    EXPECT_EQ(longForm(entry), fullLongForm);
}

TEST_F(EntryLongForm, IsFoundFromAnyNamespace) {
    EXPECT_EQ(elsewhere::streamed(full()), std::string("mine, ") + fullLongForm);
    EXPECT_EQ(elsewhere::streamed(lgb::Entry(error(14))),
              "mine, type: E - code: 14 - description:  - details: unit: -1 - device: -1 - params:  - "
              "generation: Heron");
    EXPECT_EQ(elsewhere::streamed(error(282)), "mine, E282");
}

TEST_F(EntryStr, NamesDeviceBeforeUnitThenGenerationDescriptionAndParams) {
    EXPECT_EQ(entryStr(full()), R"(E282 device=3 unit=12 Kestrel "Fan failed" {"ok":true})");
}

TEST_F(EntryStr, OfACurrentEntryWithoutTextsIsItsCodeAlone) {
    EXPECT_EQ(entryStr(coded(LogbookEntryType::Warning, 23)), "W23");
    EXPECT_EQ(entryStr(coded(LogbookEntryType::Info, 0)), "I");
}

TEST_F(EntryStr, LeavesOutWhatIsNegative) {
    LogbookEntry entry = coded(LogbookEntryType::Error, 282);
    entry.details.device = 4;
    entry.details.params = R"({"bus":1})";
    EXPECT_EQ(entryStr(entry), R"(E282 device=4 {"bus":1})");
    entry.details.device = -5;
    entry.details.unit = 4;
    EXPECT_EQ(entryStr(entry), R"(E282 unit=4 {"bus":1})");
}

TEST_F(EntryStr, ShowsUnitAndDeviceZero) {
    LogbookEntry entry = coded(LogbookEntryType::Warning, 23);
    entry.details.unit = 0;
    EXPECT_EQ(entryStr(entry), "W23 unit=0");
    entry.details.device = 0;
    EXPECT_EQ(entryStr(entry), "W23 device=0 unit=0");
}

TEST_F(EntryStr, NamesEveryGenerationButTheCurrentOne) {
    EXPECT_EQ(entryStr(ofGeneration(Generation::Unknown)), "W23 Unknown");
    EXPECT_EQ(entryStr(ofGeneration(Generation::Kestrel)), "W23 Kestrel");
    EXPECT_EQ(entryStr(ofGeneration(Generation::Heron)), "W23");
}

TEST_F(EntryStr, ShowsALoneBlankForAGenerationOutsideTheEnumeration) {
    EXPECT_EQ(entryStr(ofGeneration(generation5)), "W23 ");
    LogbookEntry entry = ofGeneration(noGeneration);
    entry.details.params = "{}";
    EXPECT_EQ(entryStr(entry), "W23  {}");
}

TEST_F(EntryStr, ShowsNoLetterForATypeOutsideTheEnumeration) {
    EXPECT_EQ(entryStr(coded(noType, 23)), "23");
    EXPECT_EQ(entryStr(coded(noType, 0)), "");
}

TEST_F(EntryStr, QuotesTheDescriptionOfAFreeTextEntry) {
    LogbookEntry entry = coded(LogbookEntryType::Info, 0);
    entry.description = "Filter cleaned";
    entry.details.generation = Generation::Kestrel;
    EXPECT_EQ(entryStr(entry), R"(I Kestrel "Filter cleaned")");
}

TEST_F(EntryStr, EscapesNothing) {
    LogbookEntry entry = coded(LogbookEntryType::Info, 20);
    entry.description = R"(say "no")";
    entry.details.params = R"({"value":"a\"b"})";
    EXPECT_EQ(entryStr(entry), R"(I20 "say "no"" {"value":"a\"b"})");
}

TEST_F(EntryStr, ShowsTheLow32BitsOfTheCodeAndAllOfUnitAndDevice) {
    LogbookEntry entry = coded(LogbookEntryType::Error, 4294967313);
    entry.details.unit = 4294967298;
    entry.details.device = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(entryStr(entry), "E17 device=9223372036854775807 unit=4294967298");
    EXPECT_EQ(entryStr(coded(LogbookEntryType::Error, 4294967296)), "E");
}

TEST_F(EntryStr, LogsNothing) {
    entryStr(full());
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(EntryLog, MirrorsEachTypeAtItsLevel) {
    lgb::entryLog(coded(LogbookEntryType::Info, 20));
    lgb::entryLog(coded(LogbookEntryType::Warning, 23));
    lgb::entryLog(full());
    EXPECT_EQ(logged(2), Lines{"I20"});
    EXPECT_EQ(logged(3), Lines{"W23"});
    EXPECT_EQ(logged(4), Lines{R"(E282 device=3 unit=12 Kestrel "Fan failed" {"ok":true})"});
    EXPECT_EQ(platform().log.size(), 3u);
}

TEST_F(EntryLog, MirrorsATypeOutsideTheEnumerationAsAnError) {
    lgb::entryLog(coded(noType, 23));
    lgb::entryLog(coded(static_cast<LogbookEntryType>(-1), 24));
    EXPECT_EQ(logged(4), (Lines{"23", "24"}));
    EXPECT_EQ(platform().log.size(), 2u);
}

struct LevelOff {
    LogbookEntryType type;
    unsigned int level;
};

TEST_F(EntryLog, LogsNothingWhenTheLevelOfTheTypeIsOff) {
    for (const LevelOff& row : {LevelOff{LogbookEntryType::Info, 2}, LevelOff{LogbookEntryType::Warning, 3},
                                LevelOff{LogbookEntryType::Error, 4}, LevelOff{noType, 4}}) {
        platform().log.clear();
        platform().lowestLevel = row.level;
        lgb::entryLog(coded(row.type, 23));
        EXPECT_EQ(platform().log.size(), 1u) << "level " << row.level << " is on";
        platform().lowestLevel = row.level + 1;
        lgb::entryLog(coded(row.type, 23));
        EXPECT_EQ(platform().log.size(), 1u) << "level " << row.level << " is off";
    }
}

}  // namespace

}  // namespace librarytest

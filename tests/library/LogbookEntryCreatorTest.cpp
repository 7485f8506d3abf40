#include "LibraryTest.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>

namespace librarytest {

namespace {

using lgb::LogbookEntryCreator;
using lgb::code::ServiceCode;
using StampedEntry = tqbase2::nsa::zel::logbook::Entry;

using CreateBaseEntry = LibraryTest;
using LogbookEntryCreatorCreate = LibraryTest;
using LogbookEntryCreatorServiceOnly = LibraryTest;

/// Stamped with the platform's time, for which the clock was read once.
void expectStampedNow(const StampedEntry& entry) {
    EXPECT_EQ(entry.timestamp.seconds, 1700000000);
    EXPECT_EQ(entry.timestamp.nanoseconds, 123456789);
    EXPECT_EQ(entry.timestamp.text, "a quarter past ten");
    EXPECT_EQ(platform().clockReads, 1);
}

void expectServiceEntry(const StampedEntry& entry, LogbookEntryType type) {
    EXPECT_EQ(entry.type, type);
    EXPECT_EQ(entry.details.unit, -1);
    EXPECT_EQ(entry.details.device, -1);
    EXPECT_EQ(entry.details.generation, Generation::Heron);
}

LogbookEntry fanFailure() {
    LogbookEntry entry;
    entry.type = LogbookEntryType::Error;
    entry.code = 4294967313;
    entry.description = "Fan failed";
    entry.details = {12, 3, R"({"ok":true})", Generation::Kestrel};
    return entry;
}

void expectFanFailure(const LogbookEntry& entry) {
    EXPECT_EQ(entry.type, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 4294967313u);
    EXPECT_EQ(entry.description, "Fan failed");
    EXPECT_EQ(entry.details.unit, 12);
    EXPECT_EQ(entry.details.device, 3);
    EXPECT_EQ(entry.details.params, R"({"ok":true})");
    EXPECT_EQ(entry.details.generation, Generation::Kestrel);
}

TEST_F(CreateBaseEntry, StartsFromZeros) {
    const StampedEntry entry = lgb::createBaseEntry();
    EXPECT_EQ(entry.type, LogbookEntryType::Info);
    EXPECT_EQ(entry.code, 0u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.unit, 0);
    EXPECT_EQ(entry.details.device, 0);
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Unknown);
}

TEST_F(CreateBaseEntry, TakesTheWholeTimestampFromTheClock) {
    expectStampedNow(lgb::createBaseEntry());
}

TEST_F(CreateBaseEntry, ReadsTheClockAtEveryCall) {
    lgb::createBaseEntry();
    platform().time = {1700000001, 5, "a second later"};
    const StampedEntry later = lgb::createBaseEntry();
    EXPECT_EQ(later.timestamp.seconds, 1700000001);
    EXPECT_EQ(later.timestamp.nanoseconds, 5);
    EXPECT_EQ(later.timestamp.text, "a second later");
}

TEST_F(CreateBaseEntry, PassesOnWhatTheClockThrows) {
    platform().clockFails = true;
    EXPECT_THROW(lgb::createBaseEntry(), recording::Failure);
    EXPECT_TRUE(platform().log.empty());
}

TEST_F(LogbookEntryCreatorCreate, CopiesEveryField) {
    const StampedEntry entry = LogbookEntryCreator::create(fanFailure());
    expectFanFailure(entry);
    expectStampedNow(entry);
}

TEST_F(LogbookEntryCreatorCreate, StampsARecordThatWasStampedBeforeWithTheCurrentTime) {
    StampedEntry old;
    static_cast<LogbookEntry&>(old) = fanFailure();
    old.timestamp = {1600000000, 1, "long ago"};
    const StampedEntry entry = LogbookEntryCreator::create(old);
    expectFanFailure(entry);
    expectStampedNow(entry);
}

TEST_F(LogbookEntryCreatorCreate, CopiesEmptyTexts) {
    const StampedEntry entry = LogbookEntryCreator::create(lgb::Entry(info(20)));
    EXPECT_EQ(entry.type, LogbookEntryType::Info);
    EXPECT_EQ(entry.code, 20u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.unit, -1);
    EXPECT_EQ(entry.details.device, -1);
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.generation, Generation::Heron);
}

TEST_F(LogbookEntryCreatorCreate, CopiesValuesOutsideTheEnumerations) {
    LogbookEntry record;
    record.type = noType;
    record.details.generation = noGeneration;
    const StampedEntry entry = LogbookEntryCreator::create(record);
    EXPECT_EQ(entry.type, noType);
    EXPECT_EQ(entry.details.generation, noGeneration);
}

TEST_F(LogbookEntryCreatorCreate, LeavesItsArgumentAlone) {
    const LogbookEntry record = fanFailure();
    LogbookEntryCreator::create(record);
    expectFanFailure(record);
}

TEST_F(LogbookEntryCreatorCreate, PassesOnWhatTheClockThrows) {
    platform().clockFails = true;
    EXPECT_THROW(LogbookEntryCreator::create(fanFailure()), recording::Failure);
}

TEST_F(LogbookEntryCreatorServiceOnly, TakesTheTextOfCodeZeroAsDescription) {
    const StampedEntry entry =
        LogbookEntryCreator::createServiceOnly("Filter cleaned", ServiceCode(LogbookEntryType::Info));
    expectServiceEntry(entry, LogbookEntryType::Info);
    EXPECT_EQ(entry.code, 0u);
    EXPECT_EQ(entry.description, "Filter cleaned");
    EXPECT_EQ(entry.details.params, "");
    EXPECT_TRUE(lgb::isServiceOnly(entry));
    expectStampedNow(entry);
}

TEST_F(LogbookEntryCreatorServiceOnly, TakesTheTextOfAnotherCodeAsParameters) {
    const StampedEntry entry =
        LogbookEntryCreator::createServiceOnly(R"({"bus":1})", ServiceCode(4294967295, LogbookEntryType::Error));
    expectServiceEntry(entry, LogbookEntryType::Error);
    EXPECT_EQ(entry.code, 4294967295u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.params, R"({"bus":1})");
    EXPECT_FALSE(lgb::isServiceOnly(entry));
    expectStampedNow(entry);
}

TEST_F(LogbookEntryCreatorServiceOnly, KeepsTheTextUnchanged) {
    const std::string text = std::string("  \"Filter\"\n\xFF") + '\0' + "cleaned  ";
    EXPECT_EQ(LogbookEntryCreator::createServiceOnly(text, ServiceCode(LogbookEntryType::Info)).description, text);
    EXPECT_EQ(LogbookEntryCreator::createServiceOnly(text, ServiceCode(12, LogbookEntryType::Info)).details.params,
              text);
}

TEST_F(LogbookEntryCreatorServiceOnly, KeepsAnEmptyTextEmpty) {
    for (const unsigned int id : {0u, 12u}) {
        const StampedEntry entry = LogbookEntryCreator::createServiceOnly("", ServiceCode(id, LogbookEntryType::Info));
        EXPECT_EQ(entry.code, id);
        EXPECT_EQ(entry.description, "");
        EXPECT_EQ(entry.details.params, "");
    }
}

TEST_F(LogbookEntryCreatorServiceOnly, PassesOnWhatTheClockThrows) {
    platform().clockFails = true;
    EXPECT_THROW(LogbookEntryCreator::createServiceOnly("Filter cleaned", ServiceCode(LogbookEntryType::Info)),
                 recording::Failure);
}

TEST_F(LogbookEntryCreatorServiceOnly, LogsNothing) {
    LogbookEntryCreator::createServiceOnly("Filter cleaned", ServiceCode(LogbookEntryType::Error));
    EXPECT_TRUE(platform().log.empty());
}

}  // namespace

}  // namespace librarytest

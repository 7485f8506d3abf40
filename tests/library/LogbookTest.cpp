#include "LibraryTest.h"

#include <lgb/Logbook.h>
#include <tqbase2/system/Exception.h>

#include <json/value.h>
#include <boost/signals2/connection.hpp>

#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace librarytest {

namespace {

namespace logbook = tqbase2::nsa::zel::logbook;
using Page = std::vector<logbook::Entry>;

// Stored documents, as the recording platform writes them.
constexpr const char* restarted =
    R"({"code":20,"description":"","details":{"device":-1,"generation":"Heron","params":"{}","unit":-1},"type":"I"})";
constexpr const char* attenuationFailed =
    R"({"code":14,"description":"","details":{"device":-1,"generation":"Heron",)"
    R"("params":"{\"bus\":1,\"module\":3,\"service\":\"S\"}","unit":2},"type":"E"})";
constexpr const char* filterCleaned =
    R"({"code":0,"description":"Filter cleaned","details":{"device":-1,"generation":"Heron","params":"","unit":-1},)"
    R"("type":"W"})";
constexpr const char* ofTypeQ = R"({"code":20,"type":"Q"})";

logbook::Entry attenuationEntry() {
    logbook::Entry entry;
    entry.type = LogbookEntryType::Error;
    entry.code = 14;
    entry.details = {2, -1, R"({"bus":1,"module":3,"service":"S"})", Generation::Heron};
    entry.timestamp = {1600000000, 5, "when it failed"};
    return entry;
}

std::string unreadable(const std::string& json, const std::string& words) {
    return "Can not convert stored logbook entry: " + json + " - error: " + words;
}

std::string repeated(std::size_t count, std::string_view text) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

/// Fails in a way that no std::exception tells of.
class DatabaseThrowingNumbers : public lgb::IDatabase {
public:
    std::vector<lgb::DatabaseRecord> fetch(unsigned int, unsigned int) override { throw 1; }

    void add(const std::string&, const lgb::timestamp::Timestamp&) override { throw 2; }

    void clear() override { throw 3; }

    unsigned int count() override { throw 4; }
};

/// Answers each page with one entry of its own making.
class LogbookWithItsOwnFetch : public lgb::Logbook {
public:
    using Logbook::Logbook;

    Page fetch(unsigned int offset, unsigned int count) override {
        logbook::Entry entry;
        entry.description = std::to_string(offset) + " to " + std::to_string(count);
        return {entry};
    }
};

class Logbook : public LibraryTest {
protected:
    /// A record behind those already there.
    void store(const std::string& json) {
        database.records.push_back({{1600000000, static_cast<std::int64_t>(database.records.size()), json}, json});
    }

    void storeAll(const Lines& documents) {
        for (const std::string& json : documents) {
            store(json);
        }
    }

    /// Counts what `changed` tells from now on.
    void listen() {
        customer.changed.connect([this] { ++changes; });
    }

    static Lines descriptions(const Page& page) {
        Lines texts;
        for (const logbook::Entry& entry : page) {
            texts.push_back(entry.description);
        }
        return texts;
    }

    /// That a record between two good ones costs itself and one line at level 3.
    void expectToCostOneEntry(const std::string& json, const std::string& words) {
        platform().log.clear();
        database.records.clear();
        storeAll({restarted, json, restarted});
        EXPECT_EQ(descriptions(customer.fetch(0, 20)), (Lines{"System restarted.", "System restarted."}));
        EXPECT_EQ(logged(3), Lines{unreadable(json, words)});
    }

    recording::MemoryDatabase database;
    lgb::Logbook customer{database, false};
    lgb::Logbook service{database, true};
    int changes = 0;
};

TEST_F(Logbook, StoresOneDocumentUnderTheTimeOfTheEntry) {
    customer.add(attenuationEntry());
    ASSERT_EQ(database.records.size(), 1u);
    EXPECT_EQ(database.records[0].json, attenuationFailed);
    EXPECT_EQ(database.records[0].timestamp.seconds, 1600000000);
    EXPECT_EQ(database.records[0].timestamp.nanoseconds, 5);
    EXPECT_EQ(database.records[0].timestamp.text, "when it failed");
    EXPECT_EQ(platform().jsonTextsWritten, 1);
    EXPECT_EQ(platform().clockReads, 0);
}

TEST_F(Logbook, OfServiceStoresTheSameDocument) {
    service.add(attenuationEntry());
    ASSERT_EQ(database.records.size(), 1u);
    EXPECT_EQ(database.records[0].json, attenuationFailed);
}

TEST_F(Logbook, StoresTheDescriptionOfTheEntryAsItIs) {
    logbook::Entry entry;
    entry.type = LogbookEntryType::Warning;
    entry.description = "Filter cleaned";
    entry.details = {-1, -1, "", Generation::Heron};
    customer.add(entry);
    ASSERT_EQ(database.records.size(), 1u);
    EXPECT_EQ(database.records[0].json, filterCleaned);
}

TEST_F(Logbook, LogsNothingWhenItAdds) {
    customer.add(attenuationEntry());
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, TellsOfEachAddedEntryOnce) {
    listen();
    customer.add(attenuationEntry());
    EXPECT_EQ(changes, 1);
    customer.add(attenuationEntry());
    EXPECT_EQ(changes, 2);
}

TEST_F(Logbook, TellsNothingWhenItFetches) {
    storeAll({restarted, ofTypeQ, filterCleaned});
    listen();
    customer.fetch(0, 20);
    customer.fetchAll();
    EXPECT_EQ(changes, 0);
}

TEST_F(Logbook, TellsOfEachClearOnceEvenWhenThereWasNothing) {
    store(restarted);
    listen();
    customer.clear();
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(database.records.empty());
    customer.clear();
    EXPECT_EQ(changes, 2);
}

TEST_F(Logbook, TellsOnlyItsOwnListeners) {
    listen();
    service.add(attenuationEntry());
    service.clear();
    EXPECT_EQ(changes, 0);
}

TEST_F(Logbook, TellsEveryListenerInTheOrderOfConnecting) {
    Lines told;
    customer.changed.connect([&] { told.emplace_back("display"); });
    customer.changed.connect([&] { told.emplace_back("remote control"); });
    customer.add(attenuationEntry());
    EXPECT_EQ(told, (Lines{"display", "remote control"}));
}

TEST_F(Logbook, TellsOnTheThreadOfTheCaller) {
    std::thread::id teller;
    customer.changed.connect([&] { teller = std::this_thread::get_id(); });
    customer.add(attenuationEntry());
    EXPECT_EQ(teller, std::this_thread::get_id());
    std::thread::id adder;
    std::thread thread([&] {
        adder = std::this_thread::get_id();
        customer.add(attenuationEntry());
    });
    thread.join();
    EXPECT_EQ(teller, adder);
}

TEST_F(Logbook, ShowsTheAddedEntryToAListenerThatFetches) {
    Lines seen;
    customer.changed.connect([&] { seen = descriptions(customer.fetch(0, 20)); });
    customer.add(attenuationEntry());
    EXPECT_EQ(seen, Lines{"Unit 2: Setting attenuation failed for amplifier 3 on bus 1!"});
}

TEST_F(Logbook, ShowsNothingToAListenerThatFetchesAfterClear) {
    store(restarted);
    bool told = false;
    Page seen(1);
    customer.changed.connect([&] {
        told = true;
        seen = customer.fetchAll();
    });
    customer.clear();
    EXPECT_TRUE(told);
    EXPECT_TRUE(seen.empty());
}

TEST_F(Logbook, TellsAListenerThatDisconnectsItselfOnce) {
    int once = 0;
    boost::signals2::connection connection;
    connection = customer.changed.connect([&] {
        ++once;
        connection.disconnect();
    });
    listen();
    customer.add(attenuationEntry());
    customer.add(attenuationEntry());
    EXPECT_EQ(once, 1);
    EXPECT_EQ(changes, 2);
}

TEST_F(Logbook, DropsItsListenersAtItsEnd) {
    boost::signals2::connection connection;
    {
        lgb::Logbook shortLived(database, false);
        connection = shortLived.changed.connect([this] { ++changes; });
        EXPECT_TRUE(connection.connected());
    }
    EXPECT_FALSE(connection.connected());
    EXPECT_EQ(changes, 0);
}

TEST_F(Logbook, HasStoredTheEntryWhenAListenerThrows) {
    customer.changed.connect([] { throw std::runtime_error("no display"); });
    EXPECT_THROW(customer.add(attenuationEntry()), std::runtime_error);
    EXPECT_EQ(database.records.size(), 1u);
}

TEST_F(Logbook, RefusesAGenerationOutsideTheEnumeration) {
    listen();
    logbook::Entry entry = attenuationEntry();
    entry.details.generation = noGeneration;
    EXPECT_THROW(customer.add(entry), tqbase2::system::LogicError);
    EXPECT_TRUE(database.records.empty());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, RefusesATypeOutsideTheEnumeration) {
    listen();
    logbook::Entry entry = attenuationEntry();
    entry.type = noType;
    EXPECT_THROW(customer.add(entry), tqbase2::system::LogicError);
    EXPECT_TRUE(database.records.empty());
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, PassesOnWhatTheDatabaseThrowsWhenItAddsAndTellsNobody) {
    listen();
    database.fails = true;
    EXPECT_THROW(customer.add(attenuationEntry()), recording::Failure);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, PassesOnWhatTheDatabaseThrowsWhenItClearsAndTellsNobody) {
    store(restarted);
    listen();
    database.fails = true;
    EXPECT_THROW(customer.clear(), recording::Failure);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(database.records.size(), 1u);
}

TEST_F(Logbook, PassesOnWhatTheDatabaseThrowsWhenItFetches) {
    database.fails = true;
    EXPECT_THROW(customer.fetch(0, 20), recording::Failure);
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 0 20"});
}

TEST_F(Logbook, PassesOnWhatTheDatabaseThrowsWhenItCounts) {
    database.fails = true;
    EXPECT_THROW(customer.fetchAll(), recording::Failure);
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, PassesOnWhatIsNoStandardException) {
    DatabaseThrowingNumbers numbers;
    lgb::Logbook logbook(numbers, false);
    logbook.changed.connect([this] { ++changes; });
    EXPECT_THROW(logbook.fetch(0, 20), int);
    EXPECT_THROW(logbook.add(attenuationEntry()), int);
    EXPECT_THROW(logbook.clear(), int);
    EXPECT_THROW(logbook.fetchAll(), int);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(everythingLogged(), (Lines{"2 fetch 0 20", "2 clear "}));
}

TEST_F(Logbook, LogsClearWithABlankBehindIt) {
    customer.clear();
    EXPECT_EQ(everythingLogged(), Lines{"2 clear "});
}

TEST_F(Logbook, LogsClearBeforeItAsksTheDatabase) {
    database.fails = true;
    EXPECT_THROW(customer.clear(), recording::Failure);
    EXPECT_EQ(everythingLogged(), Lines{"2 clear "});
}

TEST_F(Logbook, LogsClearBeforeItTells) {
    Lines logOfListener;
    customer.changed.connect([&] { logOfListener = everythingLogged(); });
    customer.clear();
    EXPECT_EQ(logOfListener, Lines{"2 clear "});
}

TEST_F(Logbook, LogsOffsetAndCountBeforeItAsksTheDatabase) {
    Lines logOfDatabase;
    database.onFetch = [&] { logOfDatabase = everythingLogged(); };
    customer.fetch(40, 20);
    EXPECT_EQ(logOfDatabase, Lines{"2 fetch 40 20"});
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 40 20"});
}

TEST_F(Logbook, LogsTheLargestOffsetAndCount) {
    store(restarted);
    EXPECT_TRUE(customer.fetch(4294967295u, 4294967295u).empty());
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 4294967295 4294967295"});
}

TEST_F(Logbook, FetchesNothingForACountOf0) {
    store(restarted);
    EXPECT_TRUE(customer.fetch(0, 0).empty());
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 0 0"});
}

TEST_F(Logbook, FetchesNothingBehindTheLastEntry) {
    store(restarted);
    EXPECT_TRUE(customer.fetch(1, 20).empty());
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 1 20"});
}

TEST_F(Logbook, LogsWhatItDoesInTheOrderOfDoing) {
    storeAll({restarted, ofTypeQ, "nonsense", filterCleaned});
    EXPECT_EQ(descriptions(customer.fetch(0, 4)), Lines{"System restarted."});
    EXPECT_EQ(everythingLogged(),
              (Lines{"2 fetch 0 4",
                     "1 src/DescriptionCreator.cpp:create type: I - code: 20 - description:  - details: unit: -1 - "
                     "device: -1 - params: {} - generation: Heron",
                     "1 src/DescriptionCreator.cpp:createZel type: I - code: 20 - description: System restarted. - "
                     "details: unit: -1 - device: -1 - params: {} - generation: Heron",
                     "4 No valid conversion to enum for value Q",
                     R"(3 Can not convert stored logbook entry: {"code":20,"type":"Q"} - error: std::exception)",
                     "3 Can not convert stored logbook entry: nonsense - error: not JSON",
                     "1 src/DescriptionCreator.cpp:create type: W - code: 0 - description: Filter cleaned - details: "
                     "unit: -1 - device: -1 - params:  - generation: Heron",
                     "4 createZel entry is service only: type: W - code: 0 - description:  - details: unit: -1 - "
                     "device: -1 - params:  - generation: Heron"}));
}

TEST_F(Logbook, LeavesTheLogToTheLevelsThatAreOn) {
    storeAll({restarted, ofTypeQ});
    platform().lowestLevel = 3;
    customer.fetch(0, 20);
    customer.clear();
    EXPECT_EQ(everythingLogged(),
              (Lines{"4 No valid conversion to enum for value Q",
                     R"(3 Can not convert stored logbook entry: {"code":20,"type":"Q"} - error: std::exception)"}));
}

TEST_F(Logbook, LeavesOutAnUnreadableEntryWhenWarningsAreOff) {
    storeAll({restarted, ofTypeQ, restarted});
    platform().lowestLevel = 4;
    EXPECT_EQ(descriptions(customer.fetch(0, 20)), (Lines{"System restarted.", "System restarted."}));
    EXPECT_EQ(everythingLogged(), Lines{"4 No valid conversion to enum for value Q"});
}

TEST_F(Logbook, LogsNothingWhenEveryLevelIsOff) {
    platform().lowestLevel = 5;
    storeAll({restarted, ofTypeQ, "nonsense", filterCleaned, restarted});
    EXPECT_EQ(descriptions(customer.fetch(0, 20)), (Lines{"System restarted.", "System restarted."}));
    EXPECT_EQ(customer.fetchAll().size(), 2u);
    customer.add(attenuationEntry());
    customer.clear();
    EXPECT_EQ(everythingLogged(), Lines());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(Logbook, FetchesEveryFieldOfTheRecord) {
    store(attenuationFailed);
    const Page page = customer.fetch(0, 20);
    ASSERT_EQ(page.size(), 1u);
    EXPECT_EQ(page[0].type, LogbookEntryType::Error);
    EXPECT_EQ(page[0].code, 14u);
    EXPECT_EQ(page[0].description, "Unit 2: Setting attenuation failed for amplifier 3 on bus 1!");
    EXPECT_EQ(page[0].details.unit, 2);
    EXPECT_EQ(page[0].details.device, -1);
    EXPECT_EQ(page[0].details.params, R"({"bus":1,"module":3,"service":"S"})");
    EXPECT_EQ(page[0].details.generation, Generation::Heron);
}

TEST_F(Logbook, FetchesWhatItAdded) {
    customer.add(attenuationEntry());
    const Page page = customer.fetchAll();
    ASSERT_EQ(page.size(), 1u);
    EXPECT_EQ(page[0].code, 14u);
    EXPECT_EQ(page[0].details.params, R"({"bus":1,"module":3,"service":"S"})");
    EXPECT_EQ(page[0].timestamp.text, "when it failed");
}

TEST_F(Logbook, FetchesEntriesUnderTheTimeTheyWereStoredWith) {
    database.records = {{{1600000002, 999999999, "later"}, restarted},
                        {{1500000000, 0, "long ago"}, ofTypeQ},
                        {{-1, 7, "before all"}, attenuationFailed}};
    const Page page = customer.fetch(0, 20);
    ASSERT_EQ(page.size(), 2u);
    EXPECT_EQ(page[0].timestamp.seconds, 1600000002);
    EXPECT_EQ(page[0].timestamp.nanoseconds, 999999999);
    EXPECT_EQ(page[0].timestamp.text, "later");
    EXPECT_EQ(page[1].timestamp.seconds, -1);
    EXPECT_EQ(page[1].timestamp.nanoseconds, 7);
    EXPECT_EQ(page[1].timestamp.text, "before all");
    EXPECT_EQ(platform().clockReads, 0);
}

TEST_F(Logbook, KeepsTheOrderOfTheDatabase) {
    database.records = {{{2, 0, "second"}, restarted},
                        {{3, 0, "third"}, attenuationFailed},
                        {{1, 0, "first"}, restarted},
                        {{3, 0, "third again"}, restarted}};
    Lines times;
    for (const logbook::Entry& entry : customer.fetch(0, 20)) {
        times.push_back(entry.timestamp.text);
    }
    EXPECT_EQ(times, (Lines{"second", "third", "first", "third again"}));
}

TEST_F(Logbook, FetchesOnePage) {
    storeAll({restarted, attenuationFailed, restarted, attenuationFailed});
    EXPECT_EQ(descriptions(customer.fetch(1, 2)),
              (Lines{"Unit 2: Setting attenuation failed for amplifier 3 on bus 1!", "System restarted."}));
}

TEST_F(Logbook, DoesNotFillUpThePageForEntriesLeftOut) {
    storeAll({restarted, ofTypeQ, attenuationFailed});
    EXPECT_EQ(descriptions(customer.fetch(0, 2)), Lines{"System restarted."});
}

TEST_F(Logbook, OfTheCustomerLeavesOutAnEntryWithoutCode) {
    storeAll({restarted, filterCleaned});
    EXPECT_EQ(descriptions(customer.fetch(0, 2)), Lines{"System restarted."});
    EXPECT_EQ(logged(3), Lines());
    EXPECT_EQ(logged(4), Lines{"createZel entry is service only: type: W - code: 0 - description:  - details: unit: -1 "
                               "- device: -1 - params:  - generation: Heron"});
}

TEST_F(Logbook, OfServiceShowsAnEntryWithoutCode) {
    storeAll({restarted, filterCleaned});
    EXPECT_EQ(descriptions(service.fetch(0, 2)), (Lines{"System restarted.", "Filter cleaned"}));
    EXPECT_EQ(logged(4), Lines());
}

TEST_F(Logbook, OfServiceShowsTheServiceDetail) {
    store(attenuationFailed);
    EXPECT_EQ(descriptions(service.fetch(0, 1)),
              Lines{"Unit 2: Setting attenuation failed for amplifier 3 on bus 1! S"});
}

TEST_F(Logbook, MakesTheDescriptionOfACodedEntryAnew) {
    store(R"({"code":20,"description":"as it read then","details":{"unit":-1,"device":-1,"params":"{}"},"type":"I"})");
    EXPECT_EQ(descriptions(customer.fetch(0, 1)), Lines{"System restarted."});
}

TEST_F(Logbook, ReadsMissingMembersAsZero) {
    store(R"({"code":20})");
    const Page page = customer.fetch(0, 1);
    ASSERT_EQ(page.size(), 1u);
    EXPECT_EQ(page[0].type, LogbookEntryType::Info);
    EXPECT_EQ(page[0].description, "Device 0, Unit 0: System restarted.");
    EXPECT_EQ(page[0].details.unit, 0);
    EXPECT_EQ(page[0].details.device, 0);
    EXPECT_EQ(page[0].details.params, "");
    EXPECT_EQ(page[0].details.generation, Generation::Unknown);
}

TEST_F(Logbook, ReadsAnEmptyTextAsAnEntryWithoutCodeWhereThePlatformTakesIt) {
    platform().emptyTextIsNull = true;
    store("");
    EXPECT_EQ(descriptions(service.fetch(0, 1)), Lines{"Device 0, Unit 0: "});
    EXPECT_TRUE(customer.fetch(0, 1).empty());
    EXPECT_EQ(logged(3), Lines());
}

TEST_F(Logbook, ReadsA64BitCode) {
    store(R"({"code":18446744073709551615,"details":{"unit":-1,"device":-1},"type":"I"})");
    const Page page = customer.fetch(0, 1);
    ASSERT_EQ(page.size(), 1u);
    EXPECT_EQ(page[0].code, 18446744073709551615u);
    EXPECT_EQ(page[0].description, "unknown entry.");
}

TEST_F(Logbook, LosesOneEntryToAnUnknownType) {
    expectToCostOneEntry(ofTypeQ, "std::exception");
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value Q"});
}

TEST_F(Logbook, LosesOneEntryToAnUnknownGeneration) {
    expectToCostOneEntry(R"({"code":20,"details":{"generation":"heron"},"type":"I"})", "std::exception");
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value heron"});
}

TEST_F(Logbook, LosesOneEntryToATextThatIsNotJson) {
    expectToCostOneEntry("nonsense", "not JSON");
    EXPECT_EQ(logged(4), Lines());
}

TEST_F(Logbook, LosesOneEntryToAnEmptyTextWhereThePlatformRejectsIt) {
    expectToCostOneEntry("", "not JSON");
}

TEST_F(Logbook, LosesOneEntryToTextBehindTheDocument) {
    expectToCostOneEntry(std::string(restarted) + "}", "not JSON");
}

TEST_F(Logbook, LosesOneEntryToAMemberOfAnotherJsonType) {
    expectToCostOneEntry(R"({"type":["I"]})", "Type is not convertible to string");
    expectToCostOneEntry(R"({"code":"20"})", "Value is not convertible to UInt64.");
    expectToCostOneEntry(R"({"code":-1})", "LargestInt out of UInt64 range");
    expectToCostOneEntry(R"({"code":1e30})", "double out of UInt64 range");
    expectToCostOneEntry(R"({"description":{}})", "Type is not convertible to string");
    expectToCostOneEntry(R"({"details":"x"})", "in Json::Value::find(begin, end): requires objectValue or nullValue");
    expectToCostOneEntry(R"({"details":{"unit":"1"}})", "Value is not convertible to Int64.");
    expectToCostOneEntry(R"({"details":{"device":[]}})", "Value is not convertible to Int64.");
    expectToCostOneEntry(R"({"details":{"params":{"bus":1}}})", "Type is not convertible to string");
    expectToCostOneEntry(R"({"details":{"generation":[]}})", "Type is not convertible to string");
}

TEST_F(Logbook, LosesOneEntryToADocumentThatIsNoObject) {
    for (const char* json : {"[]", "7", "true", R"("I")"}) {
        expectToCostOneEntry(json, "in Json::Value::find(begin, end): requires objectValue or nullValue");
    }
}

TEST_F(Logbook, LosesOneEntryToParametersOfAnotherJsonType) {
    expectToCostOneEntry(R"({"code":14,"details":{"params":"{\"bus\":\"x\"}"},"type":"E"})",
                         "Value is not convertible to UInt64.");
    EXPECT_EQ(logged(4), Lines());
}

TEST_F(Logbook, LeavesOutAnEntryThatCannotBeDescribedWithoutAWarning) {
    storeAll({restarted, R"({"code":14,"details":{"params":"nonsense"},"type":"E"})", restarted});
    EXPECT_EQ(descriptions(customer.fetch(0, 20)), (Lines{"System restarted.", "System restarted."}));
    EXPECT_EQ(logged(3), Lines());
    EXPECT_EQ(logged(4), Lines{"createZel extracted: not JSON"});
}

TEST_F(Logbook, OfServiceLosesOneEntryToAnUnreadableText) {
    storeAll({restarted, "nonsense", filterCleaned});
    EXPECT_EQ(descriptions(service.fetch(0, 20)), (Lines{"System restarted.", "Filter cleaned"}));
    EXPECT_EQ(logged(3), Lines{"Can not convert stored logbook entry: nonsense - error: not JSON"});
}

TEST_F(Logbook, LogsALineForEachUnreadableEntry) {
    storeAll({"first", restarted, "second"});
    EXPECT_EQ(descriptions(customer.fetchAll()), Lines{"System restarted."});
    EXPECT_EQ(logged(3), (Lines{"Can not convert stored logbook entry: first - error: not JSON",
                                "Can not convert stored logbook entry: second - error: not JSON"}));
}

TEST_F(Logbook, QuotesAnUnreadableTextByteForByte) {
    using namespace std::string_literals;
    expectToCostOneEntry(" \"\\\0\r\n\xFF %s "s, "not JSON");
}

TEST_F(Logbook, LosesOneEntryToADocumentCutAtAnyLength) {
    const std::string whole = attenuationFailed;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        expectToCostOneEntry(whole.substr(0, length), "not JSON");
    }
}

TEST_F(Logbook, PassesOnFromAnEntryWhatIsNoStdExceptionAndLosesThePage) {
    storeAll({restarted, restarted});
    platform().onParse = [] { throw 5; };
    EXPECT_THROW(customer.fetch(0, 2), int);
    EXPECT_EQ(logged(3), Lines{});
}

TEST_F(Logbook, LosesOneEntryToADeepText) {
    const std::string opening = repeated(100000, "[");
    const std::string closing = repeated(100000, "]");
    expectToCostOneEntry(opening, "not JSON");
    expectToCostOneEntry(opening + closing, "not JSON");
    expectToCostOneEntry(repeated(100000, R"({"details":)"), "not JSON");
    expectToCostOneEntry(R"({"details":)" + opening + closing + "}", "not JSON");
}

TEST_F(Logbook, LosesOneEntryToAHugeText) {
    const std::string huge = repeated(1048576, "x");
    expectToCostOneEntry(huge, "not JSON");
    expectToCostOneEntry(R"({"type":")" + huge + R"("})", "std::exception");
    EXPECT_EQ(logged(4), Lines{"No valid conversion to enum for value " + huge});
}

TEST_F(Logbook, FetchesAHugeEntryWhole) {
    const std::string huge = repeated(1048576, "x");
    store(R"({"description":")" + huge + R"(","details":{"unit":-1,"device":-1}})");
    EXPECT_EQ(descriptions(service.fetch(0, 1)), Lines{huge});
}

TEST_F(Logbook, FetchesAllEntriesFromTheFirstOn) {
    storeAll({restarted, attenuationFailed, ofTypeQ});
    platform().lowestLevel = 2;
    EXPECT_EQ(descriptions(customer.fetchAll()),
              (Lines{"System restarted.", "Unit 2: Setting attenuation failed for amplifier 3 on bus 1!"}));
    EXPECT_EQ(logged(2), Lines{"fetch 0 3"});
}

TEST_F(Logbook, FetchesAllOfNothing) {
    EXPECT_TRUE(customer.fetchAll().empty());
    EXPECT_EQ(everythingLogged(), Lines{"2 fetch 0 0"});
}

TEST_F(Logbook, FetchesAllThroughTheFetchOfASubclass) {
    storeAll({restarted, restarted, restarted});
    LogbookWithItsOwnFetch logbook(database, false);
    EXPECT_EQ(descriptions(logbook.fetchAll()), Lines{"0 to 3"});
    EXPECT_EQ(everythingLogged(), Lines());
}

TEST_F(Logbook, IsUsedThroughItsInterface) {
    lgb::ILogbook& logbook = customer;
    listen();
    logbook.add(attenuationEntry());
    EXPECT_EQ(logbook.fetch(0, 20).size(), 1u);
    EXPECT_EQ(logbook.fetchAll().size(), 1u);
    logbook.clear();
    EXPECT_TRUE(logbook.fetchAll().empty());
    EXPECT_EQ(changes, 2);
}

}  // namespace

}  // namespace librarytest

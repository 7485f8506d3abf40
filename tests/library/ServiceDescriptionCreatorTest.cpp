#include "DescriptionTest.h"

#include <lgb/ServiceDescriptionCreator.h>

#include <json/value.h>

namespace librarytest {

namespace {

/// An entry without a code, as it was stored.
LogbookEntry serviceOnly(const std::string& text) {
    LogbookEntry entry = codedEntry(info(0));
    entry.description = text;
    return entry;
}

using ServiceDescriptionCreator = DescriptionTest<lgb::ServiceDescriptionCreator>;

TEST_F(ServiceDescriptionCreator, ShowsAnEntryWithoutCodeAsPrefixAndStoredText) {
    EXPECT_EQ(shown(on(2, -1, serviceOnly("Filter cleaned"))), "Device 2: Filter cleaned");
}

TEST_F(ServiceDescriptionCreator, ShowsTheStoredTextAloneWithoutUnitAndDevice) {
    EXPECT_EQ(shown(serviceOnly("Filter cleaned")), "Filter cleaned");
    EXPECT_EQ(shown(serviceOnly("")), "");
}

TEST_F(ServiceDescriptionCreator, ShowsAnEntryWithoutCodeWhateverItsGenerationAndType) {
    for (const Generation generation : {Generation::Unknown, Generation::Kestrel, Generation::Heron, noGeneration}) {
        LogbookEntry entry = on(2, 5, serviceOnly("Filter cleaned"));
        entry.details.generation = generation;
        entry.type = noType;
        EXPECT_EQ(shown(entry), "Device 2, Unit 5: Filter cleaned");
    }
}

TEST_F(ServiceDescriptionCreator, ShowsAnEntryWithoutCodeOfTheFirstGeneration) {
    LogbookEntry entry = serviceOnly("Filter cleaned");
    entry.details.generation = Generation::Kestrel;
    entry.details.params = R"({"typeProduct":"Wren","text":"too hot"})";
    EXPECT_EQ(shown(entry), "Filter cleaned");
}

TEST_F(ServiceDescriptionCreator, TakesACodeWithoutLow32BitsForNoCode) {
    LogbookEntry entry = serviceOnly("Filter cleaned");
    entry.code = 4294967296;
    EXPECT_EQ(shown(entry), "Filter cleaned");
}

TEST_F(ServiceDescriptionCreator, LogsAndReadsNothingForAnEntryWithoutCode) {
    LogbookEntry entry = serviceOnly("Filter cleaned");
    entry.details.params = R"({"service":"S"})";
    EXPECT_EQ(shown(entry), "Filter cleaned");
    EXPECT_TRUE(platform().log.empty());
    EXPECT_EQ(platform().jsonTextsParsed, 0);
}

TEST_F(ServiceDescriptionCreator, AppendsABlankAndTheServiceDetail) {
    EXPECT_EQ(shown(codedEntry(error(14), R"({"bus":1,"module":3,"service":"register 0x1F"})")),
              "Setting attenuation failed for amplifier 3 on bus 1! register 0x1F");
}

TEST_F(ServiceDescriptionCreator, AppendsTheServiceDetailToAFixedMessage) {
    EXPECT_EQ(shown(on(1, -1, codedEntry(info(20), R"({"service":"watchdog"})"))),
              "Device 1: System restarted. watchdog");
}

TEST_F(ServiceDescriptionCreator, AppendsTheServiceDetailToAnUnknownMessage) {
    EXPECT_EQ(shown(codedEntry(info(21), R"({"service":"S"})")), "unknown entry. S");
    EXPECT_EQ(shown(codedEntry(Code(21, noType), R"({"service":"S"})")), "unknown entry! S");
}

TEST_F(ServiceDescriptionCreator, AppendsTheServiceDetailAsItIs) {
    EXPECT_EQ(shown(codedEntry(info(20), R"({"service":" "})")), "System restarted.  ");
    EXPECT_EQ(shown(codedEntry(info(20), R"({"service":5})")), "System restarted. 5");
}

TEST_F(ServiceDescriptionCreator, AppendsNothingForAnEmptyServiceDetail) {
    EXPECT_EQ(shown(codedEntry(error(14), R"({"bus":1,"module":3,"service":""})")),
              "Setting attenuation failed for amplifier 3 on bus 1!");
    EXPECT_EQ(shown(codedEntry(error(14), R"({"bus":1,"module":3,"service":null})")),
              "Setting attenuation failed for amplifier 3 on bus 1!");
}

TEST_F(ServiceDescriptionCreator, AppendsNothingWithoutAServiceDetail) {
    EXPECT_EQ(shown(codedEntry(error(14), R"({"bus":1,"module":3})")),
              "Setting attenuation failed for amplifier 3 on bus 1!");
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(ServiceDescriptionCreator, AppendsTheServiceDetailToAnEntryOfTheFirstGeneration) {
    EXPECT_EQ(shown(on(1, -1, kestrelEntry(R"({"typeProduct":"Wren","text":"too hot","service":"S"})"))),
              "Device 1: Wren too hot S");
}

TEST_F(ServiceDescriptionCreator, DropsWhatTheCustomerLogbookCannotDescribe) {
    EXPECT_EQ(dropped(on(1, -1, codedEntry(info(127), R"({"interlockMode":"manual","service":"S"})"))), "Device 1: ");
    EXPECT_EQ(logged(4),
              (Lines{"No valid conversion to enum for value manual", "createZel extracted: std::exception"}));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, DropsAnEntryOfTheFirstGenerationThatTheCustomerLogbookCannotDescribe) {
    EXPECT_EQ(dropped(kestrelEntry(R"({"typeProduct":"wren","service":"S"})")), "");
    EXPECT_EQ(logged(4),
              (Lines{"No valid conversion to enum for value wren", "createKestrel extracted: std::exception"}));
}

// A detail of that JSON type would throw, so it can't have been read.
TEST_F(ServiceDescriptionCreator, DoesNotReadTheServiceDetailOfADroppedEntry) {
    EXPECT_EQ(dropped(codedEntry(info(127), R"({"interlockMode":"manual","service":["S"]})")), "");
}

TEST_F(ServiceDescriptionCreator, LogsParametersThatAreNotJsonOnceWhenTheMessageNeedsThem) {
    EXPECT_EQ(dropped(codedEntry(error(3), "nonsense")), "");
    EXPECT_EQ(logged(4), Lines{"createZel extracted: not JSON"});
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, LeavesOutADetailThatIsNotJson) {
    EXPECT_EQ(shown(codedEntry(info(20), "nonsense")), "System restarted.");
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: I - code: 20 - description:  - details: unit: -1 - "
                     "device: -1 - params: nonsense - generation: Heron",
                     "1 src/DescriptionCreator.cpp:createZel type: I - code: 20 - description: System restarted. - "
                     "details: unit: -1 - device: -1 - params: nonsense - generation: Heron",
                     "4 create extracted: not JSON"}));
    EXPECT_EQ(platform().errorMessagesExtracted, 1);
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, OfEmptyParametersLogsWhatThePlatformRejects) {
    EXPECT_EQ(shown(codedEntry(info(20), "")), "System restarted.");
    EXPECT_EQ(logged(4), Lines{"create extracted: not JSON"});
}

TEST_F(ServiceDescriptionCreator, OfEmptyParametersLogsNothingWhereThePlatformTakesThem) {
    platform().emptyTextIsNull = true;
    EXPECT_EQ(shown(codedEntry(info(20), "")), "System restarted.");
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(ServiceDescriptionCreator, PassesOnExceptionsOfTheJsonLibraryForADetail) {
    for (const char* params : {"[1]", R"({"service":["S"]})"}) {
        LogbookEntry entry = codedEntry(info(20), params);
        EXPECT_THROW(creator.create(entry), Json::LogicError) << params;
        EXPECT_EQ(entry.description, "System restarted.") << params;
    }
    EXPECT_TRUE(logged(4).empty());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(ServiceDescriptionCreator, PassesOnExceptionsOfTheJsonLibraryForAMessage) {
    for (const char* params : {"[1]", R"({"bus":"x","service":"S"})"}) {
        LogbookEntry entry = on(2, -1, codedEntry(error(3), params));
        EXPECT_THROW(creator.create(entry), Json::LogicError) << params;
        EXPECT_EQ(entry.description, "Device 2: ") << params;
    }
    EXPECT_TRUE(logged(4).empty());
}

TEST_F(ServiceDescriptionCreator, ParsesOnceForMessageAndDetail) {
    shown(codedEntry(error(14), R"({"bus":1,"module":3,"service":"S"})"));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, ParsesOnceForAnEntryOfTheFirstGeneration) {
    shown(kestrelEntry(R"({"typeProduct":"Wren","text":"too hot","service":"S"})"));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, ParsesOnceForTheDetailOfAFixedMessage) {
    shown(codedEntry(info(20), R"({"service":"S"})"));
    EXPECT_EQ(platform().jsonTextsParsed, 1);
}

TEST_F(ServiceDescriptionCreator, TracesTheDescriptionBeforeTheDetail) {
    shown(codedEntry(info(20), R"({"service":"S"})"));
    EXPECT_EQ(everythingLogged(),
              (Lines{"1 src/DescriptionCreator.cpp:create type: I - code: 20 - description:  - details: unit: -1 - "
                     "device: -1 - params: {\"service\":\"S\"} - generation: Heron",
                     "1 src/DescriptionCreator.cpp:createZel type: I - code: 20 - description: System restarted. - "
                     "details: unit: -1 - device: -1 - params: {\"service\":\"S\"} - generation: Heron"}));
}

TEST_F(ServiceDescriptionCreator, ReplacesTheStoredDescriptionOfACodedEntry) {
    LogbookEntry entry = codedEntry(info(20), R"({"service":"S"})");
    entry.description = "as stored";
    EXPECT_EQ(shown(entry), "System restarted. S");
}

TEST_F(ServiceDescriptionCreator, ComposesNothingWhenNoLevelIsOn) {
    platform().lowestLevel = 5;
    EXPECT_EQ(shown(codedEntry(info(20), "nonsense")), "System restarted.");
    EXPECT_EQ(dropped(codedEntry(error(3), "nonsense")), "");
    EXPECT_EQ(dropped(kestrelEntry("nonsense")), "");
    EXPECT_TRUE(platform().log.empty());
    EXPECT_EQ(platform().errorMessagesExtracted, 0);
}

TEST_F(ServiceDescriptionCreator, DescribesThroughTheCustomersClass) {
    lgb::DescriptionCreator& customers = creator;
    LogbookEntry entry = serviceOnly("Filter cleaned");
    EXPECT_TRUE(customers.create(entry));
    EXPECT_EQ(entry.description, "Filter cleaned");
}

}  // namespace

}  // namespace librarytest

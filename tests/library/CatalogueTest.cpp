#include "LibraryTest.h"

#include <lgb/DescriptionCreator.h>
#include <lgb/catalogue.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <ostream>

namespace lgb::catalogue {

void PrintTo(const Message& message, std::ostream* stream) {
    *stream << message.id << ' ' << message.words;
}

}  // namespace lgb::catalogue

namespace librarytest {

namespace {

using Catalogue = LibraryTest;
using lgb::catalogue::Message;
using lgb::catalogue::Place;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using tqbase2::nsa::zel::enums::LogbookEntryType;

const std::vector<Message> messages = lgb::catalogue::messages();

/// The one message of that type and id.
Message message(LogbookEntryType type, std::uint32_t id) {
    const auto isIt = [&](const Message& each) { return each.type == type && each.id == id; };
    EXPECT_EQ(std::count_if(messages.begin(), messages.end(), isIt), 1) << id;
    return *std::find_if(messages.begin(), messages.end(), isIt);
}

auto isPlace(const std::string& name, const std::string& key, const std::string& holds) {
    return AllOf(Field(&Place::name, name), Field(&Place::key, key), Field(&Place::holds, holds));
}

/// The words with each place filled in as a record fills it that holds this.
std::string filled(std::string words) {
    static const std::map<std::string, std::string> shown{{"module", "3"},
                                                          {"bus", "1"},
                                                          {"onOff", "aglow"},
                                                          {"powerUnit", "W"},
                                                          {"group", "5"},
                                                          {"defectiveFan", "1"},
                                                          {"workingFan", "0"},
                                                          {"version", "2.1"},
                                                          {"type", "X"},
                                                          {"value", "7"},
                                                          {"path", "P"},
                                                          {"operatingClass", "A"},
                                                          {"outputMode", "High Power"},
                                                          {"interlockMode", "automatic"},
                                                          {"role", "device"},
                                                          {"nr", "2"}};
    for (const auto& [name, text] : shown) {
        for (auto place = words.find('{' + name + '}'); place != std::string::npos;
             place = words.find('{' + name + '}')) {
            words.replace(place, name.size() + 2, text);
        }
    }
    return words;
}

const std::string everyMember = R"({"bus":1,"module":3,"group":4,"on":true,"ok":true,"value":"7","type":"X",)"
                                R"("version":"2.1","watt":true,"path":"P","outputMode":"Power","operatingClass":"A",)"
                                R"("interlockMode":"automatic","role":"device","nr":2})";

TEST_F(Catalogue, ListsErrorsWarningsAndInformationByAscendingId) {
    const auto order = [](const Message& left, const Message& right) {
        const int byType = static_cast<int>(right.type) - static_cast<int>(left.type);
        return byType != 0 ? byType < 0 : left.id < right.id;
    };
    EXPECT_TRUE(std::is_sorted(messages.begin(), messages.end(), order));
    EXPECT_EQ(messages.front().type, LogbookEntryType::Error);
    EXPECT_EQ(messages.front().id, 1U);
    EXPECT_EQ(messages.back().type, LogbookEntryType::Info);
    EXPECT_EQ(messages.back().id, 280U);
}

TEST_F(Catalogue, HoldsTheWordsOfExactlyThoseIdsThatEntriesAreWordedFrom) {
    const lgb::DescriptionCreator creator;
    auto next = messages.begin();
    for (const LogbookEntryType type : {LogbookEntryType::Error, LogbookEntryType::Warning, LogbookEntryType::Info}) {
        for (std::uint32_t id = 0; id <= 1000; ++id) {
            const std::string text = creator.createText({id, type}, everyMember);
            const bool listed = next != messages.end() && next->type == type && next->id == id;
            EXPECT_EQ(listed ? filled(next->words) : "unknown entry", text) << id;
            next += listed ? 1 : 0;
        }
    }
    EXPECT_EQ(next, messages.end());
}

TEST_F(Catalogue, TellsWhichMembersTheWordsRead) {
    const Message attenuation = message(LogbookEntryType::Error, 14);
    EXPECT_EQ(attenuation.words, "Setting attenuation failed for amplifier {module} on bus {bus}");
    EXPECT_THAT(attenuation.places,
                ElementsAre(isPlace("module", "module", "number"), isPlace("bus", "bus", "number")));

    EXPECT_THAT(message(LogbookEntryType::Warning, 78).places,
                ElementsAre(isPlace("defectiveFan", "ok", "boolean"), isPlace("workingFan", "ok", "boolean")));
    EXPECT_THAT(message(LogbookEntryType::Error, 282).places,
                ElementsAre(isPlace("role", "role", "unit, device"), isPlace("nr", "nr", "number")));
    EXPECT_THAT(message(LogbookEntryType::Info, 20).places, IsEmpty());
}

TEST_F(Catalogue, SaysOfWarningsAloneThatPowerIsReduced) {
    EXPECT_EQ(message(LogbookEntryType::Error, 6).words, "Too low current for amplifier {module} on bus {bus}");
    EXPECT_EQ(message(LogbookEntryType::Warning, 6).words,
              "Too low current for amplifier {module} on bus {bus} reduced RF Power");
}

}  // namespace

}  // namespace librarytest

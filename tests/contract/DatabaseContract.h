#pragma once

#include <lgb/IDatabase.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

struct DatabaseUnderTest {
    std::string name;
    std::function<std::unique_ptr<lgb::IDatabase>()> make;  ///< a new, empty one
};

inline std::string nameOfDatabase(const testing::TestParamInfo<DatabaseUnderTest>& info) {
    return info.param.name;
}

inline void PrintTo(const DatabaseUnderTest& database, std::ostream* stream) {
    *stream << database.name;
}

/// What every database must do, whoever made it. To run it on yours:
///
///     INSTANTIATE_TEST_SUITE_P(Device, DatabaseContract, testing::Values(DatabaseUnderTest{"Flash",
///     makeFlashDatabase}),
///                              nameOfDatabase);
class DatabaseContract : public testing::TestWithParam<DatabaseUnderTest> {
protected:
    void add(const std::string& json) { database->add(json, {1700000000, 999999999, "the time of " + json}); }

    /// The texts of a page, in its order.
    std::vector<std::string> page(unsigned int offset, unsigned int count) {
        std::vector<std::string> texts;
        for (const lgb::DatabaseRecord& record : database->fetch(offset, count)) {
            texts.push_back(record.json);
        }
        return texts;
    }

    const std::unique_ptr<lgb::IDatabase> database = GetParam().make();
};

TEST_P(DatabaseContract, IsEmptyAtFirst) {
    EXPECT_EQ(database->count(), 0u);
    EXPECT_TRUE(database->fetch(0, 10).empty());
}

TEST_P(DatabaseContract, GivesBackTextAndTimeAsTheyWereAdded) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    const lgb::timestamp::Timestamp before1970{-62135596800, 999999999, everyByte};
    database->add(everyByte, before1970);

    const std::vector<lgb::DatabaseRecord> records = database->fetch(0, 10);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].json, everyByte);
    EXPECT_EQ(records[0].timestamp.seconds, -62135596800);
    EXPECT_EQ(records[0].timestamp.nanoseconds, 999999999);
    EXPECT_EQ(records[0].timestamp.text, everyByte);
}

TEST_P(DatabaseContract, KeepsEqualRecordsApart) {
    add("same");
    add("same");
    EXPECT_EQ(database->count(), 2u);
    EXPECT_EQ(page(0, 10), (std::vector<std::string>{"same", "same"}));
}

TEST_P(DatabaseContract, PagesJoinToTheWholeInOneOrder) {
    for (const char* json : {"a", "b", "c", "d", "e"}) {
        add(json);
    }
    const std::vector<std::string> all = page(0, 5);
    std::vector<std::string> joined;
    for (unsigned int offset = 0; offset < 6; offset += 2) {
        const std::vector<std::string> next = page(offset, 2);
        joined.insert(joined.end(), next.begin(), next.end());
    }
    EXPECT_EQ(joined, all);
    EXPECT_EQ(page(0, 4294967295), all);
}

TEST_P(DatabaseContract, APageOfNoRecordsIsEmpty) {
    add("a");
    EXPECT_TRUE(database->fetch(0, 0).empty());
}

TEST_P(DatabaseContract, APagePastTheEndIsEmpty) {
    add("a");
    EXPECT_TRUE(database->fetch(1, 10).empty());
    EXPECT_TRUE(database->fetch(4294967295, 4294967295).empty());
}

TEST_P(DatabaseContract, ClearRemovesEverythingAndAddingGoesOn) {
    add("a");
    add("b");
    database->clear();
    EXPECT_EQ(database->count(), 0u);
    EXPECT_TRUE(database->fetch(0, 10).empty());
    database->clear();
    add("c");
    EXPECT_EQ(database->count(), 1u);
    EXPECT_EQ(page(0, 10), std::vector<std::string>{"c"});
}

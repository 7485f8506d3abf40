#include "LibraryTest.h"

#include <lgb/Entry.h>

#include <sstream>

namespace librarytest {

namespace {

LogbookEntry entryWithCode(std::uint64_t code, LogbookEntryType type) {
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

TEST(Entry, OfCodeZeroTakesItsTextAsDescription) {
    const lgb::Entry entry(warning(0), "Filter cleaned");
    EXPECT_EQ(entry.type, LogbookEntryType::Warning);
    EXPECT_EQ(entry.code, 0u);
    EXPECT_EQ(entry.description, "Filter cleaned");
    EXPECT_EQ(entry.details.params, "");
    EXPECT_EQ(entry.details.unit, -1);
    EXPECT_EQ(entry.details.device, -1);
    EXPECT_EQ(entry.details.generation, Generation::Heron);
    EXPECT_TRUE(lgb::isServiceOnly(entry));
}

TEST(Entry, OfACodeTakesItsTextAsParameters) {
    const lgb::Entry entry(error(17), R"({"bus":1})");
    EXPECT_EQ(entry.code, 17u);
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.details.params, R"({"bus":1})");
    EXPECT_FALSE(lgb::isServiceOnly(entry));
}

TEST(Code, MatchesAnEntryOfItsTypeAndIdInAll64Bits) {
    EXPECT_TRUE(error(17).isEntry(entryWithCode(17, LogbookEntryType::Error)));
    EXPECT_FALSE(error(17).isEntry(entryWithCode(17, LogbookEntryType::Warning)));
    EXPECT_FALSE(error(17).isEntry(entryWithCode(4294967313, LogbookEntryType::Error)));
}

TEST(Code, ShortFormIsLetterAndId) {
    EXPECT_EQ(shortForm(error(282)), "E282");
    EXPECT_EQ(shortForm(warning(0)), "W");
    EXPECT_EQ(shortForm(Code(7, static_cast<LogbookEntryType>(5))), "7");
}

}  // namespace

}  // namespace librarytest

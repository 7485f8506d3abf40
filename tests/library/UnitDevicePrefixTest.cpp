#include "LibraryTest.h"

#include <lgb/UnitDeviceDescriptionCreator.h>

#include <limits>

namespace librarytest {

namespace {

std::string prefix(std::int64_t device, std::int64_t unit) {
    LogbookEntry entry;
    entry.details.device = device;
    entry.details.unit = unit;
    return lgb::UnitDeviceDescriptionCreator::create(entry);
}

TEST(UnitDevicePrefix, NamesDeviceBeforeUnit) {
    EXPECT_EQ(prefix(3, 12), "Device 3, Unit 12: ");
}

TEST(UnitDevicePrefix, NamesTheDeviceAlone) {
    EXPECT_EQ(prefix(3, -1), "Device 3: ");
}

TEST(UnitDevicePrefix, NamesTheUnitAlone) {
    EXPECT_EQ(prefix(-1, 12), "Unit 12: ");
}

TEST(UnitDevicePrefix, IsEmptyWithoutUnitAndDevice) {
    EXPECT_EQ(prefix(-1, -1), "");
}

TEST(UnitDevicePrefix, NamesDeviceAndUnitZero) {
    EXPECT_EQ(prefix(0, 0), "Device 0, Unit 0: ");
    EXPECT_EQ(prefix(0, -1), "Device 0: ");
    EXPECT_EQ(prefix(-1, 0), "Unit 0: ");
}

TEST(UnitDevicePrefix, OfADefaultRecordNamesBothZeros) {
    EXPECT_EQ(lgb::UnitDeviceDescriptionCreator::create(LogbookEntry()), "Device 0, Unit 0: ");
}

TEST(UnitDevicePrefix, TakesAnyNegativeNumberAsAbsent) {
    EXPECT_EQ(prefix(-5, 7), "Unit 7: ");
    EXPECT_EQ(prefix(7, -5), "Device 7: ");
    EXPECT_EQ(prefix(-5, -5), "");
    EXPECT_EQ(prefix(-4294967294, 7), "Unit 7: ") << "low 32 bits are 2";
    EXPECT_EQ(prefix(std::numeric_limits<std::int64_t>::min(), 7), "Unit 7: ") << "low 32 bits are 0";
}

TEST(UnitDevicePrefix, ShowsTheLow32BitsOfANumber) {
    EXPECT_EQ(prefix(4294967298, -1), "Device 2: ");
    EXPECT_EQ(prefix(-1, 4294967298), "Unit 2: ");
    EXPECT_EQ(prefix(4294967296, 4294967296), "Device 0, Unit 0: ");
}

TEST(UnitDevicePrefix, ShowsTheLow32BitsSigned) {
    EXPECT_EQ(prefix(2147483647, -1), "Device 2147483647: ");
    EXPECT_EQ(prefix(2147483648, -1), "Device -2147483648: ");
    EXPECT_EQ(prefix(-1, 2147483648), "Unit -2147483648: ");
    EXPECT_EQ(prefix(std::numeric_limits<std::int64_t>::max(), 4294967295), "Device -1, Unit -1: ");
}

TEST(UnitDevicePrefix, LooksAtNothingButUnitAndDevice) {
    LogbookEntry entry;
    entry.type = LogbookEntryType::Error;
    entry.code = 17;
    entry.description = "Fan failed";
    entry.details = {12, 3, R"({"bus":1})", Generation::Kestrel};
    EXPECT_EQ(lgb::UnitDeviceDescriptionCreator::create(entry), "Device 3, Unit 12: ");
}

TEST(GetStr, IsEmptyForAnInvalidNumber) {
    EXPECT_EQ(lgb::getStr(false, 42), "");
}

TEST(GetStr, WritesPlainDecimals) {
    EXPECT_EQ(lgb::getStr(true, 42), "42");
    EXPECT_EQ(lgb::getStr(true, 0), "0");
    EXPECT_EQ(lgb::getStr(true, -3), "-3");
    EXPECT_EQ(lgb::getStr(true, 2147483647), "2147483647");
    EXPECT_EQ(lgb::getStr(true, std::numeric_limits<int>::min()), "-2147483648");
}

TEST(CreateString, JoinsDeviceAndUnit) {
    EXPECT_EQ(lgb::createString("3", "12"), "Device 3, Unit 12: ");
}

TEST(CreateString, LeavesOutAnEmptyText) {
    EXPECT_EQ(lgb::createString("3", ""), "Device 3: ");
    EXPECT_EQ(lgb::createString("", "12"), "Unit 12: ");
}

TEST(CreateString, OfTwoEmptyTextsIsAUnitWithoutNumber) {
    EXPECT_EQ(lgb::createString("", ""), "Unit : ");
}

}  // namespace

}  // namespace librarytest

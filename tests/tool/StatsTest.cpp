#include "ToolFixture.h"

namespace {

class Stats : public ToolFixture {};

TEST_F(Stats, CountsWhatALogbookHolds) {
    const std::string failure = document("E", 14, R"({"bus":1,"module":3})");
    store("lgbCustomer", std::vector<std::string>{failure, document("I", 20, "", 2, 4), failure, freeText("x"), "{"});
    EXPECT_EQ(output("stats customer", "TZ=Europe/Berlin"),
              "5 entries from 2026-11-21 19:00 +0100 to 2026-11-21 19:04 +0100\n"
              "\n"
              "Types\n"
              "       2  error\n"
              "       2  info\n"
              "\n"
              "Messages\n"
              "       2  E14  Setting attenuation failed for amplifier {module} on bus {bus}\n"
              "       1  free text\n"
              "       1  I20  System restarted\n"
              "\n"
              "Units\n"
              "       3  no unit\n"
              "       1  unit 2\n"
              "\n"
              "Devices\n"
              "       3  no device\n"
              "       1  device 4\n"
              "\n"
              "Standing\n"
              "       3  shown\n"
              "       1  service only\n"
              "       1  unreadable\n"
              "\n"
              "Over time, 21 s a line\n"
              "  2026-11-21 19:00:00  ########################################  1\n"
              "  2026-11-21 19:00:21                                            0\n"
              "  2026-11-21 19:00:42  ########################################  1\n"
              "  2026-11-21 19:01:03                                            0\n"
              "  2026-11-21 19:01:24                                            0\n"
              "  2026-11-21 19:01:45  ########################################  1\n"
              "  2026-11-21 19:02:06                                            0\n"
              "  2026-11-21 19:02:27                                            0\n"
              "  2026-11-21 19:02:48  ########################################  1\n"
              "  2026-11-21 19:03:09                                            0\n"
              "  2026-11-21 19:03:30                                            0\n"
              "  2026-11-21 19:03:51  ########################################  1\n");
}

TEST_F(Stats, CountsWhatAFilterLeaves) {
    storeEvening();
    EXPECT_EQ(output("stats customer --type warning", "TZ=Europe/Berlin"),
              "1 entry from 2026-11-21 19:02 +0100 to 2026-11-21 19:02 +0100\n"
              "\n"
              "Types\n"
              "       1  warning\n"
              "\n"
              "Messages\n"
              "       1  W63  Too low driver current for amplifier {module} on bus {bus} reduced RF Power\n"
              "\n"
              "Units\n"
              "       1  unit 2\n"
              "\n"
              "Devices\n"
              "       1  device 4\n"
              "\n"
              "Over time, 1 s a line\n"
              "  2026-11-21 19:02:00  ########################################  1\n");
}

TEST_F(Stats, CountsMessagesOfTheFirstGenerationByTheirWords) {
    add("customer info 20");
    add("customer info 20 --generation Kestrel --params '{\"typeProduct\":\"Wren\",\"text\":\"Fan cleaned\"}'");
    add("customer info 20");
    store("lgbCustomer", std::vector<std::string>{document("W", 4711, "")});
    EXPECT_THAT(output("stats customer"), testing::HasSubstr("Messages\n"
                                                             "       2  I20  System restarted\n"
                                                             "       1  I20  Wren Fan cleaned\n"
                                                             "       1  W4711  unknown entry\n"));
}

TEST_F(Stats, TakesEachNegativeNumberForNone) {
    store("lgbCustomer", std::vector<std::string>{document("I", 20, "", -1), document("I", 20, "", -2)});
    EXPECT_THAT(output("stats customer"), testing::HasSubstr("Units\n       2  no unit\n\n"));
}

TEST_F(Stats, ListsEquallyFrequentUnitsByNumber) {
    store("lgbCustomer", std::vector<std::string>{document("I", 20, "", 10), document("I", 20, "", 9)});
    EXPECT_THAT(output("stats customer"), testing::HasSubstr("Units\n"
                                                             "       1  unit 9\n"
                                                             "       1  unit 10\n"));
}

TEST_F(Stats, KeepsToTheTerminal) {
    storeEvening();
    EXPECT_THAT(onTerminal("stats customer --type warning", "PAGER="),
                testing::HasSubstr("Messages\n"
                                   "       1  W63  Too low driver current for amplifier {module} on bus {bus}\n"
                                   "          reduced RF Power\n"));
}

TEST_F(Stats, SaysThatThereIsNothing) {
    storeEvening();
    EXPECT_EQ(output("stats customer --unit 7"), "0 entries\n");
    tool("clear customer --yes");
    EXPECT_EQ(output("stats customer"), "0 entries\n");
}

TEST_F(Stats, BearsTimesThatNoCalendarHas) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{{INT64_MIN, 0, ""}, document("I", 20, "")},
                                                          {{INT64_MAX, 0, ""}, document("I", 20, "")}});
    EXPECT_THAT(output("stats customer"),
                testing::StartsWith("2 entries from -9223372036854775808 to 9223372036854775807\n"));
}

}  // namespace

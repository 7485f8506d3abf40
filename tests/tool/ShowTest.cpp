#include "Follower.h"
#include "ToolFixture.h"

#include <json/reader.h>

#include <chrono>
#include <csignal>
#include <ctime>
#include <memory>
#include <thread>

namespace {

using support::Outcome;
using testing::HasSubstr;

class Show : public ToolFixture {
protected:
    /// The numbers of the entries that are shown, in order.
    std::string numbers(const std::string& arguments, const std::string& environment = "") const {
        const std::string csv = output("show customer --format csv " + arguments, environment);
        std::string numbers;
        for (std::size_t end = csv.find('\n'); end + 1 < csv.size(); end = csv.find('\n', end + 1)) {
            numbers += (numbers.empty() ? "" : " ") + csv.substr(end + 1, csv.find(',', end) - end - 1);
        }
        return numbers;
    }

    /// One entry of each kind that a logbook does not show.
    void storeUnshown() const {
        store("lgbCustomer", std::vector<std::string>{
                                 document("E", 14, R"({"bus":1,"module":3})"),
                                 freeText("Fan 2 replaced"),
                                 document("W", 63, R"({"bus":"x"})", 2),
                                 "{\"type\":\x1b",
                                 document("I", 20, ""),
                             });
    }

    void storeFlawed() const {
        storeUnshown();
        change("UPDATE record SET json = 'spoilt' WHERE number = 5");
    }

    static Json::Value parsed(const std::string& text) {
        Json::CharReaderBuilder builder;
        Json::CharReaderBuilder::strictMode(&builder.settings_);
        const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value value;
        std::string errors;
        EXPECT_TRUE(reader->parse(text.data(), text.data() + text.size(), &value, &errors)) << errors << text;
        return value;
    }
};

TEST_F(Show, WantsEachConditionToHold) {
    storeEvening();
    EXPECT_EQ(numbers(""), "3 2 1");
    EXPECT_EQ(numbers("--type error,warning"), "3 1");
    EXPECT_EQ(numbers("--type error --type info"), "2 1");
    EXPECT_EQ(numbers("--code e14"), "1");
    EXPECT_EQ(numbers("--code E14,w63"), "3 1");
    EXPECT_EQ(numbers("--code I14"), "");
    EXPECT_EQ(numbers("--unit 2"), "3");
    EXPECT_EQ(numbers("--unit 0"), "");
    EXPECT_EQ(numbers("--device 4"), "3");
    EXPECT_EQ(numbers("--device 2"), "");
    EXPECT_EQ(numbers("--grep AMPLIFIER"), "3 1");
    EXPECT_EQ(numbers("--grep '^device 4.*power!$'"), "3");
    EXPECT_EQ(numbers("--type error,warning --grep amplifier --unit 2"), "3");
    EXPECT_EQ(numbers("--type error --unit 2"), "");
}

TEST_F(Show, TakesTheTypeBeforeTheLogbookToo) {
    storeEvening();
    EXPECT_EQ(output("show --type info customer"),
              "No.  Time                       Type  Description\n"
              "  2  2026-11-21 19:01:00 +0100  Info  System restarted.\n");
}

TEST_F(Show, WantsTheTimeToLieBetween) {
    storeEvening();
    const std::string berlin = "TZ=Europe/Berlin";
    EXPECT_EQ(numbers("--since 2026-11-21 --until 2026-11-21", berlin), "3 2 1");
    EXPECT_EQ(numbers("--until 2026-11-20", berlin), "");
    EXPECT_EQ(numbers("--since '2026-11-21 19:01'", berlin), "3 2");
    EXPECT_EQ(numbers("--since '2026-11-21 19:01'", "TZ=UTC"), "");
    EXPECT_EQ(numbers("--since 2026-11-21T18:01Z --until 2026-11-21T19:01:00+01:00", "TZ=America/New_York"), "2");
    EXPECT_EQ(numbers("--until '2026-11-21 19:01:59 +0100'", "TZ=Asia/Tokyo"), "2 1");
}

TEST_F(Show, CountsTimeFromNow) {
    const std::int64_t now = std::time(nullptr);
    constexpr std::int64_t hour = 3600;
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{{now - 3 * hour, 0, ""}, document("I", 20, "")},
                                                          {{now - hour, 0, ""}, document("I", 20, "")},
                                                          {{now + hour, 0, ""}, document("I", 20, "")}});
    EXPECT_EQ(numbers("--since '2 hours ago'"), "3 2");
    EXPECT_EQ(numbers("--until '2 hours ago'"), "1");
    EXPECT_EQ(numbers("--until now"), "2 1");
}

TEST_F(Show, RefusesWhatIsNoTimeNoCodeAndNoPattern) {
    storeEvening();
    const std::string expected =
        R"(; expected one like 2026-11-21, "2026-11-21 19:02", 2026-11-21T19:02:11Z, yesterday or "2 hours ago")"
        "\n";
    EXPECT_EQ(wrongUse("show customer --since tomorrow"), "tqzel-logbook: --since: \"tomorrow\" is no time" + expected);
    EXPECT_EQ(wrongUse("show customer --until 2026-02-30"),
              "tqzel-logbook: --until: \"2026-02-30\" is no time" + expected);
    EXPECT_EQ(wrongUse("show customer --code X14"),
              "tqzel-logbook: --code: \"X14\" is no code; expected E, W or I and a number, like E14\n");
    EXPECT_EQ(wrongUse("show customer --grep 'a('"),
              "tqzel-logbook: --grep: \"a(\" is no regular expression: missing ): a(\n");
}

TEST_F(Show, AnswersAPatternThatIsMeantToTakeForever) {
    store("lgbService", std::vector<std::string>{freeText(std::string(5000, 'a'))});
    EXPECT_EQ(output("show service --format json --grep '(a+)+(a|aa)*b$'"), "[]\n");
    EXPECT_THAT(wrongUse("show service --grep '((a{1000}){1000}){1000}'"), HasSubstr("is no regular expression"));
}

TEST_F(Show, CountsOnlyWhatTheFilterLeaves) {
    storeEvening();
    EXPECT_EQ(numbers("--type error,warning --count 1"), "3");
    EXPECT_EQ(numbers("--type error,warning --offset 1"), "1");
    EXPECT_EQ(numbers("--count 0"), "");
    EXPECT_EQ(numbers("--offset 4294967295 --count 4294967295"), "");
}

TEST_F(Show, TurnsAPageRoundWithoutChangingWhatIsOnIt) {
    storeEvening();
    EXPECT_EQ(numbers("--reverse"), "1 2 3");
    EXPECT_EQ(numbers("--reverse --all"), "1 2 3");
    EXPECT_EQ(numbers("--reverse --count 2"), "2 3");
    EXPECT_EQ(numbers("--reverse --offset 1 --count 1"), "2");
}

TEST_F(Show, GoesOnBehindANumber) {
    store("lgbCustomer", std::vector<std::string>(30, document("I", 20, "")));
    EXPECT_EQ(numbers("--after 27"), "30 29 28");
    EXPECT_EQ(numbers("--after 27 --reverse"), "28 29 30");
    EXPECT_EQ(numbers("--after 27 --count 1"), "30");
    EXPECT_EQ(numbers("--after 30"), "");
    EXPECT_EQ(numbers("--after 5 --reverse").substr(0, 6), "6 7 8 ");  // more than the usual 20
    EXPECT_EQ(numbers("--after 0 --reverse").substr(0, 6), "1 2 3 ");
}

TEST_F(Show, MarksWhereTheClockWasSetBack) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{minute(30), document("I", 20, "")},
                                                          {minute(1), document("I", 20, "")},
                                                          {{0, 0, "1970-01-01 01:00:00 +0100"}, document("I", 20, "")},
                                                          {minute(2), document("I", 20, "")}});
    EXPECT_EQ(output("show customer"),
              "No.  Time                       Type  Description\n"
              "  4  2026-11-21 19:02:00 +0100  Info  System restarted.\n"
              "  3  1970-01-01 01:00:00 +0100  Info  System restarted. [clock set back by 20778 d 18 h]\n"
              "  2  2026-11-21 19:01:00 +0100  Info  System restarted. [clock set back by 29 min]\n"
              "  1  2026-11-21 19:30:00 +0100  Info  System restarted.\n");
}

TEST_F(Show, BearsTimesThatNoCalendarHas) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{{INT64_MAX, 0, "end"}, document("I", 20, "")},
                                                          {{INT64_MIN, 0, "begin"}, document("I", 20, "")}});
    EXPECT_EQ(output("show customer"),
              "No.  Time   Type  Description\n"
              "  2  begin  Info  System restarted. [clock set back by 106751991167300 d 15 h]\n"
              "  1  end    Info  System restarted.\n");
    EXPECT_EQ(output("show customer --utc --count 1 --offset 1"),
              "No.  Time                 Type  Description\n"
              "  1  9223372036854775807  Info  System restarted.\n");
}

TEST_F(Show, ShowsCodeAndParametersOfAnEntryWithoutAMessage) {
    store("lgbCustomer", std::vector<std::string>{document("E", 4711, R"({"bus":1})"), document("W", 4711, "")});
    EXPECT_EQ(output("show customer --utc"),
              "No.  Time                       Type     Description\n"
              "  2  2026-11-21 18:01:00 +0000  Warning  unknown entry! [W4711]\n"
              "  1  2026-11-21 18:00:00 +0000  Error    unknown entry! [E4711 {\"bus\":1}]\n");
}

TEST_F(Show, DoesNotMakeRoomInEachLineForOneVeryLongTime) {
    store("lgbCustomer",
          std::vector<lgb::DatabaseRecord>{{{evening, 0, "then"}, document("I", 20, "")},
                                           {{evening, 0, std::string(1000000, 't')}, document("I", 20, "")},
                                           {{evening, 0, std::string(40, 't')}, document("I", 20, "")}});
    EXPECT_EQ(output("show customer"),
              "No.  Time                                      Type  Description\n"
              "  3  tttttttttttttttttttttttttttttttttttttttt  Info  System restarted.\n"
              "  2  ttttttttttttttttttttttttttttttttttttt...  Info  System restarted.\n"
              "  1  then                                      Info  System restarted.\n");
}

TEST_F(Show, TellsWhatItLeavesOut) {
    storeFlawed();
    const Outcome outcome = tool("show customer");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output,
              "No.  Time                       Type   Description\n"
              "  1  2026-11-21 19:00:00 +0100  Error  Setting attenuation failed for amplifier 3 on bus 1!\n");
    EXPECT_EQ(outcome.errors,
              "tqzel-logbook: not shown: 1 entry (service only); --raw shows them\n"
              "tqzel-logbook: not shown: 1 entry (wordless); --raw shows them\n"
              "tqzel-logbook: not shown: 1 entry (unreadable); --raw shows them\n"
              "tqzel-logbook: not shown: 1 entry (damaged); --raw shows them\n");
}

TEST_F(Show, DoesNotTellOfWhatTheFilterWouldLeaveOutAnyway) {
    storeFlawed();
    EXPECT_EQ(tool("show customer --type error").errors, "");
    EXPECT_EQ(tool("show customer --unit 2").errors,
              "tqzel-logbook: not shown: 1 entry (wordless); --raw shows them\n");
    EXPECT_EQ(numbers("--raw --type info"), "2");
    EXPECT_EQ(numbers("--raw --grep ''"), "3 2 1");
    EXPECT_EQ(numbers("--raw --since 2026-11-21T18:03Z"), "5 4");
}

TEST_F(Show, SaysThatThereAreMoreThanTheUsualTwenty) {
    const std::string restart = document("I", 20, "");
    store("lgbCustomer", std::vector<std::string>{document("I", 229, "")});
    store("lgbCustomer", std::vector<std::string>(19, restart));
    EXPECT_EQ(tool("show customer").errors, "");
    store("lgbCustomer", std::vector<std::string>{restart});
    const std::string hint = "tqzel-logbook: these are the newest 20; --all shows every one\n";
    EXPECT_EQ(tool("show customer --reverse --format jsonl").errors, hint);
    EXPECT_EQ(tool("show customer --since 2026-11-20").errors, hint);
    for (const std::string enough : {"--code I20", "--all", "--count 20", "--after 0", "--offset 1"}) {
        EXPECT_EQ(tool("show customer " + enough).errors, "") << enough;
    }
}

TEST_F(Show, SaysThatThereIsNothingToShow) {
    storeEvening();
    EXPECT_EQ(tool("show customer --unit 7").errors, "tqzel-logbook: there is no such entry\n");
    EXPECT_EQ(tool("show customer --after 3 --format jsonl").errors, "");
}

TEST_F(Show, FollowsNothingThatIsOver) {
    storeEvening();
    EXPECT_EQ(wrongUse("show customer --follow --until now"),
              "tqzel-logbook: --follow and --until can't be given together\n");
}

TEST_F(Show, RefusesAPeriodThatEndsBeforeItBegins) {
    EXPECT_EQ(wrongUse("show customer --until 2026-11-20 --since 2026-11-21"),
              "tqzel-logbook: --until: lies before --since\n");
    EXPECT_EQ(wrongUse("stats customer --until 2026-11-20 --since 2026-11-21"),
              "tqzel-logbook: --until: lies before --since\n");
}

TEST_F(Show, ShowsRawWhatTheLogbookLeavesOutAndWhy) {
    storeFlawed();
    EXPECT_EQ(output("show customer --raw"),
              "No.  Time                       Type     Description\n"
              "  5  2026-11-21 19:04:00 +0100  ?        (damaged) [spoilt]\n"
              "  4  2026-11-21 19:03:00 +0100  ?        (unreadable: not JSON: Line 1, Column 9: Syntax error: value, "
              "object or array expected.) [{\"type\":\\x1b]\n"
              "  3  2026-11-21 19:02:00 +0100  Warning  Unit 2: (wordless: a parameter can't be read: Value is not "
              "convertible to "
              "UInt64.) [W63 "
              "{\"bus\":\"x\"}]\n"
              "  2  2026-11-21 19:01:00 +0100  Info     (service only) Fan 2 replaced [I0]\n"
              "  1  2026-11-21 19:00:00 +0100  Error    Setting attenuation failed for amplifier 3 on bus 1! [E14 "
              "{\"bus\":1,\"module\":3}]\n");
}

TEST_F(Show, WritesJsonLines) {
    storeFlawed();
    EXPECT_EQ(output("show customer --raw --format jsonl --offset 1 --count 2"),
              R"({"document":"{\"type\":\u001b","number":4,"reason":"not JSON: Line 1, Column 9: Syntax error: value, )"
              R"(object or array expected.","standing":"unreadable","time":"2026-11-21T18:03:00Z",)"
              R"("timeText":"2026-11-21 19:03:00 +0100"})"
              "\n"
              R"({"code":"W63","description":"Unit 2: ","device":null,"generation":"Heron","number":3,)"
              R"("parameters":{"bus":"x"},"reason":"a parameter can't be read: Value is not convertible to UInt64.",)"
              R"("standing":"wordless",)"
              R"("time":"2026-11-21T18:02:00Z","timeText":"2026-11-21 19:02:00 +0100","type":"warning","unit":2})"
              "\n");
}

TEST_F(Show, WritesValidJsonWhateverTheTexts) {
    const std::string hostile = std::string("\0\x01\"\\\n\x7f\xff\xc3(\xed\xa0\x80", 12) + "\u6f22\u2028</script>";
    store("lgbService",
          std::vector<lgb::DatabaseRecord>{
              {{0, 1, hostile}, freeText(hostile)}, {{0, 0, ""}, document("E", 14, hostile)}, {{0, 0, ""}, hostile}});
    const Json::Value list = parsed(output("show service --raw --format json"));
    ASSERT_EQ(list.size(), 3U);
    const std::string valid =
        std::string("\0\x01\"\\\n\x7f", 6) + "\uFFFD\uFFFD(\uFFFD\uFFFD\uFFFD\u6f22\u2028</script>";
    EXPECT_EQ(list[0]["document"].asString(), valid);
    EXPECT_EQ(list[1]["parameters"].asString(), valid);
    EXPECT_EQ(list[2]["description"].asString(), valid);
    EXPECT_EQ(list[2]["timeText"].asString(), valid);
    EXPECT_EQ(list[2]["time"].asString(), "1970-01-01T00:00:00.000000001Z");
}

TEST_F(Show, WritesAnEmptyJsonArrayWhenNothingIsThere) {
    storeEvening();
    EXPECT_EQ(output("show customer --format json --unit 7"), "[]\n");
    EXPECT_EQ(output("show customer --format jsonl --unit 7"), "");
    EXPECT_EQ(output("show customer --format csv --unit 7"),
              "number,time,standing,type,code,unit,device,generation,description,parameters\n");
}

TEST_F(Show, WritesCsvThatComesBackAsItWas) {
    const std::string text = "one, \"two\"\r\nthree \u6f22";
    store("lgbService", std::vector<std::string>{freeText(text), document("E", 14, R"({"bus":1,"module":3})")});
    support::write(folder / "read.py",
                   "import csv, sys\n"
                   "rows = list(csv.reader(open(0, encoding='utf-8', newline='')))\n"
                   "print(ascii(rows[1:]))\n");
    const Outcome outcome =
        support::run(command("show service --format csv") + " | python3 " + (folder / "read.py").string());
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output,
              "[['2', '2026-11-21T18:01:00Z', 'shown', 'error', 'E14', '', '', 'Heron', "
              "'Setting attenuation failed for amplifier 3 on bus 1!', '{\"bus\":1,\"module\":3}'], "
              "['1', '2026-11-21T18:00:00Z', 'shown', 'info', 'I0', '', '', 'Heron', "
              "'one, \"two\"\\r\\nthree \\u6f22', '']]\n");
}

TEST_F(Show, AlignsWhatIsWide) {
    store("lgbService", std::vector<lgb::DatabaseRecord>{{{0, 0, "\u6f22\u5b57"}, freeText("wide")},
                                                         {{0, 0, "e\u0301te\u0301"}, freeText("combining")},
                                                         {{0, 0, "\xff\x1b"}, freeText("escaped")}});
    EXPECT_EQ(output("show service"),
              "No.  Time      Type  Description\n"
              "  3  \\xff\\x1b  Info  escaped\n"
              "  2  e\u0301te\u0301       Info  combining\n"
              "  1  \u6f22\u5b57      Info  wide\n");
}

TEST_F(Show, ColoursTypesWhenToldTo) {
    storeEvening();
    const std::string coloured =
        "No.  Time                       Type     Description\n"
        "  3  2026-11-21 19:02:00 +0100  \x1b[33mWarning\x1b[0m  Device 4, Unit 2: Too low driver current for "
        "amplifier 3 on bus 1 reduced RF Power!\n"
        "  2  2026-11-21 19:01:00 +0100  \x1b[32mInfo   \x1b[0m  System restarted.\n"
        "  1  2026-11-21 19:00:00 +0100  \x1b[1m\x1b[31mError  \x1b[0m  Setting attenuation failed for amplifier 3 on "
        "bus 1!\n";
    EXPECT_EQ(output("show customer --color always", "NO_COLOR=1"), coloured);
    EXPECT_THAT(output("show customer"), testing::Not(HasSubstr("\x1b")));
}

TEST_F(Show, ColoursOnATerminalUnlessAskedNotTo) {
    storeEvening();
    const std::string arguments = "show customer --no-pager --type info";
    const std::string header = "No.  Time                       Type  Description\n";
    const std::string plain = header + "  2  2026-11-21 19:01:00 +0100  Info  System restarted.\n";
    EXPECT_EQ(onTerminal(arguments, "NO_COLOR="),
              header + "  2  2026-11-21 19:01:00 +0100  \x1b[32mInfo\x1b[0m  System restarted.\n");
    EXPECT_EQ(onTerminal(arguments, "NO_COLOR=1"), plain);
    EXPECT_EQ(onTerminal(arguments + " --color never", "NO_COLOR="), plain);
}

TEST_F(Show, WrapsDescriptionsOnATerminal) {
    storeEvening();
    EXPECT_EQ(onTerminal("show customer --no-pager --code W63", "NO_COLOR=1"),
              "No.  Time                       Type     Description\n"
              "  3  2026-11-21 19:02:00 +0100  Warning  Device 4, Unit 2: Too low driver\n"
              "                                         current for amplifier 3 on bus 1\n"
              "                                         reduced RF Power!\n");
}

TEST_F(Show, GoesThroughThePagerOnATerminal) {
    storeEvening();
    const std::string expected =
        "No.  Time                       Type  Description\n"
        "  2  2026-11-21 19:01:00 +0100  Info  System restarted.\n";
    EXPECT_EQ(onTerminal("show customer --type info", "NO_COLOR=1 PAGER=\"sed 's/^/| /'\""),
              "| No.  Time                       Type  Description\n"
              "| " +
                  expected.substr(expected.find('\n') + 1));
    EXPECT_EQ(onTerminal("show customer --type info", "NO_COLOR=1 PAGER="), expected);
    EXPECT_EQ(onTerminal("show customer --type info --no-pager", "NO_COLOR=1 PAGER=false"), expected);
}

TEST_F(Show, ShowsAllWithoutAPagerThatCanNotBeStarted) {
    store("lgbCustomer", std::vector<std::string>{document("I", 20, "")});
    EXPECT_THAT(onTerminal("show customer", "NO_COLOR=1 PAGER=nonexistent"), HasSubstr("System restarted."));
}

TEST_F(Show, BearsAPagerThatIsLeftEarly) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>(3000, {minute(0), document("I", 20, "")}));
    EXPECT_EQ(onTerminal("show customer --all", "NO_COLOR=1 PAGER='head -n 1'"),
              " No.  Time                       Type  Description\n");
}

TEST_F(Show, TellsWhatItLeavesOutBehindThePage) {
    storeFlawed();
    EXPECT_EQ(onTerminal("show customer --unit 2", "NO_COLOR=1 PAGER='sleep 0.2; cat'"),
              headingsAlone + std::string("tqzel-logbook: not shown: 1 entry (wordless); --raw shows them\n"));
}

TEST_F(Show, FollowsWhatOthersAdd) {
    storeEvening();
    std::string expected =
        "No.  Time                       Type     Description\n"
        "  2  2026-11-21 19:01:00 +0100  Info     System restarted.\n";
    const Follower follower(command("show customer --follow --type info"));
    EXPECT_EQ(follower.printed(expected.size()), expected);

    store("lgbCustomer", std::vector<std::string>{document("E", 79, ""), document("I", 229, "")});
    expected += "  5  2026-11-21 19:01:00 +0100  Info     RF was turned on.\n";
    EXPECT_EQ(follower.printed(expected.size()), expected);
}

TEST_F(Show, FollowsWhatIsAddedAfterALongQuiet) {
    storeEvening();
    for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
        std::filesystem::last_write_time(file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    }
    const Follower follower(command("show customer --follow --count 1 --format jsonl"));
    const std::string shown = follower.printed(1);
    EXPECT_THAT(shown, HasSubstr(R"("number":3)"));
    std::this_thread::sleep_for(std::chrono::seconds(1));  // lets it look a few times in vain
    store("lgbCustomer", std::vector<std::string>{document("I", 229, "")});
    EXPECT_THAT(follower.printed(shown.size() + 1).substr(shown.size()), HasSubstr(R"("number":4)"));
}

TEST_F(Show, TellsWhatItLeavesOutWhileItFollows) {
    storeUnshown();
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{minute(5), document("I", 20, "")}});
    const std::string headings = "No.  Time                       Type     Description\n";
    std::string expected = headings + "  6  2026-11-21 19:05:00 +0100  Info     System restarted.\n";
    const Follower follower(command("show customer --follow --count 1"));  // as without --follow, only of its page
    EXPECT_EQ(follower.printed(expected.size()), expected);

    store("lgbCustomer", std::vector<std::string>{freeText("x"), document("I", 229, "")});
    expected +=
        "  8  2026-11-21 19:01:00 +0100  Info     RF was turned on.\n"
        "tqzel-logbook: not shown: 1 entry (service only); --raw shows them\n";
    EXPECT_EQ(follower.printed(expected.size()), expected);
}

TEST_F(Show, FollowsInJsonLinesButNotInJson) {
    storeEvening();
    const Follower follower(command("show customer --follow --count 1 --format jsonl"));
    EXPECT_THAT(follower.printed(1), HasSubstr(R"("number":3)"));
    EXPECT_EQ(wrongUse("show customer --follow --format json"),
              "tqzel-logbook: --follow: what goes on has no end, as json needs one; jsonl does not\n");
}

TEST_F(Show, StopsFollowingWhenItsOutputIsLost) {
    storeEvening();
    EXPECT_EQ(error(support::run(command("show customer --follow") + " >/dev/full"), 1),
              "tqzel-logbook: can't write to standard output\n");
}

TEST_F(Show, ChangesNoFile) {
    storeFlawed();
    const auto before = files();
    for (const char* arguments : {"show customer --all --raw", "stats customer", "export customer", "check customer"}) {
        tool(arguments);
        EXPECT_TRUE(files() == before) << arguments;
    }
}

TEST_F(Show, ReadsALoneCopyWhereNothingCanBeWritten) {
    storeEvening();
    const support::TemporaryFolder elsewhere;
    std::filesystem::copy_file(customerFile(), elsewhere / "lgbCustomer.db");
    std::filesystem::permissions(elsewhere.path(), std::filesystem::perms(0555));
    EXPECT_EQ(output("show customer --type info --folder " + elsewhere.path().string()),
              "No.  Time                       Type  Description\n"
              "  2  2026-11-21 19:01:00 +0100  Info  System restarted.\n");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere.path()), {}), 1);
    std::filesystem::permissions(elsewhere.path(), std::filesystem::perms(0755));
}

}  // namespace

#include "ToolFixture.h"

#include <standalone/LogbookReader.h>

namespace {

using support::Outcome;

class Exchange : public ToolFixture {
protected:
    /// Number, time and texts of all records of a file.
    static std::vector<std::string> records(const std::filesystem::path& file) {
        std::vector<std::string> texts;
        for (const auto& record : standalone::LogbookReader(file).after(0, 10000)) {
            const auto& time = record.content.timestamp;
            texts.push_back(fmt::format("{} {} {} ", record.number, time.seconds, time.nanoseconds) + time.text + '|' +
                            record.content.json);
        }
        return texts;
    }

    std::string imported(const std::string& lines) const {
        support::write(elsewhere / "lines", lines);
        return output("import customer " + (elsewhere / "lines").string());
    }

    /// Why lines are refused.
    std::string refusal(const std::string& lines) const {
        support::write(elsewhere / "lines", lines);
        return failure("import customer " + (elsewhere / "lines").string());
    }

    const std::string line = R"({"entry":"{}","nanoseconds":7,"seconds":60,"time":"noon"})"
                             "\n";
    support::TemporaryFolder elsewhere;
};

TEST_F(Exchange, WritesALineForEachEntryOldestFirst) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{{60, 7, "noon"}, "{}"}, {{-1, 0, "\xff"}, "\x01\xfe"}});
    const std::string lines = line + R"({"entryHex":"01fe","nanoseconds":0,"seconds":-1,"timeHex":"ff"})" + '\n';
    EXPECT_EQ(output("export customer"), lines);
    EXPECT_EQ(output("export customer --output " + (elsewhere / "lines").string()), "");
    EXPECT_EQ(support::contentOf(elsewhere / "lines"), lines);
}

TEST_F(Exchange, LosesNothing) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        bytes += static_cast<char>(byte);
    }
    store("lgbCustomer",
          std::vector<lgb::DatabaseRecord>{{{INT64_MIN, 0, ""}, ""},
                                           {{INT64_MAX, 999999999, bytes}, bytes},
                                           {{0, 1, "\u6f22 \"\\ \u2028 \U0001f600"}, std::string("\0", 1)},
                                           {minute(1), "{\"type\":"},
                                           {minute(0), document("E", 14, R"({"bus":1,"module":3})")}});
    const std::string other = elsewhere / "other";
    EXPECT_EQ(support::run(command("export customer") + " | " + command("import customer - --folder " + other)).output,
              "5 entries imported.\n");
    EXPECT_EQ(records(other + "/lgbCustomer.db"), records(customerFile()));
    EXPECT_EQ(output("export customer --folder " + other), output("export customer"));
}

TEST_F(Exchange, AddsBehindWhatIsThere) {
    storeEvening();
    EXPECT_EQ(imported(line), "1 entry imported.\n");
    EXPECT_EQ(records(customerFile()).back(), "4 60 7 noon|{}");
    EXPECT_EQ(imported(""), "0 entries imported.\n");
    EXPECT_EQ(records(customerFile()).size(), 4U);
}

TEST_F(Exchange, SkipsAByteOrderMark) {
    EXPECT_EQ(imported("\xef\xbb\xbf" + std::string(line)), "1 entry imported.\n");
    EXPECT_EQ(records(customerFile()).back(), "1 60 7 noon|{}");
}

TEST_F(Exchange, KeepsTheNewestOfWhatIsTooMuch) {
    std::string lines;
    for (int number = 1; number <= 600; ++number) {
        lines += fmt::format("{{\"entry\":\"{}\",\"nanoseconds\":0,\"seconds\":0,\"time\":\"\"}}\n", number);
    }
    EXPECT_EQ(imported(lines), "600 entries imported, of which the newest 500 are kept.\n");
    EXPECT_EQ(imported(line), "1 entry imported; the oldest 1 entry of before made room.\n");
    EXPECT_EQ(imported(lines),
              "600 entries imported, of which the newest 500 are kept; the oldest 500 entries of before "
              "made room.\n");
    const auto kept = records(customerFile());
    ASSERT_EQ(kept.size(), 500U);
    EXPECT_EQ(kept.front(), "502 0 0 |101");
    EXPECT_EQ(kept.back(), "1001 0 0 |600");
}

TEST_F(Exchange, ImportsNothingWhereTheNumbersWouldEnd) {
    storeEvening();
    const std::string lines = folder / "lines";
    output("export customer --output " + lines);
    change("INSERT INTO lost VALUES (4, " + std::to_string((std::int64_t{1} << 62) - 3) + ", 0)");  // two are left
    EXPECT_EQ(failure("import customer " + lines),
              "tqzel-logbook: " + customerFile().string() + ": all numbers are given out\n");
    EXPECT_EQ(output("export customer"), support::contentOf(lines));
}

TEST_F(Exchange, RefusesABadLineByItsNumberAndImportsNothing) {
    storeEvening();
    const auto before = files();
    const auto reason = [&](const std::string& bad) { return refusal(line + bad + '\n' + line); };
    const auto expected = [&](const std::string& text) {
        return "tqzel-logbook: " + (elsewhere / "lines").string() + ": line 2: " + text + "; nothing was imported\n";
    };
    EXPECT_EQ(reason("{"), expected("not JSON: Line 1, Column 2: Missing '}' or object member name"));
    EXPECT_EQ(reason(""), expected("is empty"));
    EXPECT_EQ(reason("[]"), expected("is no JSON object"));
    EXPECT_EQ(reason(R"({"nanoseconds":0,"time":"","entry":""})"),
              expected("\"seconds\" is no whole number from -9223372036854775808 to 9223372036854775807"));
    EXPECT_EQ(reason(R"({"seconds":9223372036854775808,"nanoseconds":0,"time":"","entry":""})"),
              expected("\"seconds\" is no whole number from -9223372036854775808 to 9223372036854775807"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":1000000000,"time":"","entry":""})"),
              expected("\"nanoseconds\" is no whole number from 0 to 999999999"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0.5,"time":"","entry":""})"),
              expected("\"nanoseconds\" is no whole number from 0 to 999999999"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0,"time":1,"entry":""})"),
              expected("either \"time\" or \"timeHex\" must be a text"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0,"time":"","entry":"","entryHex":""})"),
              expected("either \"entry\" or \"entryHex\" must be a text"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0,"time":"","entryHex":"0"})"),
              expected("\"entryHex\" is not an even number of hexadecimal digits"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0,"time":"","entryHex":"zz"})"),
              expected("\"entryHex\" is not an even number of hexadecimal digits"));
    const std::string whole = R"({"seconds":0,"nanoseconds":0,"time":"","entry":""})";
    EXPECT_EQ(reason(whole + '\0' + "garbage"), expected("not JSON: byte 51 is zero"));
    EXPECT_EQ(reason(R"({"seconds":0,"nanoseconds":0,"time":")" + std::string(1, '\0') + R"(","entry":""})"),
              expected("not JSON: byte 38 is zero"));
    EXPECT_EQ(reason(std::string(100000, '[')), expected("not JSON: Exceeded stackLimit in readValue()."));
    EXPECT_TRUE(files() == before);
}

TEST_F(Exchange, NamesAFileThatCanNotBeReadOrWritten) {
    storeEvening();
    EXPECT_EQ(failure("import customer /nowhere/lines"),
              "tqzel-logbook: /nowhere/lines: can't be read: No such file or directory\n");
    const std::string inner = elsewhere / "inner";
    std::filesystem::create_directory(inner);
    EXPECT_EQ(failure("import customer " + inner),
              "tqzel-logbook: " + inner + ": is a folder, not a file of entries\n");
    EXPECT_EQ(failure("export customer --output /nowhere/lines"),
              "tqzel-logbook: /nowhere/lines: can't be written: No such file or directory\n");
    EXPECT_EQ(failure("export customer --output /dev/full"),
              "tqzel-logbook: /dev/full: can't be written: No space left on device\n");
}

TEST_F(Exchange, ImportsNothingWhenItCanNotReadOn) {
    const std::string reason = ": can't be read behind line 0; nothing was imported\n";
    EXPECT_EQ(failure("import customer - </"), "tqzel-logbook: standard input" + reason);
    EXPECT_EQ(failure("import customer /proc/self/mem"), "tqzel-logbook: /proc/self/mem" + reason);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(Exchange, TakesAnEmptyFileForALogbookNotYetMade) {
    support::write(customerFile(), "");
    const auto file = elsewhere / "lines";
    support::write(file, line);
    const support::Outcome outcome = tool("import customer " + file.string());
    EXPECT_EQ(outcome.output, "1 entry imported.\n");
    EXPECT_THAT(outcome.errors, testing::HasSubstr(": damaged: it is empty; healed with 0 records"));
}

TEST_F(Exchange, WritesBehindWhatAShellHasCollected) {
    storeEvening();
    const std::string file = elsewhere / "all";
    support::write(file, line);
    EXPECT_EQ(support::run(command("export customer --output /dev/stdout") + " >>" + file).exitCode, 0);
    EXPECT_EQ(support::contentOf(file), line + output("export customer"));
}

TEST_F(Exchange, TellsOfDamagedEntriesItLeavesOut) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>{{{1, 0, ""}, "spoilt"}, {{60, 7, "noon"}, "{}"}});
    change("UPDATE record SET json = 'changed' WHERE number = 1");
    const Outcome outcome = tool("export customer");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, line);
    EXPECT_EQ(outcome.errors, "tqzel-logbook: " + customerFile().string() +
                                  ": 1 damaged entry was left out; all others were exported\n");
}

TEST_F(Exchange, RefusesALineThatIsLongerThanAnyEntry) {
    constexpr std::size_t eightMebibytes = std::size_t{8} << 20;
    EXPECT_THAT(refusal(line + std::string(eightMebibytes, ' ') + '\n'), HasSubstr(": line 2: is no JSON object;"));
    EXPECT_EQ(refusal(line + std::string(eightMebibytes + 1, ' ') + '\n'),
              "tqzel-logbook: " + (elsewhere / "lines").string() +
                  ": line 2: it is longer than 8 MiB, as no entry is; nothing was imported\n");
}

TEST_F(Exchange, SpoilsNeitherTheLogbookNorAnOlderExport) {
    storeEvening();
    const std::string file = customerFile();
    const auto before = files();
    EXPECT_EQ(wrongUse("export customer --output " + file),
              "tqzel-logbook: --output: " + file + " is the customer logbook itself\n");
    EXPECT_EQ(wrongUse("export customer --output " + file + "-wal"),
              "tqzel-logbook: --output: " + file + "-wal is the customer logbook itself\n");
    EXPECT_EQ(wrongUse("export customer --output " + file + "-journal"),
              "tqzel-logbook: --output: " + file + "-journal is the customer logbook itself\n");
    const std::string other = folder / "lgbService.db";  // not made yet
    EXPECT_EQ(wrongUse("export customer --output " + other),
              "tqzel-logbook: --output: " + other + " is the service logbook itself\n");
    EXPECT_EQ(
        error(support::run("cd " + folder.path().string() + "; " + command("export customer --output lgbService.db")),
              2),
        "tqzel-logbook: --output: lgbService.db is the service logbook itself\n");
    EXPECT_TRUE(files() == before);
}

TEST_F(Exchange, SpoilsNoLogbookOfAnotherFolder) {
    storeEvening();
    standalone::SqliteDatabaseFactory(elsewhere.path()).addAll("lgbCustomer", 0, {});
    const std::string file = elsewhere / "lgbCustomer.db";
    const std::string renamed = elsewhere / "renamed";
    std::filesystem::copy_file(file, renamed);
    const auto before = support::filesOf(elsewhere.path());
    for (const std::string& output :
         {file, file + "-wal", file + "-lock", file + "-healed", renamed,
          (elsewhere / "lgbCustomer.damaged-1.db").string(), (folder / "lgbService.damaged-3.db-wal").string()}) {
        EXPECT_EQ(wrongUse("export customer --output " + output),
                  "tqzel-logbook: --output: " + output + " is a logbook, or one of its files\n");
    }
    EXPECT_TRUE(support::filesOf(elsewhere.path()) == before);
}

TEST_F(Exchange, LeavesAnOlderExportWhenThereIsNothingToExport) {
    storeEvening();
    support::write(elsewhere / "lines", line);
    EXPECT_EQ(failure("export service --output " + (elsewhere / "lines").string()),
              "tqzel-logbook: " + (folder / "lgbService.db").string() + ": there is no such logbook\n");
    EXPECT_EQ(support::contentOf(elsewhere / "lines"), line);
}

TEST_F(Exchange, LeavesAnOlderExportWhenThereIsNoRoomForANewOne) {
    store("lgbCustomer", std::vector<lgb::DatabaseRecord>(1000, {minute(0), std::string(2000, 'x')}));
    const std::string file = elsewhere / "lines";
    support::write(file, line);
    const std::string onSmallDisk = "ulimit -f 1500; trap '' XFSZ; ";  // 750 KB or twice that, by the shell
    EXPECT_EQ(error(support::run(onSmallDisk + command("export customer --output " + file)), 1),
              "tqzel-logbook: " + file + ": can't be written: File too large\n");
    EXPECT_EQ(support::contentOf(file), line);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(elsewhere.path()), {}), 1);
}

}  // namespace

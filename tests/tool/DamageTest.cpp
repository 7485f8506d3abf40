// Damaged files, lost numbers and how many entries are kept, as a service engineer meets them.

#include "Follower.h"
#include "ToolFixture.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class DamagedFile : public ToolFixture {
protected:
    /// Entries of the units 1, 2 and so on.
    void addUnits(int first, int last) const {
        for (int unit = first; unit <= last; ++unit) {
            store("lgbCustomer", std::vector<std::string>{document("I", 20, "", unit)});
        }
    }

    /// The next command that writes heals it.
    void spoilStored(int unit) const { spoil("\"unit\":" + std::to_string(unit)); }

    static std::string line(int number, const std::string& padding = "") {
        return fmt::format("{:3}  2026-11-21 19:00:00 +0100  Info{}  Unit {}: System restarted.\n", number, padding,
                           number);
    }

    const std::string header = "No.  Time                       Type  Description\n";
};

TEST_F(DamagedFile, IsHealedByWhoeverWritesAndTold) {
    addUnits(1, 5);
    spoilStored(3);
    const support::Outcome outcome = tool("add customer info 20");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.errors,
                EndsWith("lgbCustomer.db: damaged: record 3; healed with 4 records, the damaged files are "
                         "kept as " +
                         (folder / "lgbCustomer.damaged-1.db").string() + "; lost: 3\n"));
}

TEST_F(DamagedFile, ShowsWhereNumbersWereLost) {
    addUnits(1, 8);
    for (const int unit : {3, 4, 6}) {
        spoilStored(unit);
    }
    EXPECT_EQ(tool("resize customer 0").exitCode, 0);
    const std::string shown = output("show customer");
    const auto lost = [](int number, const std::string& entries) {
        return testing::ContainsRegex("  " + std::to_string(number) + "  20.* [?]     .lost: " + entries + "[)]\n");
    };
    EXPECT_THAT(shown, testing::AllOf(lost(6, "entry 6"), lost(4, "entries 3 to 4")));
    EXPECT_THAT(output("show customer --reverse"), testing::AllOf(lost(6, "entry 6"), lost(4, "entries 3 to 4")));
    EXPECT_EQ(std::count(shown.begin(), shown.end(), '\n'), 1 + 5 + 2);
    const std::string page = output("show customer --count 2 --offset 1");
    EXPECT_EQ(std::count(page.begin(), page.end(), '\n'), 1 + 2 + 1) << page;
    EXPECT_THAT(output("show customer --format jsonl"), HasSubstr(R"({"firstNumber":3,"number":4,"standing":"lost",)"));
    EXPECT_THAT(output("show customer --format csv"), HasSubstr(",lost,,,,,,(lost: entries 3 to 4),\n"));
    EXPECT_THAT(output("show customer --after 4"), testing::Not(HasSubstr("entries 3 to 4")));
}

TEST_F(DamagedFile, HasItsWholeEntriesSalvaged) {
    addUnits(1, 5);
    spoilStored(3);
    const support::Outcome outcome = tool("salvage " + customerFile().string());
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "tqzel-logbook: 4 entries found whole; not found: entry 3\n");
    const support::TemporaryFolder elsewhere;
    support::write(elsewhere / "found", outcome.output);
    EXPECT_EQ(output("import service " + (elsewhere / "found").string()), "4 entries imported.\n");
}

TEST_F(DamagedFile, HasRemovedEntriesSalvagedOnRequest) {
    addUnits(1, 5);
    EXPECT_EQ(output("clear customer --yes"), "");
    const std::string file = customerFile().string();
    EXPECT_EQ(tool("salvage " + file).errors,
              "tqzel-logbook: 0 entries found whole\n"
              "tqzel-logbook: 5 entries that had been removed before are there; --all writes them, too\n");
    const support::Outcome all = tool("salvage --all " + file);
    EXPECT_EQ(std::count(all.output.begin(), all.output.end(), '\n'), 5);
    EXPECT_THAT(all.errors, EndsWith("tqzel-logbook: 5 entries that had been removed before were written, too\n"));
}

TEST_F(DamagedFile, OfSomethingElseHasNothingToSalvage) {
    support::write(folder / "letter", "Dear diary");
    const std::string letter = (folder / "letter").string();
    EXPECT_EQ(failure("salvage " + letter), "tqzel-logbook: " + letter + ": nothing in it is of a logbook\n");
    EXPECT_EQ(failure("salvage " + letter + "s"), "tqzel-logbook: " + letter + "s: there is no such file\n");
    EXPECT_EQ(failure("salvage " + folder.path().string()),
              "tqzel-logbook: " + folder.path().string() + ": is no regular file\n");
}

using Resize = DamagedFile;

TEST_F(Resize, AsksBeforeItRemovesEntries) {
    addUnits(1, 5);
    const support::Outcome asked = support::run("echo n | " + command("resize customer 3"));
    EXPECT_EQ(asked.output,
              "Remove the oldest 2 entries of the customer logbook, and keep no more than 3? [y/N] "
              "Nothing changed.\n");
    EXPECT_EQ(output("show customer --format csv --all | wc -l"), "6\n");
    const support::Outcome agreed = support::run("echo y | " + command("resize customer 3"));
    EXPECT_THAT(agreed.output, EndsWith("The customer logbook keeps the newest 3 entries; the oldest 2 entries were "
                                        "removed.\n"));
    EXPECT_EQ(output("show customer"), header + line(5) + line(4) + line(3));
    EXPECT_EQ(wrongUse("resize customer 1 </dev/null 2>&1 >/dev/null | cat >&2; exit 2"),
              "tqzel-logbook: an answer, or --yes, is required\n");
}

TEST_F(Resize, AsksNothingWhenNothingGoes) {
    addUnits(1, 5);
    EXPECT_EQ(output("resize customer 5000"), "The customer logbook keeps the newest 5000 entries.\n");
    EXPECT_EQ(output("resize customer 0"), "The customer logbook keeps all entries.\n");
    EXPECT_EQ(output("resize customer 4 --yes"),
              "The customer logbook keeps the newest 4 entries; the oldest 1 entry was removed.\n");
}

TEST_F(Resize, HoldsForWhatIsAddedAndImported) {
    addUnits(1, 5);
    EXPECT_EQ(tool("resize customer 3 --yes").exitCode, 0);
    add("customer info 20 --unit 6");
    EXPECT_EQ(output("show customer --format csv --all | wc -l"), "4\n");
    EXPECT_EQ(output("export customer --output " + (folder / "lines").string()), "");
    EXPECT_EQ(output("import customer " + (folder / "lines").string()),
              "3 entries imported; the oldest 3 entries of before made room.\n");
}

TEST_F(Resize, MakesNoLogbook) {
    EXPECT_EQ(failure("resize customer 3"),
              "tqzel-logbook: " + customerFile().string() + ": there is no such logbook\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(Resize, KeepsALargerLogbookFromBeingCutByANote) {
    standalone::SqliteDatabaseFactory(folder.path()).create("lgbCustomer", 0, 10000);
    std::vector<std::string> many(2000, document("I", 20, ""));
    standalone::SqliteDatabaseFactory(folder.path(), standalone::Capacity::OfNewAlone).addAll("lgbCustomer", 0, [&] {
        std::vector<lgb::DatabaseRecord> records;
        for (const std::string& each : many) {
            records.push_back({minute(1), each});
        }
        return records;
    }());
    add("customer info 20");
    EXPECT_EQ(output("show customer --format csv --all | wc -l"), "2002\n");
}

using Follow = DamagedFile;

TEST_F(Follow, GoesOnInALogbookThatHasTakenThePlaceOfADeletedOne) {
    addUnits(1, 2);
    const Follower follower(command("show customer --follow"));
    const std::string padding = "   ";  // as wide as any type
    std::string expected =
        "No.  Time                       Type     Description\n" + line(1, padding) + line(2, padding);
    EXPECT_EQ(follower.printed(expected.size()), expected);
    for (const auto& file : std::filesystem::directory_iterator(folder.path())) {
        std::filesystem::remove(file);
    }
    addUnits(1, 1);
    expected += "tqzel-logbook: another logbook has taken its place, from its first entry on:\n" + line(1, padding);
    EXPECT_EQ(follower.printed(expected.size()), expected);
}

TEST_F(Follow, WaitsWhileItsLogbookCanNotBeRead) {
    addUnits(1, 2);
    const Follower follower(command("show customer --follow"));
    const std::string padding = "   ";
    std::string expected =
        "No.  Time                       Type     Description\n" + line(1, padding) + line(2, padding);
    EXPECT_EQ(follower.printed(expected.size()), expected);
    support::write(folder / "letter", std::string(5000, 'x'));
    std::filesystem::rename(folder / "letter", customerFile());
    std::filesystem::remove(customerFile().string() + "-wal");
    expected +=
        "tqzel-logbook: " + customerFile().string() + ": file is not a database; waiting until it can be read\n";
    EXPECT_EQ(follower.printed(expected.size()), expected);
    std::filesystem::remove(customerFile());
    addUnits(1, 1);
    expected += "tqzel-logbook: another logbook has taken its place, from its first entry on:\n" + line(1, padding);
    EXPECT_EQ(follower.printed(expected.size()), expected);
}

}  // namespace

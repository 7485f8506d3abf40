#include "ToolFixture.h"

#include <standalone/LogbookReader.h>

namespace {

using support::Outcome;

class Check : public ToolFixture {
protected:
    /// What is printed about files that are not as they should be.
    std::string complaint(const std::string& arguments) const {
        const Outcome outcome = tool("check " + arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.errors, "tqzel-logbook: not everything is as it should be\n");
        return outcome.output;
    }

    /// What is told of a file that was read.
    static std::string about(const std::filesystem::path& file, const std::string& kept = "all entries") {
        return "  - id " + standalone::LogbookReader(file).description().id + ", keeps " + kept + '\n';
    }

    const std::string customer = customerFile().string();
    const std::string service = (folder / "lgbService.db").string();
};

TEST_F(Check, FindsBothLogbooksSound) {
    storeEvening();
    store("lgbService", std::vector<std::string>{freeText("Fan 2 replaced")});
    EXPECT_EQ(output("check"), customer + ": sound, 3 of 3 entries readable\n" + about(customer) + service +
                                   ": sound, 1 of 1 entry readable\n" + about(service));
}

TEST_F(Check, LooksAtOneLogbookAlone) {
    storeEvening();
    const std::string sound = customer + ": sound, 3 of 3 entries readable\n" + about(customer);
    EXPECT_EQ(output("check customer"), sound);
    EXPECT_EQ(complaint(""), sound + service + ": there is no such logbook\n");
}

TEST_F(Check, NamesEachEntryThatIsNotShown) {
    store("lgbCustomer", std::vector<std::string>{document("E", 14, R"({"bus":1,"module":3})"), freeText("x"),
                                                  document("W", 63, R"({"bus":"x"})"), "{\"type\":\"\x1b[31m\"}",
                                                  document("I", 20, ""), "{\x1b"});
    change("UPDATE record SET seconds = 7 WHERE number = 5");
    EXPECT_EQ(complaint("customer"),
              customer +
                  ": sound, 1 of 6 entries readable\n"
                  "  - entry 2 is service only\n"
                  "  - entry 3, W63, is wordless: a parameter can't be read: Value is not convertible to UInt64.\n"
                  "  - entry 4 is unreadable: it holds a word that is not known\n"
                  "  - entry 5 is damaged\n"
                  "  - entry 6 is unreadable: not JSON: Line 1, Column 2: Missing '}' or object member name\n" +
                  about(customer));
}

TEST_F(Check, DoesNotBelieveATextForWhatStandsBeforeAZeroByte) {
    const std::string zero(1, '\0');
    store("lgbCustomer", std::vector<std::string>{document("I", 20, "") + zero, document("I", 20, "") + zero + "{",
                                                  R"({"type":"I","code":20,"description":")" + zero + R"("})",
                                                  document("E", 14, R"({"bus":1,"module":3})" + zero + "garbage")});
    EXPECT_EQ(complaint("customer"),
              customer +
                  ": sound, 0 of 4 entries readable\n"
                  "  - entry 1 is unreadable: not JSON: byte 107 is zero\n"
                  "  - entry 2 is unreadable: not JSON: byte 107 is zero\n"
                  "  - entry 3 is unreadable: not JSON: byte 38 is zero\n"
                  "  - entry 4, E14, is wordless: a parameter can't be read: not JSON: byte 21 is zero\n" +
                  about(customer));
}

TEST_F(Check, GoesThroughThePagerOnATerminalAndTellsTheFaultBehindIt) {
    store("lgbCustomer", std::vector<std::string>{"{"});
    EXPECT_EQ(onTerminal("check customer", "PAGER=\"sed 's/^/| /'\"", 1),
              "| " + customer +
                  ": sound, 0 of 1 entry readable\n"
                  "|   - entry 1 is unreadable: not JSON: Line 1, Column 2: Missing '}' or object\n"
                  "|     member name\n"
                  "| " +
                  about(customer) + "tqzel-logbook: not everything is as it should be\n");
}

TEST_F(Check, KeepsTheNameOfAFolderFromSteeringTheTerminal) {
    EXPECT_EQ(complaint("customer --folder \"$(printf 'red\\033[31m')\""),
              "red\\x1b[31m/lgbCustomer.db: there is no such logbook\n");
}

TEST_F(Check, NamesWhatIsDamagedInTheStructure) {
    storeEvening();
    change("PRAGMA writable_schema = 1; UPDATE sqlite_master SET rootpage = 2 WHERE name = 'lost'");
    const std::string printed = complaint("customer");
    EXPECT_THAT(printed, testing::StartsWith(customer + ": damaged\n  - "));
    EXPECT_THAT(printed, testing::ContainsRegex("\n  - [^\n]*2nd reference to page 2\n  - [^\n]*never used"));
    EXPECT_THAT(printed, testing::Not(testing::HasSubstr("\\x0a")));
}

TEST_F(Check, NamesAForeignFile) {
    support::write(customerFile(), "Dear diary");
    EXPECT_EQ(complaint("customer"), customer + ": file is not a database\n");
    support::write(customerFile(), "");
    EXPECT_EQ(complaint("customer"), customer + ": damaged: it is empty\n");
}

TEST_F(Check, TellsHowManyEntriesAreKeptWhichNumbersWereLostAndWhatWasSetAside) {
    add("customer info 20");
    add("customer info 101 --unit 7");
    spoil("\"unit\":7");
    const std::string aside = (folder / "lgbCustomer.damaged-1.db").string();
    EXPECT_EQ(tool("add customer info 20").exitCode, 0);
    const std::string printed = output("check customer");
    EXPECT_THAT(printed, testing::StartsWith(customer + ": sound, 2 of 2 entries readable\n" +
                                             about(customer, "the newest 500 entries") + "  - entry 2 lost, found 20"));
    EXPECT_THAT(printed, testing::EndsWith("  - set aside when it was damaged: " + aside + '\n'));
}

}  // namespace

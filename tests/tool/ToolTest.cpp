#include "ToolFixture.h"

#include <filesystem>
#include <regex>
#include <string>

namespace {

using support::Outcome;

class Tool : public ToolFixture {
protected:
    /// What a logbook shows, its times as "TIME".
    std::string shown(const std::string& arguments) const {
        const Outcome outcome = tool("show " + arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
        static const std::regex time("\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2} [+-]\\d{4}");
        return std::regex_replace(outcome.output, time, "TIME");
    }

    const std::string header = "No.  Time                       Type     Description\n";
};

TEST_F(Tool, ShowsInWordsWhatWasAdded) {
    add("customer error 14 --bus 1 --module 3");
    EXPECT_EQ(shown("customer"),
              "No.  Time                       Type   Description\n"
              "  1  TIME  Error  Setting attenuation failed for amplifier 3 on bus 1!\n");
}

TEST_F(Tool, ShowsTheNewestFirstInColumns) {
    add("customer info 20");
    add("customer warning 63 --bus 1 --module 3 --unit 2 --device 4");
    add("customer error 79");
    EXPECT_EQ(
        shown("customer"),
        header +
            "  3  TIME  Error    Detected all fans to be defective!\n"
            "  2  TIME  Warning  Device 4, Unit 2: Too low driver current for amplifier 3 on bus 1 reduced RF Power!\n"
            "  1  TIME  Info     System restarted.\n");
}

TEST_F(Tool, ShowsAPage) {
    add("customer info 20");
    add("customer info 229");
    add("customer info 230");
    EXPECT_EQ(shown("customer --offset 1 --count 1"),
              "No.  Time                       Type  Description\n"
              "  2  TIME  Info  RF was turned on.\n");
}

TEST_F(Tool, Shows20EntriesUnlessAskedForAll) {
    for (int number = 0; number < 25; ++number) {
        add("service info --text Rebooted");
    }
    const auto rows = [](int from, int downTo) {
        std::string text;
        for (int number = from; number >= downTo; --number) {
            text += (number < 10 ? "  " : " ") + std::to_string(number) + "  TIME  Info  Rebooted\n";
        }
        return text;
    };
    const std::string expected = "No.  Time                       Type  Description\n" + rows(25, 6);
    EXPECT_EQ(shown("service"), expected);
    EXPECT_EQ(shown("service --all"), expected + rows(5, 1));
}

TEST_F(Tool, ShowsAnEmptyLogbookAsItsHeadings) {
    add("customer info 20");
    tool("clear customer --yes");
    EXPECT_EQ(shown("customer"), headingsAlone);
}

TEST_F(Tool, SaysThatItMakesAFolder) {
    const std::string mistyped = (folder / "evenign").string();
    const std::string told = "tqzel-logbook: made the folder " + mistyped + "\n";
    EXPECT_EQ(tool("add customer info 20 --folder " + mistyped).errors, told);
    EXPECT_EQ(tool("add customer info 20 --folder " + mistyped).errors, "");
    EXPECT_EQ(tool("import customer /dev/null --folder " + mistyped + "/again").errors,
              "tqzel-logbook: made the folder " + mistyped + "/again\n");
}

TEST_F(Tool, KeepsTheTwoLogbooksApart) {
    add("service info --text 'Fan 2 replaced' --unit 1");
    add("customer info 20");
    EXPECT_EQ(shown("service"),
              "No.  Time                       Type  Description\n"
              "  1  TIME  Info  Unit 1: Fan 2 replaced\n");
    EXPECT_EQ(shown("customer"),
              "No.  Time                       Type  Description\n"
              "  1  TIME  Info  System restarted.\n");
}

TEST_F(Tool, ShowsTheServiceDetailInTheServiceLogbook) {
    add("service error 15 --bus 1 --module 3 --service '(Id 82 A)'");
    EXPECT_EQ(shown("service"),
              "No.  Time                       Type   Description\n"
              "  1  TIME  Error  Self-Protection occurred for amplifier 3 on bus 1! (Id 82 A)\n");
}

TEST_F(Tool, TakesEveryParameterAsAnOption) {
    add("customer error 265 --on true");
    add("customer error 268 --watt true");
    add("customer error 271 --group 3");
    add("customer warning 78 --ok true");
    add("customer error 258 --type X");
    add("customer error 259 --version 1.2");
    add("customer error 203 --value 7");
    add("customer info 201 --path A --operating-class step5");
    add("customer info 200 --path A --output-mode VSWR");
    add("customer info 127 --interlock-mode automatic");
    add("customer error 282 --role device --nr 2");
    EXPECT_EQ(shown("customer"), header +
                                     " 11  TIME  Error    Invalid configuration for device 2!\n"
                                     " 10  TIME  Info     Interlock 1 (automatic) was opened.\n"
                                     "  9  TIME  Info     Output Mode of RF-Path \"A\" changed to High VSWR.\n"
                                     "  8  TIME  Info     Operating Class of RF-Path \"A\" changed to 5.\n"
                                     "  7  TIME  Error    Setting AMPL_ON failed for bus 7!\n"
                                     "  6  TIME  Error    Incompatible Firmware 1.2!\n"
                                     "  5  TIME  Error    Invalid Product Type X!\n"
                                     "  4  TIME  Warning  Detected defective fan 1 (with fan 0 ok)!\n"
                                     "  3  TIME  Error    Selecting of RF-Path 4 failed!\n"
                                     "  2  TIME  Error    Setting Power Unit to W failed!\n"
                                     "  1  TIME  Error    Setting Automatic Standby to on failed!\n");
}

TEST_F(Tool, TakesTheWholeRecordAsJsonWithOptionsOnTop) {
    add("customer error 14 --params '{\"bus\":1,\"module\":2}' --module 3");
    EXPECT_EQ(shown("customer"),
              "No.  Time                       Type   Description\n"
              "  1  TIME  Error  Setting attenuation failed for amplifier 3 on bus 1!\n");
}

TEST_F(Tool, RecordsAnEntryOfTheFirstGeneration) {
    add("customer info 20 --generation Kestrel --params '{\"typeProduct\":\"Wren\",\"text\":\"Fan cleaned\"}'");
    EXPECT_EQ(shown("customer"),
              "No.  Time                       Type  Description\n"
              "  1  TIME  Info  Wren Fan cleaned\n");
}

TEST_F(Tool, ShowsControlCharactersOfATextAsEscapes) {
    add("service info --text \"$(printf 'two\\nlines \\033[31mred\\177')\"");
    EXPECT_EQ(shown("service"),
              "No.  Time                       Type  Description\n"
              "  1  TIME  Info  two\\x0alines \\x1b[31mred\\x7f\n");
}

TEST_F(Tool, ClearsOneLogbookWhenTold) {
    add("customer info 20");
    add("service info 20");
    EXPECT_EQ(tool("clear customer --yes").exitCode, 0);
    EXPECT_EQ(shown("customer"), headingsAlone);
    EXPECT_NE(shown("service"), headingsAlone);
}

TEST_F(Tool, AsksBeforeItClears) {
    add("customer info 20");
    const Outcome no = support::run("echo n | " + command("clear customer"));
    EXPECT_EQ(no.exitCode, 0);
    EXPECT_EQ(no.output, "Remove all entries of the customer logbook? [y/N] Nothing removed.\n");
    EXPECT_NE(shown("customer"), headingsAlone);

    const Outcome nobody = support::run(command("clear customer") + " </dev/null");
    EXPECT_EQ(nobody.exitCode, 2);
    EXPECT_EQ(nobody.errors, "tqzel-logbook: an answer, or --yes, is required\n");
    EXPECT_NE(shown("customer"), headingsAlone);

    EXPECT_EQ(support::run("echo y | " + command("clear customer")).exitCode, 0);
    EXPECT_EQ(shown("customer"), headingsAlone);
}

TEST_F(Tool, WorksInTheFolderOfTheOption) {
    const std::string other = folder / "other";
    tool("add customer info 20 --folder " + other);
    EXPECT_TRUE(std::filesystem::exists(other + "/lgbCustomer.db"));
    EXPECT_FALSE(std::filesystem::exists(folder / "lgbCustomer.db"));
    EXPECT_NE(shown("customer --folder " + other), headingsAlone);
}

TEST_F(Tool, SaysThatALogbookDoesNotExistAndMakesNone) {
    const std::string file = folder / "lgbCustomer.db";
    EXPECT_EQ(failure("show customer"), "tqzel-logbook: " + file + ": there is no such logbook\n");
    EXPECT_EQ(failure("clear customer --yes"), "tqzel-logbook: " + file + ": there is no such logbook\n");
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(Tool, RefusesAForeignFileAndLeavesItAlone) {
    const std::string file = folder / "lgbCustomer.db";
    support::write(file, "Dear diary");
    EXPECT_EQ(failure("show customer"), "tqzel-logbook: " + file + ": file is not a database\n");
    EXPECT_EQ(failure("add customer info 20"), "tqzel-logbook: " + file + ": file is not a database\n");
    EXPECT_EQ(support::contentOf(file), "Dear diary");
}

TEST_F(Tool, WorksOnOneLogbookWhateverIsWrongWithTheOther) {
    support::write(folder / "lgbService.db", "Dear diary");
    add("customer info 20");
    EXPECT_EQ(shown("customer"),
              "No.  Time                       Type  Description\n"
              "  1  TIME  Info  System restarted.\n");
}

TEST_F(Tool, MakesNoOtherLogbookThanTheOneItWorksOn) {
    add("customer info 20");
    EXPECT_FALSE(std::filesystem::exists(folder / "lgbService.db"));
    EXPECT_EQ(failure("show service"),
              "tqzel-logbook: " + (folder / "lgbService.db").string() + ": there is no such logbook\n");
}

TEST_F(Tool, NamesAFolderThatCanNotBeMade) {
    EXPECT_EQ(failure("add customer info 20 --folder /proc/logbooks"),
              "tqzel-logbook: /proc/logbooks: can't make the folder: No such file or directory\n");
}

TEST_F(Tool, FailsWhenItsOutputIsLost) {
    add("customer info 20");
    EXPECT_EQ(error(support::run(command("show customer") + " >/dev/full"), 1),
              "tqzel-logbook: can't write to standard output\n");
}

TEST_F(Tool, TellsItsVersion) {
    EXPECT_EQ(output("--version"), TQZEL_VERSION "\n");
}

}  // namespace

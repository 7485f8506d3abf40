#include "ToolFixture.h"

#include <cstddef>
#include <filesystem>
#include <string>

namespace {

using support::Outcome;
using testing::HasSubstr;
using testing::Not;

class Report : public ToolFixture {
protected:
    std::string page(const std::string& arguments = "") const { return output("report " + arguments); }
};

TEST_F(Report, ShowsTheEntriesOfBothLogbooksInWords) {
    add("customer error 14 --bus 1 --module 3");
    add("service info --unit 2 --text 'Fan 1 replaced'");
    const std::string shown = page();
    EXPECT_THAT(shown, HasSubstr(R"(<td class="words">Setting attenuation failed for amplifier 3 on bus 1!</td>)"
                                 R"(<td class="code">E14</td><td class="unit"></td><td class="device"></td></tr>)"));
    EXPECT_THAT(shown, HasSubstr(R"(<td class="words">Unit 2: Fan 1 replaced</td>)"
                                 R"(<td class="code"></td><td class="unit">2</td><td class="device"></td></tr>)"));
    EXPECT_THAT(shown, Not(HasSubstr("There is no such logbook")));
}

TEST_F(Report, IsNotWrittenOntoATerminal) {
    add("customer info 20");
    EXPECT_EQ(onTerminal("report", "", 2),
              "tqzel-logbook: --output: is missing, expected a file; a page is not for a terminal\n");
}

TEST_F(Report, NamesALogbookThatIsMissing) {
    add("customer info 20");
    EXPECT_THAT(page(), HasSubstr("<h2>Service logbook</h2>\n"
                                  "<p class=\"quiet\">There is no such logbook in this folder.</p>\n"));
    EXPECT_FALSE(std::filesystem::exists(folder / "lgbService.db"));
}

TEST_F(Report, FailsWithoutAnyLogbookAndWritesNothing) {
    const std::string file = folder / "report.html";
    const Outcome outcome = tool("report --output '" + file + "'");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "tqzel-logbook: " + folder.path().string() + ": there is no logbook\n");
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(Report, TellsOfOneLogbookWhateverIsWrongWithTheOther) {
    add("customer info 20");
    support::write(folder / "lgbService.db", "Dear diary");
    const std::string fault = (folder / "lgbService.db").string() + ": file is not a database";
    const Outcome outcome = tool("report");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "tqzel-logbook: " + fault + "; the report tells all that could be read\n");
    EXPECT_THAT(outcome.output, HasSubstr("System restarted."));
    EXPECT_THAT(outcome.output, HasSubstr("<p class=\"fault\">" + fault + "</p>"));
}

TEST_F(Report, TakesTextsAsTexts) {
    add(R"(service info --text '<script>"&{{title}}</script>')");
    const std::string shown = page(R"(--title '<b title="x">{{version}}</b>')");
    EXPECT_THAT(shown, HasSubstr("&lt;script&gt;&quot;&amp;{{title}}&lt;/script&gt;"));
    EXPECT_THAT(shown, HasSubstr("<h1>&lt;b title=&quot;x&quot;&gt;{{version}}&lt;/b&gt;</h1>"));
    EXPECT_THAT(shown, Not(HasSubstr("<script>\"")));
    EXPECT_THAT(shown, Not(HasSubstr("<b ")));
}

TEST_F(Report, ShowsWhatIsNoTextAsItsBytes) {
    add(R"text(service info --text "$(printf 'a\nb\033c\377d')")text");
    EXPECT_THAT(page(), HasSubstr(R"(<td class="words">a\x0ab\x1bc\xffd</td>)"));
}

TEST_F(Report, LetsABrowserRunItsOwnScriptAlone) {
    add(R"(service info --text '<script>alert(1)</script>')");
    const std::string shown = page();
    const std::string begin = "<script>";
    const std::size_t at = shown.find(begin) + begin.size();
    support::write(folder / "script", shown.substr(at, shown.find("</script>", at) - at));
    const Outcome hash = support::run(
        "python3 -c 'import base64, hashlib, sys; print(end=base64.b64encode(hashlib."
        "sha256(open(sys.argv[1], \"rb\").read()).digest()).decode())' " +
        (folder / "script").string());
    EXPECT_EQ(hash.errors, "");
    EXPECT_THAT(shown, HasSubstr("; script-src 'sha256-" + hash.output + "'; "));
}

TEST_F(Report, SaysWhyAnEntryIsLeftOut) {
    store("lgbService", std::vector<std::string>{"{<i>"});
    EXPECT_THAT(page(), HasSubstr("<strong>unreadable</strong>: not JSON: Line 1, Column 2: Missing &apos;}&apos; or "
                                  "object member name</span> <code>{&lt;i&gt;</code></td>"));
}

TEST_F(Report, ShowsCodeAndParametersOfAnUnknownEntry) {
    store("lgbService", std::vector<std::string>{document("W", 999, R"({"odd":1})")});
    EXPECT_THAT(page(), HasSubstr("unknown entry! <code>{&quot;odd&quot;:1}</code></td><td class=\"code\">W999</td>"));
}

TEST_F(Report, ChartsTimesFarBeyondTheCalendar) {
    store("lgbService", std::vector<lgb::DatabaseRecord>{{{INT64_MIN, 0, "then"}, document("I", 20, "")},
                                                         {{INT64_MAX, 0, "then"}, document("I", 20, "")}});
    EXPECT_THAT(page(), HasSubstr("Errors: 0, Warnings: 0, Information: 2</title>"));
}

TEST_F(Report, ListsTheEightMostFrequentMessagesAndSaysOfHowMany) {
    for (const char* const id : {"101", "125", "126", "206", "229", "230", "239", "277"}) {
        add(std::string("customer info ") + id);
    }
    EXPECT_THAT(page(), HasSubstr("<h3>Most frequent messages</h3>"));
    add("customer info 20");
    EXPECT_THAT(page(), HasSubstr("<h3>Most frequent messages, 8 of 9</h3>"));
}

TEST_F(Report, OverwritesItsFile) {
    add("customer info 20");
    const std::string file = folder / "report.html";
    support::write(file, std::string(1000000, 'x'));
    EXPECT_EQ(page("--output '" + file + "'"), "");
    EXPECT_EQ(support::contentOf(file).substr(0, 16), "<!DOCTYPE html>\n");
    EXPECT_THAT(support::contentOf(file), testing::EndsWith("</html>\n"));
}

TEST_F(Report, FailsWhenItsFileCanNotBeWritten) {
    add("customer info 20");
    EXPECT_EQ(tool("report --output /proc/report.html").errors,
              "tqzel-logbook: /proc/report.html: can't be written: No such file or directory\n");
    EXPECT_EQ(tool("report --output /dev/full").exitCode, 1);
}

TEST_F(Report, NamesNothingOfTheNetwork) {
    add("customer info 20");
    const std::string shown = page();
    for (const char* const reference : {"http:", "https:", "src=", "@import", "url("}) {
        EXPECT_THAT(shown, Not(HasSubstr(reference)));
    }
}

}  // namespace

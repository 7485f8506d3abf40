#include "ToolFixture.h"

#include <algorithm>

namespace {

using testing::HasSubstr;

class Messages : public ToolFixture {
protected:
    static auto lines(const std::string& text) { return std::count(text.begin(), text.end(), '\n'); }
};

TEST_F(Messages, AreListedWithWhatTheyRead) {
    const std::string table = output("messages");
    EXPECT_EQ(lines(table), 175);
    EXPECT_THAT(table,
                HasSubstr("E14   Setting attenuation failed for amplifier {module} on bus {bus}!  [module: number; "
                          "bus: number]\n"));
    EXPECT_THAT(table, HasSubstr("I20   System restarted.\n"));
}

TEST_F(Messages, AreListedByType) {
    EXPECT_EQ(lines(output("messages --type error")), 91);
    EXPECT_EQ(lines(output("messages --type warning")), 67);
    EXPECT_EQ(lines(output("messages --type info")), 17);
}

TEST_F(Messages, AreListedByWordsOfTheirWording) {
    EXPECT_EQ(output("messages --grep 'ATTENUATION failed' --type error"),
              "E14   Setting attenuation failed for amplifier {module} on bus {bus}!  [module: number; bus: number]\n");
    EXPECT_EQ(output("messages --grep nonsense --format json"), "[]\n");
    EXPECT_EQ(wrongUse("messages --grep '('"), "tqzel-logbook: --grep: \"(\" is no regular expression: missing ): (\n");
}

TEST_F(Messages, AreListedAsMarkdown) {
    const std::string page = output("messages --format markdown");
    const std::string header =
        "# Messages\n\nMade by `tqzel-logbook messages --format markdown`. A name in braces is a place that the "
        "parameter\nrecord fills in.\n\n| code | type | wording | parameters |\n|---|---|---|---|\n";
    EXPECT_THAT(page, testing::StartsWith(header));
    EXPECT_EQ(lines(page.substr(header.size())), 175);
    EXPECT_EQ(std::count(page.begin() + static_cast<std::ptrdiff_t>(header.size()), page.end(), '|'), 175 * 5);
    EXPECT_THAT(page, HasSubstr("| E14 | error | Setting attenuation failed for amplifier {module} on bus {bus}! | "
                                "module: number; bus: number |\n"));
    EXPECT_THAT(page, HasSubstr("| I20 | info | System restarted. |  |\n"));
}

TEST_F(Messages, AreListedAsJson) {
    const Json::Value list = tqbase2::system::JsonUtility::toJsonValue(output("messages --format json"));
    ASSERT_EQ(list.size(), 175U);
    EXPECT_EQ(tqbase2::system::JsonUtility::toJsonString(list[0]),
              R"({"code":"E1","id":1,"parameters":{"bus":"number","module":"number"},"type":"error",)"
              R"("wording":"Too high temperature for amplifier {module} on bus {bus}!"})");
}

class Explain : public ToolFixture {};

TEST_F(Explain, TellsWhatACodeStandsFor) {
    const std::string amplifier =
        "  {module} is made from parameter \"module\": number\n"
        "  {bus} is made from parameter \"bus\": number\n";
    EXPECT_EQ(output("explain E14"),
              "E14  Setting attenuation failed for amplifier {module} on bus {bus}!\n" + amplifier);
    EXPECT_EQ(output("explain w63"),
              "W63  Too low driver current for amplifier {module} on bus {bus} reduced RF Power!\n" + amplifier);
    EXPECT_EQ(output("explain I20"), "I20  System restarted.\n");
}

TEST_F(Explain, KnowsTheCodeOfFreeTexts) {
    EXPECT_EQ(output("explain I0"), "I0  a free text, which only the service logbook shows\n");
}

TEST_F(Explain, ReadsLeadingZeroesAsPeopleDo) {
    EXPECT_EQ(output("explain I020"), "I20  System restarted.\n");
}

TEST_F(Explain, RefusesWhatStandsForNothing) {
    EXPECT_EQ(
        wrongUse("explain E4711"),
        "tqzel-logbook: code: this version knows no message E4711; tqzel-logbook messages lists those it knows\n");
    for (const std::string name : {"X1", "14", "E", "E-1", "E+1", "E 1", "E1x", "E0x10", "E4294967297"}) {
        EXPECT_EQ(wrongUse("explain '" + name + '\''), "tqzel-logbook: code: \"" + name +
                                                           "\" is no code; expected E, W or I and a number, like "
                                                           "E14\n");
    }
}

}  // namespace

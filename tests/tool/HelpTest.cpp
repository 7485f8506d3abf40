#include "ToolFixture.h"
#include "parameters.h"

#include <lgb/catalogue.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using support::Outcome;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// The tool with a folder of its own, which is empty.
class Help : public ToolFixture {
protected:
    std::string help(const std::string& command) const {
        const Outcome outcome = tool(command + " --help");
        EXPECT_EQ(outcome.exitCode, 0) << command;
        EXPECT_EQ(outcome.errors, "") << command;
        return outcome.output;
    }

    /// The sentence that answers wrong use, and that nothing else came of it.
    std::string refusal(const std::string& arguments) const {
        const Outcome outcome = tool(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_EQ(outcome.output, "") << arguments;
        EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << arguments;
        const std::string start = "tqzel-logbook: ";
        EXPECT_EQ(linesOf(outcome.errors).size(), 1U) << outcome.errors;
        EXPECT_EQ(outcome.errors.substr(0, start.size()), start);
        EXPECT_EQ(outcome.errors.back(), '\n');
        return outcome.errors.substr(start.size(), outcome.errors.size() - start.size() - 1);
    }

    /// What bash offers for the last of some words.
    static std::string completed(const std::string& words) {
        const std::string script = std::string("source ") + TQZEL_SOURCE_FOLDER +
                                   "/tool/completion/tqzel-logbook; COMP_WORDS=(tqzel-logbook " + words +
                                   "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _tqzel_logbook; echo \"${COMPREPLY[*]}\"";
        const Outcome outcome = support::run("bash -c '" + script + "'");
        EXPECT_EQ(outcome.errors, "") << words;
        return outcome.output;
    }

    const std::vector<std::string> commands{"show",   "stats",   "report",   "check",   "add",        "clear", "export",
                                            "import", "salvage", "messages", "explain", "completion", "man",   "help"};
};

TEST_F(Help, TellsEveryCommandInOneLine) {
    EXPECT_THAT(help(""),
                testing::HasSubstr("\n"
                                   "Usage: tqzel-logbook [OPTION...] COMMAND\n"
                                   "\n"
                                   "Commands:\n"
                                   "  show                        Show a logbook in words, newest entry first\n"));
    for (const std::string& command : commands) {
        EXPECT_THAT(help(""), testing::ContainsRegex("\n  " + command + " +[A-Z]"));
    }
}

TEST_F(Help, TellsArgumentsOptionsAndExamplesOfACommand) {
    EXPECT_EQ(help("clear"),
              "Remove all entries of a logbook.\n"
              "\n"
              "Usage: tqzel-logbook clear [OPTION...] customer|service\n"
              "\n"
              "Arguments:\n"
              "  logbook customer|service    The logbook\n"
              "\n"
              "Options:\n"
              "  -h, --help                  Show this help\n"
              "  --yes                       Don't ask\n"
              "\n"
              "Examples:\n"
              "  # Asks before it removes anything.\n"
              "  tqzel-logbook clear customer\n"
              "  # For scripts.\n"
              "  tqzel-logbook clear service --yes\n"
              "\n"
              "--folder and what else tqzel-logbook --help lists may stand here as well.\n");
}

TEST_F(Help, PrintsNoManualOntoATerminal) {
    EXPECT_EQ(onTerminal("man", "", 2),
              "tqzel-logbook: man: what it prints is not for a terminal; pipe it into man -l -\n");
}

TEST_F(Help, AndTheVersionMayStandOnEitherSideOfTheCommand) {
    EXPECT_EQ(output("--help show"), help("show"));
    EXPECT_EQ(output("show --version"), output("--version"));
    EXPECT_EQ(output("--version stats"), output("--version"));
}

TEST_F(Help, IsACommandToo) {
    EXPECT_EQ(output("help"), help(""));
    EXPECT_EQ(output("help clear"), help("clear"));
    EXPECT_EQ(output("help help"), help("help"));
    EXPECT_EQ(refusal("help nonsense"),
              "command: \"nonsense\" is not one of show, stats, report, check, add, clear, resize, export, import, "
              "salvage, messages, explain, completion, man, help");
}

TEST_F(Help, GroupsOptionsAndKeepsToALineOf100Columns) {
    EXPECT_THAT(help("add"), testing::HasSubstr("\nParameters:\n  --bus NUMBER                Bus of the module\n"));
    EXPECT_THAT(help("show"), testing::HasSubstr("\nWhich entries:\n  --type info|warning|error   Only of this type"));
    EXPECT_THAT(help("show"),
                testing::HasSubstr(
                    "  --count NUMBER              Most entries to show; unless given 20, with --after all; not with\n"
                    "                              --all\n"));
    for (const std::string& command : commands) {
        for (const std::string& line : linesOf(help(command))) {
            EXPECT_LE(line.size(), 100U) << line;
        }
    }
}

TEST_F(Help, KeepsToTheTerminal) {
    const std::string shown = onTerminal("stats --help", "");
    EXPECT_THAT(shown, testing::HasSubstr("  --grep PATTERN              Only with this regular expression in the\n"
                                          "                              description, in upper or lower case\n"));
    for (const std::string& line : linesOf(shown)) {
        EXPECT_LE(line.size(), 80U) << line;
    }
}

/// The tool on the search path of a working folder with both logbooks, a copy of them, and an export of each.
class Examples : public Help {
protected:
    Examples() {
        std::filesystem::create_directory(folder / "bin");
        support::write(folder / "bin/tqzel-logbook", std::string("#!/bin/sh\nexec ") + TQZEL_TOOL + " \"$@\"\n");
        std::filesystem::permissions(folder / "bin/tqzel-logbook", std::filesystem::perms::owner_all);
        EXPECT_EQ(shell("filled",
                        "tqzel-logbook add customer error 14 --bus 1 --module 3 &&"
                        "tqzel-logbook add service info --text 'Fan 1 replaced' &&"
                        "tqzel-logbook add service error 79 --unit 1 &&"
                        "tqzel-logbook export customer --output customer.jsonl &&"
                        "tqzel-logbook export service --output service.jsonl &&"
                        "mkdir copied && cp *.db copied && cp lgbCustomer.db lgbCustomer.damaged-1.db")
                      .exitCode,
                  0);
    }

    /// Runs commands in a folder, answering yes to all questions.
    Outcome shell(const std::string& name, const std::string& script) const {
        const std::filesystem::path work = folder / name;
        std::filesystem::create_directories(work);
        return support::run("cd " + work.string() + " && export TQZEL_LOGBOOK_DIR=. PATH=" + (folder / "bin").string() +
                            ":$PATH && yes | { " + script + "; }");
    }

    std::vector<std::string> examplesOf(const std::string& command) const {
        std::vector<std::string> examples;
        for (const std::string& line : linesOf(help(command))) {
            if (line.rfind("  tqzel-logbook ", 0) == 0) {
                examples.push_back(line.substr(2));
            }
        }
        return examples;
    }
};

TEST_F(Examples, AreOneToFourForACommandAndFitIntoATerminal) {
    for (const std::string& command : commands) {
        EXPECT_THAT(examplesOf(command).size(), testing::AllOf(testing::Ge(1U), testing::Le(4U))) << command;
        EXPECT_THAT(examplesOf(command), testing::Each(testing::SizeIs(testing::Le(78U)))) << command;
        EXPECT_THAT(examplesOf(command), testing::Each(testing::StartsWith("tqzel-logbook " + command))) << command;
    }
}

TEST_F(Examples, Work) {
    for (const std::string& command : commands) {
        for (const std::string& example : examplesOf(command)) {
            if (example.find("--follow") != std::string::npos) {
                continue;  // which ends when it is interrupted
            }
            std::filesystem::copy(folder / "filled", folder / "work", std::filesystem::copy_options::recursive);
            const Outcome outcome = shell("work", example);
            EXPECT_EQ(outcome.exitCode, 0) << example;
            EXPECT_EQ(outcome.errors, "") << example;
            std::filesystem::remove_all(folder / "work");
        }
    }
}

TEST_F(Help, NamesTheCommandThatIsMissingOrMistyped) {
    EXPECT_EQ(refusal(""), "a command is missing (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("shwo"), "there is no command \"shwo\"; did you mean \"show\"? (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("shwo customer --count 3"), refusal("shwo"));
    EXPECT_EQ(refusal("SHOW customer"),
              "there is no command \"SHOW\"; did you mean \"show\"? (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("delete"), "there is no command \"delete\" (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("''"), "there is no command \"\" (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("\"$(printf 'two\\nlines')\""),
              "there is no command \"two\\x0alines\" (see tqzel-logbook --help)");
}

TEST_F(Help, TellsThatAWordStandsBeforeTheCommand) {
    EXPECT_EQ(refusal("customer show"), "\"customer\" belongs behind the command show");
}

TEST_F(Help, ExpectsAFolderNotAFile) {
    const std::string file = std::string(TQZEL_SOURCE_FOLDER) + "/README.md";
    EXPECT_EQ(refusal("show customer --folder " + file),
              "--folder: " + file + " is a file, expected the folder it is in");
}

TEST_F(Help, NamesTheOptionThatIsMistyped) {
    EXPECT_EQ(refusal("show customer --cuont 3"),
              "there is no option \"--cuont\"; did you mean \"--count\"? (see tqzel-logbook show --help)");
    EXPECT_EQ(refusal("show --cuont=3 customer"), refusal("show customer --cuont 3"));
    EXPECT_EQ(refusal("show --cuont 3 customer"), refusal("show customer --cuont 3"));
    EXPECT_EQ(refusal("show customer --foldr here"),
              "there is no option \"--foldr\"; did you mean \"--folder\"? (see tqzel-logbook show --help)");
    EXPECT_EQ(refusal("show customer --everything"),
              "there is no option \"--everything\" (see tqzel-logbook show --help)");
    EXPECT_EQ(refusal("-x"), "there is no option \"-x\" (see tqzel-logbook --help)");
    EXPECT_EQ(refusal("--count 3 show customer"), "--count belongs behind the command show");
}

TEST_F(Help, NamesWhatIsMissingOrTooMuch) {
    EXPECT_EQ(refusal("show"), "logbook is missing, expected customer|service (see tqzel-logbook show --help)");
    EXPECT_EQ(refusal("add customer"), "type is missing, expected info|warning|error (see tqzel-logbook add --help)");
    EXPECT_EQ(refusal("add customer error"), "id or --text is missing; tqzel-logbook messages lists the ids");
    EXPECT_EQ(refusal("show customer now"),
              "\"now\" is more than tqzel-logbook show takes (see tqzel-logbook show --help)");
    EXPECT_EQ(refusal("show customer --count"), "--count needs a value, expected NUMBER");
    EXPECT_EQ(refusal("--folder"), "--folder needs a value, expected FOLDER");
    EXPECT_EQ(refusal("show customer --count 1 --count 2"), "--count is given more than once");
    EXPECT_EQ(refusal("show customer --all=maybe"), "--all = maybe, but a flag takes no value");
    EXPECT_EQ(refusal("show customer --all --count 2"), "--count and --all can't be given together");
}

TEST_F(Help, NamesTheWordsThatAChoiceHas) {
    EXPECT_EQ(refusal("show custmer"),
              "logbook: \"custmer\" is not one of customer, service; did you mean \"customer\"?");
    EXPECT_EQ(refusal("show customer --format jso"),
              "--format: \"jso\" is not one of table, json, jsonl, csv; did you mean \"json\"?");
    EXPECT_EQ(refusal("show customer --type error,warnin"),
              "--type: \"warnin\" is not one of info, warning, error; did you mean \"warning\"?");
    EXPECT_EQ(refusal("show customer --color ''"), "--color: \"\" is not one of auto, always, never");
    EXPECT_EQ(refusal("add customer eror 14"),
              "type: \"eror\" is not one of info, warning, error; did you mean \"error\"?");
    EXPECT_EQ(refusal("add customer info 127 --interlock-mode Automatic"),
              "--interlock-mode: \"Automatic\" is not one of interactive, automatic; did you mean \"automatic\"?");
    EXPECT_EQ(refusal("completion powershell"), "shell: \"powershell\" is not one of bash, zsh");
}

TEST_F(Help, TakesOneValueForEachNameOfAnOption) {
    EXPECT_EQ(refusal("show --type error nobody"), "logbook: \"nobody\" is not one of customer, service");
}

TEST_F(Help, NamesTheIdThatNoMessageHas) {
    EXPECT_EQ(refusal("add customer error 5"),
              "id: this version knows no message error 5; tqzel-logbook messages lists those it knows");
}

TEST_F(Help, NamesWhatAFreeTextMustBe) {
    EXPECT_EQ(refusal("add customer info --text x"), "--text: only the service logbook shows a free text");
    EXPECT_EQ(refusal("add service info --text ''"), "--text: is empty, expected some words");
    EXPECT_EQ(refusal("add service info --text x --bus 1"), "--text: a free text has no parameters");
    EXPECT_EQ(refusal("add service info 20 --text x"), "id and --text can't be given together");
}

TEST_F(Help, NamesParametersThatAreNoJsonObject) {
    const std::string expected = "--params: expected a JSON object such as {\"bus\":1,\"module\":3}";
    EXPECT_EQ(refusal("add customer error 14 --params '{bus'"),
              "--params: not JSON: Line 1, Column 2: Missing '}' or object member name");
    EXPECT_EQ(refusal("add customer error 14 --params '[1]'"), expected);
    EXPECT_EQ(refusal("add customer error 14 --params 0"), expected);
}

TEST_F(Help, NamesTheParametersThatAMessageLacks) {
    EXPECT_EQ(refusal("add customer error 14"),
              "error 14 needs --bus (number) and --module (number): "
              "Setting attenuation failed for amplifier {module} on bus {bus}!");
    EXPECT_EQ(refusal("add customer error 14 --params '{\"bus\":1}'"),
              "error 14 needs --module (number): Setting attenuation failed for amplifier {module} on bus {bus}!");
    EXPECT_EQ(refusal("add customer info 127"),
              "info 127 needs --interlock-mode (interactive, automatic): Interlock 1 ({interlockMode}) was opened.");
}

TEST_F(Help, NamesTheParametersThatAMessageDoesNotRead) {
    EXPECT_EQ(refusal("add customer error 14 --bus 1 --module 3 --group 2"),
              "--group: error 14 does not read \"group\", only \"module\", \"bus\" and \"service\"");
    EXPECT_EQ(refusal("add customer error 14 --params '{\"bus\":1,\"modul\":3}'"),
              "--params: error 14 does not read \"modul\", only \"module\", \"bus\" and \"service\"; did you mean "
              "\"module\"?");
    EXPECT_EQ(refusal("add customer info 20 --bus 1"), "--bus: info 20 does not read \"bus\", only \"service\"");
}

TEST_F(Help, NamesWhatAParameterMustBe) {
    EXPECT_EQ(refusal("add customer error 14 --params '{\"bus\":\"x\",\"module\":3}'"),
              "--params: \"bus\" is \"x\", expected a number from 0 to 4294967295");
    EXPECT_EQ(refusal("add customer error 14 --params '{\"bus\":true,\"module\":3}'"),
              "--params: \"bus\" is true, expected a number from 0 to 4294967295");
    EXPECT_EQ(refusal("add customer info 236 --params '{\"group\":-1}'"),
              "--params: \"group\" is -1, expected a number from 0 to 2147483647");
    EXPECT_EQ(refusal("add customer error 265 --params '{\"on\":\"yes\"}'"),
              "--params: \"on\" is \"yes\", expected true or false");
    EXPECT_EQ(refusal("add customer error 259 --params '{\"version\":1.2}'"),
              "--params: \"version\" is 1.2, expected a text");
    EXPECT_EQ(refusal("add service info 20 --params '{\"service\":[]}'"),
              "--params: \"service\" is [], expected a text");
    EXPECT_EQ(refusal("add customer info 127 --params '{\"interlockMode\":\"Automatic\"}'"),
              "--params: \"interlockMode\" is \"Automatic\", expected one of interactive, automatic");
}

TEST_F(Help, NamesWhatAnEntryOfTheFirstGenerationNeeds) {
    const std::string add = "add customer info 20 --generation Kestrel ";
    EXPECT_EQ(refusal(add), "--params: \"typeProduct\" is missing, expected one of Osprey, Plover, Wren, Kestrel");
    EXPECT_EQ(refusal(add + "--params '{\"typeProduct\":\"Wrem\",\"text\":\"x\"}'"),
              "--params: \"typeProduct\" is \"Wrem\", expected one of Osprey, Plover, Wren, Kestrel; did you mean "
              "\"Wren\"?");
    EXPECT_EQ(refusal(add + "--params '{\"typeProduct\":3,\"text\":\"x\"}'"),
              "--params: \"typeProduct\" is 3, expected one of Osprey, Plover, Wren, Kestrel");
    EXPECT_EQ(refusal(add + "--params '{\"typeProduct\":\"Wren\"}'"),
              "--params: \"text\" is missing, expected a text that is not empty");
    EXPECT_EQ(refusal(add + "--params '{\"typeProduct\":\"Wren\",\"text\":\"\"}'"),
              "--params: \"text\" is \"\", expected a text that is not empty");
    EXPECT_EQ(refusal(add + "--service x --params '{\"typeProduct\":\"Wren\",\"text\":\"x\"}'"),
              "--service: an entry of generation Kestrel does not read \"service\", only \"typeProduct\" and \"text\"");
}

TEST_F(Help, KnowsAnOptionForEachParameterOfEachMessage) {
    const std::vector<std::string> types{"info", "warning", "error"};
    std::set<std::string> known;
    for (const lgb::catalogue::Message& message : lgb::catalogue::messages()) {
        for (const lgb::catalogue::Place& place : message.places) {
            if (known.insert(std::string(place.key)).second) {
                const std::string name =
                    types[static_cast<std::size_t>(message.type)] + ' ' + std::to_string(message.id);
                EXPECT_THAT(refusal("add customer " + name), testing::StartsWith(name + " needs --"));
            }
        }
    }
}

TEST_F(Help, KnowsNoOptionForWhatNoMessageReads) {
    EXPECT_THAT([] { tool::optionFor("colour"); },
                testing::ThrowsMessage<std::logic_error>("no option stands for \"colour\""));
}

TEST_F(Help, TakesNumbersAsDecimalsWhateverTheyStartWith) {
    EXPECT_EQ(tool("add customer error 014 --bus 010 --module 1 --unit 08").exitCode, 0);
    EXPECT_THAT(tool("show customer").output,
                testing::HasSubstr("Unit 8: Setting attenuation failed for amplifier 1 on bus 10!\n"));
    EXPECT_EQ(tool("show customer --code E014 --unit 08").output, tool("show customer").output);
}

TEST_F(Help, RefusesNumbersBeyondTheirRange) {
    EXPECT_EQ(refusal("add customer error 14 --bus -1"), "--bus: \"-1\" is not a number from 0 to 4294967295");
    EXPECT_EQ(refusal("add customer info 236 --group -3"), "--group: \"-3\" is not a number from 0 to 2147483647");
    EXPECT_EQ(refusal("add customer error 14 --unit 99999999999999999999"),
              "--unit: \"99999999999999999999\" is not a number from 0 to 2147483647");
}

TEST_F(Help, RefusesNumbersThatAreNotDecimal) {
    EXPECT_EQ(refusal("add customer error x"), "id: \"x\" is not a number from 1 to 4294967295");
    EXPECT_EQ(refusal("add customer error 14 --bus 0x10"), "--bus: \"0x10\" is not a number from 0 to 4294967295");
    EXPECT_EQ(refusal("add customer error 14 --bus 1e3"), "--bus: \"1e3\" is not a number from 0 to 4294967295");
    EXPECT_EQ(refusal("add customer error 14 --bus ''"), "--bus: \"\" is not a number from 0 to 4294967295");
}

TEST_F(Help, CompletesCommandsOptionsAndWordsInBash) {
    EXPECT_EQ(completed("s"), "salvage show stats\n");
    EXPECT_EQ(completed("\"\""),
              "add check clear completion explain export help import man messages report resize salvage show stats\n");
    EXPECT_EQ(completed("show \"\""), "customer service\n");
    EXPECT_EQ(completed("add customer \"\""), "error info warning\n");
    EXPECT_EQ(completed("--folder here add cus"), "customer\n");
    EXPECT_EQ(completed("show --co"), "--code --color --count\n");
    EXPECT_EQ(completed("show customer --fo"), "--folder --follow --format\n");
    EXPECT_EQ(completed("show --count 3 c"), "customer\n");
    EXPECT_EQ(completed("show customer --count \"\""), "\n");
    EXPECT_EQ(completed("show customer --reverse --format j"), "json jsonl\n");
    EXPECT_EQ(completed("show customer --format = c"), "csv\n");
    EXPECT_EQ(completed("show customer --format ="), "csv json jsonl table\n");
    EXPECT_EQ(completed("add customer info 201 --operating-class step"),
              "step1 step2 step3 step4 step5 step6 step7 step8\n");
    EXPECT_EQ(completed("-"), "--folder --help --version -h\n");
}

TEST_F(Help, CompletesFilesAndFoldersInBash) {
    std::filesystem::create_directory(folder / "logbooks");
    support::write(folder / "lines", "");
    const std::string start = (folder / "l").string();
    EXPECT_EQ(completed("import customer " + start),
              (folder / "lines").string() + ' ' + (folder / "logbooks").string() + '\n');
    EXPECT_EQ(completed("--folder " + start), (folder / "logbooks").string() + '\n');
}

}  // namespace

#include "help.h"

#include "commands.h"
#include "interface.h"
#include "terminal.h"
#include "validators.h"

#include <algorithm>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace tool {

namespace {

constexpr std::size_t descriptionColumn = 30;

std::size_t lineWidth() {
    constexpr std::size_t least = 60;
    constexpr std::size_t most = 100;
    const std::size_t width = terminalWidth();
    return width == 0 ? most : std::clamp(width, least, most);
}

/// What is described on the left, its description on the right, on a line of its own when the left is too long.
std::string row(const std::string& left, const std::string& right) {
    std::string text = "  " + left;
    bool onNewLine = text.size() + 2 > descriptionColumn;
    for (const std::string& line : wrapped(right, lineWidth() - descriptionColumn)) {
        text +=
            onNewLine ? '\n' + std::string(descriptionColumn, ' ') : std::string(descriptionColumn - text.size(), ' ');
        text += line;
        onNewLine = true;
    }
    return text + '\n';
}

std::string section(const std::string& title, const std::vector<Argument>& arguments) {
    std::string text;
    for (const Argument& argument : arguments) {
        text += row(headingOf(argument), describe(argument));
    }
    return text.empty() ? "" : '\n' + title + ":\n" + text;
}

std::vector<Argument> optionsIn(const std::string& group, const Command& command) {
    std::vector<Argument> options;
    std::copy_if(command.options.begin(), command.options.end(), std::back_inserter(options),
                 [&](const Argument& option) { return option.group == group; });
    return options;
}

std::string exampleRows(const Command& command) {
    std::string text = "\nExamples:\n";
    for (const Example& example : command.examples) {
        text += std::string("  # ") + example.purpose + "\n  tqzel-logbook " + example.line + '\n';
    }
    return text;
}

std::string helpOf(const Command& command, const std::string& commandRows) {
    std::string text = command.description + ".\n\nUsage: " + usageOf(command) + '\n' + commandRows;
    text += section("Arguments", command.arguments);
    for (const std::string& group : groupsOf(command)) {
        text += section(group, optionsIn(group, command));
    }
    return text + exampleRows(command);
}

std::string helpOf(const Interface& all) {
    std::string rows = "\nCommands:\n";
    for (const Command& command : all.commands) {
        rows += row(command.name, command.description);
    }
    return helpOf(all.tool, rows) + "\ntqzel-logbook COMMAND --help tells more of a command.\n";
}

std::string helpOf(const CLI::App& app) {
    if (app.get_parent() == nullptr) {
        return helpOf(interfaceOf(app));
    }
    return helpOf(commandOf(app), "") + "\n--folder and what else tqzel-logbook --help lists may stand here as well.\n";
}

class HelpFormatter : public CLI::FormatterBase {
public:
    std::string make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const override { return helpOf(*app); }
};

}  // namespace

void declareHelp(CLI::App& app) {
    CLI::App& command = *app.add_subcommand("help", "Tell how a command is used");
    std::vector<std::string> names;
    for (const CLI::App* const each : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(each->get_name());
    }
    const auto name = std::make_shared<std::string>();
    takeOneOf(command.add_option("command", *name, "Which one; the tool itself unless given"), names)
        ->option_text("COMMAND");
    command.callback([&app, name] { std::cout << helpOf(name->empty() ? app : *app.get_subcommand(*name)); });
}

void setHelp(CLI::App& app) {
    app.set_help_flag("-h,--help", "Show this help");
    app.formatter(std::make_shared<HelpFormatter>());
}

}  // namespace tool

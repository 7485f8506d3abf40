#include "interface.h"

#include "examples.h"
#include "validators.h"
#include "words.h"

#include <algorithm>

namespace tool {

namespace {

std::vector<std::string> namesOf(const CLI::Option& option) {
    if (option.get_positional()) {
        return {option.get_name(true)};
    }
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

Argument argumentOf(const CLI::Option& option) {
    Argument argument;
    argument.names = namesOf(option);
    if (option.get_type_size() != 0) {
        argument.type = option.get_option_text().empty() ? option.get_type_name() : option.get_option_text();
        argument.words = wordsOf(option);
    }
    argument.description = option.get_description();
    argument.group = option.get_group();
    argument.required = option.get_required();
    argument.repeatable = option.get_expected_max() == CLI::detail::expected_max_vector_size;
    for (const CLI::Option* const other : option.get_excludes()) {
        argument.excludes.push_back(other->get_name());
    }
    std::sort(argument.excludes.begin(), argument.excludes.end());  // else in the order of addresses
    return argument;
}

std::string usageOf(const Argument& argument) {
    const std::string shown = argument.words.empty() ? argument.names.front() : argument.type;
    return argument.required ? shown : '[' + shown + ']';
}

}  // namespace

Command commandOf(const CLI::App& app) {
    Command command;
    command.name = app.get_parent() == nullptr ? "" : app.get_name();
    command.description = app.get_description();
    command.examples = examplesOf(command.name);
    for (const CLI::Option* const option : app.get_options()) {
        (option->get_positional() ? command.arguments : command.options).push_back(argumentOf(*option));
    }
    return command;
}

Interface interfaceOf(const CLI::App& app) {
    Interface all;
    all.version = app.version();
    all.tool = commandOf(app);
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; })) {
        all.commands.push_back(commandOf(*command));
    }
    return all;
}

std::string nameOf(const Command& command) {
    return command.name.empty() ? "tqzel-logbook" : "tqzel-logbook " + command.name;
}

std::string usageOf(const Command& command) {
    std::string usage = nameOf(command) + " [OPTION...]";
    for (const Argument& argument : command.arguments) {
        usage += ' ' + usageOf(argument);
    }
    return command.name.empty() ? usage + " COMMAND" : usage;
}

std::vector<std::string> groupsOf(const Command& command) {
    std::vector<std::string> groups;
    for (const Argument& option : command.options) {
        if (std::find(groups.begin(), groups.end(), option.group) == groups.end()) {
            groups.push_back(option.group);
        }
    }
    return groups;
}

std::string headingOf(const Argument& argument) {
    const std::string names = CLI::detail::join(argument.names, ", ");
    return argument.type.empty() ? names : names + ' ' + argument.type;
}

std::string describe(const Argument& argument) {
    if (argument.excludes.empty()) {
        return argument.description;
    }
    return argument.description + "; not with " + listed(argument.excludes, "or");
}

}  // namespace tool

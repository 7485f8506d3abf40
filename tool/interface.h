#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

/// What the tool takes, as data: the help, the manual page and the completions are written from it.
namespace tool {

/// An option of a command, or an argument told by its place.
struct Argument {
    std::vector<std::string> names;  ///< "-h" and "--help"; "logbook"
    std::string type;                ///< "NUMBER", "customer|service"; empty for a flag
    std::vector<std::string> words;  ///< the only ones it takes; empty: any
    std::string description;
    std::string group;
    bool required = false;
    bool repeatable = false;
    std::vector<std::string> excludes;  ///< names of options that it can't be given with
};

struct Example {
    const char* command;
    const char* line;  ///< behind the tool's name
    const char* purpose;
};

struct Command {
    std::string name;  ///< empty: the tool itself
    std::string description;
    std::vector<Argument> arguments;  ///< by place
    std::vector<Argument> options;
    std::vector<Example> examples;
};

/// The tool itself and its commands.
struct Interface {
    std::string version;
    Command tool;
    std::vector<Command> commands;
};

Command commandOf(const CLI::App& app);

Interface interfaceOf(const CLI::App& app);

/// The name of a command together with the tool's: "tqzel-logbook show".
std::string nameOf(const Command& command);

/// "tqzel-logbook show [OPTION...] customer|service"
std::string usageOf(const Command& command);

/// The groups of a command's options in the order of their first options.
std::vector<std::string> groupsOf(const Command& command);

/// "-h, --help", "--count NUMBER"
std::string headingOf(const Argument& argument);

/// Its description, with what it can't be given with.
std::string describe(const Argument& argument);

}  // namespace tool

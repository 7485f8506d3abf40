#include "wrongUse.h"

#include "interface.h"
#include "words.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace tool {

namespace {

/// The command that was chosen; the tool itself before one was.
const CLI::App& chosen(const CLI::App& app) {
    const auto commands = app.get_subcommands();
    return commands.empty() ? app : *commands.front();
}

std::string lookUp(const CLI::App& command) {
    return " (see " + nameOf(commandOf(command)) + " --help)";
}

bool isOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-' && word != "--";
}

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const Argument& option : commandOf(app).options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

std::string explainOption(const CLI::App& app, const std::string& given) {
    const std::string name = given.substr(0, given.find('='));
    const CLI::App& command = chosen(app);
    std::vector<std::string> names = optionNames(command);
    if (std::find(names.begin(), names.end(), name) != names.end()) {
        return name + " belongs behind the command " + command.get_name();
    }
    if (&command != &app) {
        const std::vector<std::string> everywhere = optionNames(app);
        names.insert(names.end(), everywhere.begin(), everywhere.end());
    }
    return "there is no option \"" + name + '"' + suggestion(name, names) + lookUp(command);
}

std::string explainCommand(const CLI::App& app, const std::string& given) {
    std::vector<std::string> names;
    for (const Command& command : interfaceOf(app).commands) {
        names.push_back(command.name);
    }
    return "there is no command \"" + given + '"' + suggestion(given, names) + lookUp(app);
}

/// What can't be told by the words that were left over alone.
std::string explainLeftOver(const CLI::App& app, const std::vector<std::string>& leftOver) {
    const bool hasCommand = &chosen(app) != &app;
    if (!hasCommand && !isOption(leftOver.front())) {
        return explainCommand(app, leftOver.front());
    }
    const auto option = std::find_if(leftOver.begin(), leftOver.end(), isOption);
    return option == leftOver.end() ? "" : explainOption(app, *option);
}

std::string explainMissing(const CLI::App& command, const std::string& otherwise) {
    for (const CLI::Option* const option : command.get_options()) {
        if (option->get_required() && option->count() == 0) {
            return option->get_name() + " is missing, expected " + option->get_type_name() + lookUp(command);
        }
    }
    return otherwise;
}

/// A value is missing, or there are too many.
std::string explainMismatch(const CLI::App& app, const std::string& text) {
    const std::string name = text.substr(0, text.find(':'));
    for (const CLI::App* const place : {&chosen(app), &app}) {
        for (const CLI::Option* const option : place->get_options()) {
            if (option->check_name(name)) {
                return option->count() > 1 ? name + " is given more than once"
                                           : name + " needs a value, expected " + option->get_type_name();
            }
        }
    }
    return text;
}

std::string explainExclusion(const std::string& text) {
    const std::string verb = " excludes ";
    const std::size_t found = text.find(verb);
    return text.substr(0, found) + " and " + text.substr(found + verb.size()) + " can't be given together";
}

/// Every other value has been checked before it is converted.
std::string explainFlag(const std::string& text) {
    return text.substr(std::min(text.size(), text.find("--"))) + ", but a flag takes no value";
}

template <typename Kind>
bool isOf(const CLI::ParseError& error) {
    return dynamic_cast<const Kind*>(&error) != nullptr;
}

}  // namespace

std::string explainWrongUse(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& command = chosen(app);
    const std::vector<std::string> leftOver = app.remaining(true);
    std::string explained = leftOver.empty() ? "" : explainLeftOver(app, leftOver);
    if (!explained.empty()) {
        return explained;
    }
    if (&command == &app && isOf<CLI::RequiredError>(error)) {
        return "a command is missing" + lookUp(app);
    }
    if (isOf<CLI::RequiredError>(error) && !leftOver.empty()) {
        return '"' + leftOver.front() + "\" belongs behind the command " + command.get_name();
    }
    if (isOf<CLI::RequiredError>(error)) {
        return explainMissing(command, error.what());
    }
    if (isOf<CLI::ArgumentMismatch>(error)) {
        return explainMismatch(app, error.what());
    }
    if (isOf<CLI::ExcludesError>(error)) {
        return explainExclusion(error.what());
    }
    if (isOf<CLI::ConversionError>(error)) {
        return explainFlag(error.what());
    }
    if (isOf<CLI::ExtrasError>(error)) {
        return '"' + leftOver.back() + "\" is more than " + nameOf(commandOf(command)) + " takes" + lookUp(command);
    }
    return error.what();
}

}  // namespace tool

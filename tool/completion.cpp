#include "commands.h"
#include "interface.h"
#include "table.h"
#include "validators.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace tool {

namespace {

constexpr const char* bashHead = R"bash(# Completion of tqzel-logbook in bash. Made by `tqzel-logbook completion bash`.

# What may stand behind a key, which is a command, then the number of an argument or the name of an option: words, or
# FILE and FOLDER for paths.
_tqzel_logbook_words() {
    case $1 in
)bash";

constexpr const char* bashTail = R"bash(        *) return 1 ;;
    esac
}

_tqzel_logbook() {
    local words=() word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        [ "$word" = "=" ] || words+=("$word")
    done
    local current=${COMP_WORDS[COMP_CWORD]}
    if [ "$current" = "=" ]; then
        current=
        words+=("")
    fi

    local command= place=1 option= takes=
    for word in "${words[@]:0:${#words[@]}-1}"; do
        if [ -n "$option" ]; then
            option=
        elif [[ $word = -* ]]; then
            takes=$(_tqzel_logbook_words "$command $word" || _tqzel_logbook_words " $word")
            [ "$takes" = FLAG ] || option=$word
        elif [ -z "$command" ]; then
            command=$word
        else
            place=$((place + 1))
        fi
    done

    if [ -n "$option" ]; then
        takes=$(_tqzel_logbook_words "$command $option" || _tqzel_logbook_words " $option")
    elif [[ $current = -* ]]; then
        takes="$(_tqzel_logbook_words "$command options") $(_tqzel_logbook_words " options")"
    elif [ -z "$command" ]; then
        takes=$(_tqzel_logbook_words " commands")
    else
        takes=$(_tqzel_logbook_words "$command $place")
    fi

    local action=(-W "$takes")
    case $takes in
        FILE) action=(-f) ;;
        FOLDER) action=(-d) ;;
    esac
    [ "${action[0]}" = -W ] || compopt -o filenames 2>/dev/null
    COMPREPLY=()
    while IFS= read -r word; do
        COMPREPLY+=("$word")
    done < <(compgen "${action[@]}" -- "$current" | sort -u)
}
complete -F _tqzel_logbook tqzel-logbook
)bash";

bool isPath(const Argument& argument) {
    return argument.type == "FILE" || argument.type == "FOLDER";
}

/// What an argument or option takes, for bash.
std::string takenBy(const Argument& argument) {
    if (argument.type.empty()) {
        return "FLAG";
    }
    return isPath(argument) ? argument.type : CLI::detail::join(argument.words, " ");
}

void printBashCase(const std::string& key, const std::string& words) {
    std::cout << "        '" << key << "') echo '" << words << "' ;;\n";
}

void printBashCases(const Command& command) {
    std::vector<std::string> names;
    for (const Argument& option : command.options) {
        for (const std::string& name : option.names) {
            names.push_back(name);
            printBashCase(command.name + ' ' + name, takenBy(option));
        }
    }
    printBashCase(command.name + " options", CLI::detail::join(names, " "));
    for (std::size_t i = 0; i < command.arguments.size(); ++i) {
        printBashCase(command.name + ' ' + std::to_string(i + 1), takenBy(command.arguments[i]));
    }
}

void printBash(const Interface& all) {
    std::cout << bashHead;
    std::vector<std::string> commands;
    for (const Command& command : all.commands) {
        commands.push_back(command.name);
    }
    printBashCase(" commands", CLI::detail::join(commands, " "));
    printBashCases(all.tool);
    for (const Command& command : all.commands) {
        printBashCases(command);
    }
    std::cout << bashTail;
}

/// A text within single quotes, where brackets and colons would end it.
std::string zshText(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\'') {
            escaped += "'\\''";
        } else {
            escaped += std::string(character == '[' || character == ']' || character == ':' ? "\\" : "") + character;
        }
    }
    return escaped;
}

/// ":count:", ":output:_files", ":format:(table json)"
std::string zshAction(const Argument& argument) {
    const std::string& longest = argument.names.back();
    const std::string name = ':' + longest.substr(longest.find_first_not_of('-')) + ':';
    if (isPath(argument)) {
        return name + (argument.type == "FOLDER" ? "_files -/" : "_files");
    }
    return argument.words.empty() ? name : name + '(' + CLI::detail::join(argument.words, " ") + ')';
}

/// Options that can't follow: those excluded, and the option itself unless it may be repeated.
std::string zshExclusions(const Argument& option) {
    if (option.repeatable) {
        return "*";
    }
    std::vector<std::string> names = option.names;
    names.insert(names.end(), option.excludes.begin(), option.excludes.end());
    return '(' + CLI::detail::join(names, " ") + ')';
}

void printZshOptions(const Command& command) {
    for (const Argument& option : command.options) {
        for (const std::string& name : option.names) {
            std::cout << " \\\n            '" << zshExclusions(option) << name << (option.type.empty() ? "" : "=")
                      << '[' << zshText(option.description) << ']' << (option.type.empty() ? "" : zshAction(option))
                      << '\'';
        }
    }
}

void printZshCommand(const Interface& all, const Command& command) {
    std::cout << "    " << command.name << ")\n        _arguments -s";
    printZshOptions(command);
    for (const Argument& option : all.tool.options) {
        if (option.type == "FOLDER") {
            std::cout << " \\\n            '" << zshExclusions(option) << option.names.back() << "=["
                      << zshText(option.description) << ']' << zshAction(option) << '\'';
        }
    }
    for (const Argument& argument : command.arguments) {
        std::cout << " \\\n            '" << (argument.required ? ":" : "::") << zshAction(argument).substr(1) << '\'';
    }
    std::cout << "\n        ;;\n";
}

void printZsh(const Interface& all) {
    std::cout << "#compdef tqzel-logbook\n# Completion of tqzel-logbook in zsh. Made by `tqzel-logbook completion "
                 "zsh`.\n\nlocal context state state_descr line\ntypeset -A opt_args\nlocal -a commands\ncommands=(\n";
    for (const Command& command : all.commands) {
        std::cout << "    '" << command.name << ':' << zshText(command.description) << "'\n";
    }
    std::cout << ")\n\n_arguments -C";
    printZshOptions(all.tool);
    std::cout << " \\\n            '1:command:->command' \\\n            '*::argument:->arguments' && return\n\n"
                 "if [[ $state = command ]]; then\n    _describe command commands\n    return\nfi\n\n"
                 "case $words[1] in\n";
    for (const Command& command : all.commands) {
        printZshCommand(all, command);
    }
    std::cout << "esac\n";
}

struct Shell {
    const char* name;
    void (*print)(const Interface& all);
};

constexpr Shell shells[] = {{"bash", printBash}, {"zsh", printZsh}};

}  // namespace

void declareCompletion(CLI::App& app) {
    CLI::App& command = *app.add_subcommand("completion", "Print the completion for a shell");
    const auto shell = std::make_shared<std::string>();
    takeOneOf(command.add_option("shell", *shell, "The shell")->required(), namesIn(shells));
    command.callback([&app, shell] { rowNamed(shells, *shell).print(interfaceOf(app)); });
}

}  // namespace tool

#include "commands.h"
#include "interface.h"
#include "terminal.h"

#include <algorithm>
#include <iostream>
#include <string>

namespace tool {

namespace {

constexpr const char* description = R"(.SH DESCRIPTION
Records and shows the logbooks of a broadband RF power amplifier.
An entry goes in as a code and a few parameters and comes out in words, which are made anew at every read.
.PP
There are two logbooks.
.B customer
shows coded entries.
.B service
also shows free texts of service people and the service detail of coded entries.
A full logbook drops its oldest entry.
)";

constexpr const char* ending = R"(.SH FILES
.TP
.IR FOLDER /lgbCustomer.db ", " FOLDER /lgbService.db
The logbooks, SQLite files, in the folder of
.BR \-\-folder ,
else in
.BR $TQZEL_LOGBOOK_DIR ,
else in
.IR $XDG_STATE_HOME/tqzel\-logbook ,
else in
.IR $HOME/.local/state/tqzel\-logbook .
.SH ENVIRONMENT
.TP
.B TQZEL_LOGBOOK_DIR
Folder of the logbooks.
.TP
.B TQZEL_LOG_LEVEL
From which level on, 1 to 4, the library's diagnostic log goes to standard error; 5, which is usual here: none.
.TP
.B PAGER
Shows long lists page by page on a terminal;
.B less
unless set.
.TP
.B NO_COLOR
When set, nothing is coloured unless
.B \-\-color always
asks for it.
.SH EXIT STATUS
.TP
.B 0
Done.
.TP
.B 1
A failure, which one line on standard error tells.
.TP
.B 2
Wrong use, likewise.
Nothing was changed.
)";

/// A text as troff shows it unchanged.
std::string plain(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        switch (character) {
            case '\\':
                escaped += "\\e";
                break;
            case '-':
                escaped += "\\-";
                break;
            case '\'':
                escaped += "\\(aq";
                break;
            default:
                escaped += character;
        }
    }
    return !escaped.empty() && escaped.front() == '.' ? "\\&" + escaped : escaped;
}

void printParagraph(const Argument& argument) {
    std::cout << ".TP\n.B " << plain(CLI::detail::join(argument.names, ", "));
    if (!argument.type.empty()) {
        std::cout << " \\fI" << plain(argument.type) << "\\fP";
    }
    std::cout << '\n' << plain(describe(argument)) << ".\n";
}

void printParagraphs(const Command& command) {
    std::for_each(command.arguments.begin(), command.arguments.end(), printParagraph);
    for (const Argument& option : command.options) {
        if (command.name.empty() || option.names.back() != "--help") {
            printParagraph(option);
        }
    }
}

void printExamples(const Command& command) {
    for (const Example& example : command.examples) {
        std::cout << ".PP\n.nf\n\\fB" << plain(std::string("tqzel-logbook ") + example.line) << "\\fP\n.fi\n.RS\n"
                  << plain(example.purpose) << "\n.RE\n";
    }
}

void printManual(const Interface& all) {
    std::cout << ".\\\" Made by `tqzel-logbook man`.\n.TH TQZEL\\-LOGBOOK 1 \"\" \"tqzel\\-logbook " << all.version
              << "\" \"User Commands\"\n.SH NAME\ntqzel\\-logbook \\- records and shows the logbooks of an amplifier\n"
              << ".SH SYNOPSIS\n.nf\n";
    for (const Command& command : all.commands) {
        std::cout << plain(usageOf(command)) << '\n';
    }
    std::cout << ".fi\n" << description << ".SH OPTIONS\nThey may also stand behind a command.\n";
    printParagraphs(all.tool);
    std::cout << ".SH COMMANDS\n";
    for (const Command& command : all.commands) {
        std::cout << ".SS " << plain(usageOf(command).substr(nameOf(all.tool).size() + 1)) << '\n'
                  << plain(command.description) << ".\n";
        printParagraphs(command);
    }
    std::cout << ".SH EXAMPLES\n";
    for (const Command& command : all.commands) {
        printExamples(command);
    }
    std::cout << ending;
}

}  // namespace

void declareManual(CLI::App& app) {
    CLI::App& command = *app.add_subcommand("man", "Print the manual page");
    command.callback([&app] {
        if (isTerminal()) {
            throw CLI::ValidationError("man", "what it prints is not for a terminal; pipe it into man -l -");
        }
        printManual(interfaceOf(app));
    });
}

}  // namespace tool

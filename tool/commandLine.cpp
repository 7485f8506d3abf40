#include "commandLine.h"

#include "commands.h"
#include "help.h"
#include "logbooks.h"
#include "rights.h"
#include "terminal.h"
#include "wrongUse.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tool {

namespace {

constexpr int failure = 1;
constexpr int wrongUse = 2;

int complain(const std::string& reason, int exitCode) {
    std::cerr << "tqzel-logbook: " << printable(reason) << '\n';
    return exitCode;
}

/// A folder that is not there yet is one.
std::string whyNoFolder(const std::string& name) {
    if (name.empty()) {
        return "is empty";
    }
    std::error_code none;
    return std::filesystem::is_regular_file(name, none) ? name + " is a file, expected the folder it is in" : "";
}

/// What is wrong with an entry the commands tell themselves, in their own words; what the platform does to the files,
/// such as healing one, is its own to tell.
void setLogLevel(CLI::App& app) {
    for (CLI::App* const command : app.get_subcommands({})) {
        const auto& name = command->get_name();
        const bool writes = name == "add" || name == "clear" || name == "import" || name == "resize";
        command->preparse_callback([writes](std::size_t) { setenv("TQZEL_LOG_LEVEL", writes ? "4" : "5", 0); });
    }
}

void declare(CLI::App& app, Selection& selection) {
    setHelp(app);
    app.set_version_flag("--version", TQZEL_VERSION, "Show the version");
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--folder", selection.folder, "Folder of the logbooks; else $TQZEL_LOGBOOK_DIR, or under $HOME")
        ->type_name("FOLDER")
        ->check(CLI::Validator(whyNoFolder, ""));
    declareShow(app, selection);
    declareStats(app, selection);
    declareReport(app, selection);
    declareCheck(app, selection);
    declareAdd(app, selection);
    declareClear(app, selection);
    declareResize(app, selection);
    declareExport(app, selection);
    declareImport(app, selection);
    declareSalvage(app, selection);
    declareMessages(app);
    declareExplain(app);
    declareCompletion(app);
    declareManual(app);
    declareHelp(app);
    setLogLevel(app);
}

/// All but these read or write the logbooks of the folder.
bool usesFolder(const CLI::App& app) {
    constexpr std::array others = {"salvage", "messages", "explain", "completion", "man", "help"};
    return std::none_of(others.begin(), others.end(), [&](const char* name) { return app.got_subcommand(name); });
}

void parse(CLI::App& app, int argc, const char* const* argv) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        app.exit(helpOrVersion);
    }
    std::cout.flush();
    if (!std::cout) {
        throw std::runtime_error("can't write to standard output");
    }
}

}  // namespace

int run(int argc, const char* const* argv) {
    CLI::App app("Records and shows the logbooks of a device", "tqzel-logbook");
    Selection selection;
    declare(app, selection);
    std::optional<OwnersRights> rights;
    app.parse_complete_callback([&] {
        if (usesFolder(app)) {
            selection.folder = rights.emplace(folderOf(selection)).folder();
        }
    });
    try {
        parse(app, argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        return complain(explainWrongUse(app, error), wrongUse);
    } catch (const std::exception& exception) {
        return complain(exception.what(), failure);
    }
}

}  // namespace tool

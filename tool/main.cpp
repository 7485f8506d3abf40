#include "commands.h"
#include "logbooks.h"

#include <exception>
#include <iostream>
#include <stdexcept>

namespace {

constexpr int failure = 1;
constexpr int wrongUse = 2;

int complain(const std::exception& exception, int exitCode) {
    std::cerr << "tqzel-logbook: " << exception.what() << '\n';
    return exitCode;
}

int run(int argc, char** argv) {
    CLI::App app("Records and shows the logbooks of a device.", "tqzel-logbook");
    tool::Selection selection;
    app.set_version_flag("--version", TQZEL_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--folder", selection.folder, "Folder of the logbooks; else $TQZEL_LOGBOOK_DIR, or under $HOME")
        ->type_name("FOLDER");
    tool::declareAdd(app, selection);
    tool::declareShow(app, selection);
    tool::declareClear(app, selection);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        app.exit(helpOrVersion);
    }
    std::cout.flush();
    if (!std::cout) {
        throw std::runtime_error("can't write to standard output");
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const CLI::ParseError& error) {
        return complain(error, wrongUse);
    } catch (const std::exception& exception) {
        return complain(exception, failure);
    }
}

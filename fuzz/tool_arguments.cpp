// Any command line but one that follows a logbook, its arguments ending at each NUL byte, beside a folder with both
// logbooks: the tool ends with one of its exit codes and writes nothing but logbooks and the file of --output.

#include "TemporaryFolder.h"
#include "commandLine.h"
#include "require.h"

#include <lgb/Entry.h>
#include <lgb/LogbookEntryCreator.h>
#include <lgb/LogbookFactory.h>
#include <lgb/ZelLogbook.h>
#include <standalone/SqliteDatabaseFactory.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> splitAtNul(const std::string& input) {
    std::vector<std::string> arguments{"tqzel-logbook"};
    std::istringstream rest(input);
    for (std::string argument; std::getline(rest, argument, '\0');) {
        arguments.push_back(argument);
    }
    return arguments;
}

/// A name in the working folder instead of a path anywhere.
std::string withoutFolders(std::string path) {
    std::replace(path.begin(), path.end(), '/', '_');
    return path;
}

constexpr const char* outputStart = "output-";

/// What an option asks for gets a start that tells what it is.
struct PathOption {
    std::string name;
    std::string start;
};

/// Leads every path that is asked for into the working folder.
void confinePaths(std::vector<std::string>& arguments) {
    for (const auto& [name, start] : {PathOption{"--folder", "folder-"}, PathOption{"--output", outputStart}}) {
        const std::string assignment = name + '=';
        for (std::size_t i = 1; i < arguments.size(); ++i) {
            if (arguments[i].rfind(assignment, 0) == 0) {
                arguments[i].replace(0, assignment.size(), start);
                arguments[i] = assignment + withoutFolders(arguments[i]);
            } else if (arguments[i - 1] == name) {
                arguments[i] = start + withoutFolders(arguments[i]);
            }
        }
    }
    if (std::find(arguments.begin(), arguments.end(), "import") != arguments.end()) {
        std::transform(arguments.begin(), arguments.end(), arguments.begin(), withoutFolders);
    }
}

/// To follow has no end.
void dropFollow(std::vector<std::string>& arguments) {
    const auto follows = [](const std::string& argument) { return argument.rfind("--follow", 0) == 0; };
    arguments.erase(std::remove_if(arguments.begin(), arguments.end(), follows), arguments.end());
}

/// Two logbooks with an entry each, made once and copied for each input, which so does the same every time.
const fs::path& filledLogbooks() {
    static const support::TemporaryFolder folder;
    static const fs::path logbooks = [] {
        lgb::ZelLogbook made(standalone::SqliteDatabaseFactory(folder / "filled"), lgb::LogbookFactory());
        const lgb::code::Code code(20, tqbase2::nsa::zel::enums::LogbookEntryType::Info);
        made.customer().add(lgb::LogbookEntryCreator::create(lgb::Entry(code)));
        const lgb::code::ServiceCode freeText(code.type());
        made.service().add(lgb::LogbookEntryCreator::createServiceOnly("Fan 1 replaced", freeText));
        return folder / "filled";
    }();
    return logbooks;
}

/// A fresh folder that holds all that a run may see: its working folder with the logbooks, and an empty home.
class Surroundings {
public:
    Surroundings() {
        fs::create_directories(home);
        fs::create_directories(work);
        fs::copy(filledLogbooks(), work / "logbooks");
        fs::current_path(work);
        setenv("TQZEL_LOGBOOK_DIR", "logbooks", 1);
        setenv("XDG_STATE_HOME", home.c_str(), 1);
        setenv("HOME", home.c_str(), 1);
        setenv("PAGER", "", 1);
    }

    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

    ~Surroundings() { fs::current_path(before); }

    bool holdOnlyLogbooksAndOutput() const {
        return fs::is_empty(home) &&
               std::all_of(fs::directory_iterator(work), fs::directory_iterator(), [](const fs::path& place) {
                   return fs::is_directory(place) ? holdsOnlyLogbooks(place)
                                                  : place.filename().string().rfind(outputStart, 0) == 0;
               });
    }

private:
    static bool holdsOnlyLogbooks(const fs::path& place) {
        return std::all_of(fs::directory_iterator(place), fs::directory_iterator(), isLogbookFile);
    }

    static bool isLogbookFile(const fs::path& file) {
        const std::string name = file.filename();
        return name.rfind("lgbCustomer.", 0) == 0 || name.rfind("lgbService.", 0) == 0;
    }

    const support::TemporaryFolder folder;
    const fs::path home = folder / "home";
    const fs::path work = folder / "work";
    const fs::path before = fs::current_path();
};

/// Lets the tool read an answer and keeps what it says from the terminal.
class Streams {
public:
    explicit Streams(const std::string& answer) : input(answer) { std::cin.clear(); }

    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    ~Streams() {
        std::cin.rdbuf(cin);
        std::cout.rdbuf(cout);
        std::cerr.rdbuf(cerr);
    }

private:
    std::stringbuf input;
    std::stringbuf output;
    std::streambuf* const cin = std::cin.rdbuf(&input);
    std::streambuf* const cout = std::cout.rdbuf(&output);
    std::streambuf* const cerr = std::cerr.rdbuf(&output);
};

int exitCodeOf(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    const Streams streams("yes\n");
    return tool::run(static_cast<int>(argv.size()), argv.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> arguments = splitAtNul(std::string(data, data + size));
    dropFollow(arguments);
    confinePaths(arguments);
    const Surroundings surroundings;
    const int exitCode = exitCodeOf(arguments);
    fuzz::require(exitCode >= 0 && exitCode <= 2, "the tool ends with an exit code of its own");
    fuzz::require(surroundings.holdOnlyLogbooksAndOutput(), "the tool writes logbooks and its output alone");
    return 0;
}

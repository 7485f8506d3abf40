#include "output.h"

#include "terminal.h"

#include <fcntl.h>
#include <unistd.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <system_error>

namespace tool {

namespace fs = std::filesystem;

namespace {

/// A path without links as far as it exists.
fs::path resolved(const fs::path& path) {
    std::error_code error;
    const fs::path found = fs::weakly_canonical(fs::absolute(path), error);
    return error ? fs::absolute(path) : found;
}

bool areSame(const fs::path& one, const fs::path& other) {
    std::error_code none;
    return fs::equivalent(one, other, none) || resolved(one) == resolved(other);
}

/// Whether a file is a logbook, or one of those that SQLite keeps beside it.
bool belongsTo(const fs::path& logbook, const std::string& file) {
    const char* const ends[] = {"", "-wal", "-shm", "-journal"};
    return std::any_of(std::begin(ends), std::end(ends),
                       [&](const char* end) { return areSame(logbook.string() + end, file); });
}

void refuseLogbook(const Selection& selection, const std::string& file) {
    for (const std::string& name : logbookNames) {
        if (belongsTo(fileOf({selection.folder, name}), file)) {
            throw CLI::ValidationError("--output", fmt::format("{} is the {} logbook itself", file, name));
        }
    }
}

}  // namespace

bool isSeen(const std::string& file) {
    std::error_code none;
    if (file.empty() || !fs::is_character_file(file, none)) {
        return file.empty() && isTerminal();
    }
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    const bool found = isatty(descriptor) == 1;
    ::close(descriptor);
    return found;
}

void writeOutput(const Selection& selection, const std::string& file, const Writer& write) {
    if (file.empty()) {
        write(std::cout);
        return;
    }
    refuseLogbook(selection, file);
    writeFile(file, write);
}

}  // namespace tool

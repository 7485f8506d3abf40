#include "output.h"

#include "foundFile.h"
#include "rights.h"
#include "terminal.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
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

// What stands behind the name of a logbook's own files.
constexpr std::array ends = {"", "-wal", "-shm", "-journal", "-lock", "-making", "-healed"};

bool belongsTo(const fs::path& logbook, const fs::path& file) {
    return std::any_of(ends.begin(), ends.end(),
                       [&](const char* end) { return areSame(logbook.string() + end, file); });
}

/// What a file begins with; nothing when it is no regular one. Waits for none that somebody has put in its place.
std::string beginningOf(const fs::path& file, std::size_t count) {
    try {
        const FilePlace place = placeOf(file);
        if (!place.found || !S_ISREG(place.found->st_mode)) {
            return "";
        }
        const Descriptor found = opened(place, O_RDONLY | O_NONBLOCK);
        std::string bytes(count, '\0');
        bytes.resize(static_cast<std::size_t>(std::max<ssize_t>(pread(found, bytes.data(), bytes.size(), 0), 0)));
        return bytes;
    } catch (const Reason&) {
    } catch (const std::runtime_error&) {  // a link of somebody else's, which is not written to either
    }
    return "";
}

/// By what it begins with: SQLite's name, and ours where its format has room for one.
bool isLogbook(const fs::path& file) {
    constexpr std::string_view format("SQLite format 3\0", 16);
    constexpr std::string_view application = "TqZL";
    constexpr std::size_t applicationAt = 68;
    const std::string begin = beginningOf(file, applicationAt + application.size());
    const std::string_view bytes = begin;
    return bytes.size() > applicationAt && bytes.substr(0, format.size()) == format &&
           bytes.substr(applicationAt) == application;
}

/// Whether it is called as a logbook's file is, damaged ones and those that were set aside among them.
bool isCalledLogbook(const fs::path& file) {
    const std::string called = file.filename();
    return std::any_of(logbookNames.begin(), logbookNames.end(), [&](const std::string& logbook) {
        const std::string name = databaseName({"", logbook});
        return called.rfind(name + ".db", 0) == 0 || called.rfind(name + ".damaged-", 0) == 0;
    });
}

/// Whether it is one of any logbook's files, wherever that is.
bool isOfSomeLogbook(const std::string& file) {
    return isCalledLogbook(file) || std::any_of(ends.begin(), ends.end(), [&](const std::string& end) {
               const std::size_t behind = file.size() - std::min(file.size(), end.size());
               return file.substr(behind) == end && isLogbook(file.substr(0, behind));
           });
}

void refuseLogbook(const Selection& selection, const std::string& file) {
    const CallersRights callers;
    for (const std::string& name : logbookNames) {
        if (belongsTo(fileOf({selection.folder, name}), file)) {
            throw CLI::ValidationError("--output", fmt::format("{} is the {} logbook itself", file, name));
        }
    }
    if (isOfSomeLogbook(resolved(file))) {
        throw CLI::ValidationError("--output", file + " is a logbook, or one of its files");
    }
}

}  // namespace

void writeOutput(const Selection& selection, const std::string& file, const Writer& write) {
    if (file.empty()) {
        write(std::cout, isTerminal());
        return;
    }
    refuseLogbook(selection, file);
    writeFile(file, write);
}

}  // namespace tool

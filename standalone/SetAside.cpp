#include "SetAside.h"

#include "failures.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <memory>
#include <set>
#include <string_view>
#include <system_error>

namespace standalone {

namespace {

constexpr unsigned long mostGivenOut = 1'000'000'000;  // a name with more was made by somebody else

}  // namespace

SetAside::SetAside(const LogbookFiles& files) : folder(files.folder), beginning(nameOf(files.database)) {
    beginning.resize(std::min(beginning.size(), beginning.rfind('.')));
    beginning += ".damaged-";
}

std::string SetAside::next() const {
    const std::set<unsigned long> used = numbers();
    return databaseOf(used.empty() ? 1 : *used.rbegin() + 1);
}

std::vector<std::string> SetAside::all() const {
    std::vector<std::string> databases;
    for (const unsigned long number : numbers()) {
        databases.push_back(databaseOf(number));
    }
    return databases;
}

bool SetAside::removeOld(std::size_t kept) const {
    std::vector<std::string> databases = all();
    databases.resize(databases.size() - std::min(databases.size(), kept));
    bool isAnyRemoved = false;
    for (const std::string& database : databases) {
        try {
            removeSet(database);
            isAnyRemoved = true;
        } catch (const DatabaseError&) {  // it stays, and stops nobody
        }
    }
    return isAnyRemoved;
}

/// By the C library: the standard one's iterator ends the program when there is no memory.
std::set<unsigned long> SetAside::numbers() const {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    if (!entries && errno != ENOENT) {
        refuse(folder, errno);
    }
    std::set<unsigned long> found;
    while (const dirent* const entry = entries ? readdir(entries.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        unsigned long number = 0;
        if (name.substr(0, beginning.size()) != beginning) {
            continue;
        }
        const auto [end, error] = std::from_chars(name.data() + beginning.size(), name.data() + name.size(), number);
        constexpr std::string_view ending = ".db";
        if (error == std::errc() && number < mostGivenOut && std::string_view(end).substr(0, ending.size()) == ending) {
            found.insert(number);
        }
    }
    return found;
}

void removeSet(const std::string& database) {
    for (const char* const end : {"", "-wal", "-shm"}) {
        removeFile(database + end);
    }
}

}  // namespace standalone

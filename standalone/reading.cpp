#include "reading.h"

#include "LogbookPages.h"
#include "Waiting.h"
#include "WriteAheadLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

namespace standalone {

namespace {

/// The file's name as a URI, without a host even if it begins with two slashes.
std::string uriOf(const std::string& file) {
    std::string uri = "file://";
    for (const char letter : file) {
        const std::size_t special = std::string_view("%?#").find(letter);
        if (special == std::string_view::npos) {
            uri += letter;
        } else {
            uri += std::array{"%25", "%3f", "%23"}.at(special);
        }
    }
    return uri;
}

/// Whether what SQLite met comes of others who work on the file, and passes.
bool isPassing(const SqliteError& met) {
    constexpr std::array all = {SQLITE_BUSY, SQLITE_LOCKED, SQLITE_PROTOCOL, SQLITE_READONLY};
    return std::find(all.begin(), all.end(), met.outcome()) != all.end() ||
           (met.outcome() == SQLITE_CANTOPEN && (met.systemError() == 0 || met.systemError() == ENOENT));
}

/// SQLite's own checks call a page damaged that could not be read.
void requireReadable(const std::string& database) {
    const DatabaseBytes file(database);
    std::vector<char> bytes(std::size_t{64} * 1024);
    for (std::size_t at = 0; file.read(at, bytes.data(), bytes.size()) == bytes.size(); at += bytes.size()) {
    }
}

bool holdsAnything(const std::string& log) {
    std::array<char, LogMark::bytes> begin{};
    const OpenFile file(log, O_RDONLY);
    const std::size_t count = file.read(0, begin.data(), begin.size());
    return count == begin.size() && !LogMark::fromBytes(begin) &&
           std::any_of(begin.begin(), begin.end(), [](char byte) { return byte != 0; });
}

}  // namespace

ReadingConnection::States ReadingConnection::statesOf(const LogbookFiles& files) {
    return {stateOf(files.database), stateOf(files.log), stateOf(files.index)};
}

ReadingConnection::ReadingConnection(LogbookFiles names)
    : files(std::move(names)), before(statesOf(files)), connection(connect()) {
    distrust(connection);
}

Connection ReadingConnection::connect() const {
    requireNoJournal(files);
    if (!before[0]) {
        throw DatabaseError(Failure::Missing, files.database + ": there is no such logbook");
    }
    requireNotEmpty(*before[0]);
    const bool isInUse = before[1] && before[2];  // without a log SQLite would make one
    if (!isInUse && before[1] && holdsAnything(files.log)) {
        if (!isStillRight()) {
            throw Fault{Failure::Busy, "has just come into use"};
        }
        throw DatabaseError(Failure::Damaged, files.database + ": its newest records are in " + files.log +
                                                  ", which can't be read without " + files.index);
    }
    try {
        return Connection(uriOf(pathForSqlite(files.database)) + (isInUse ? "?readonly_shm=1" : "?immutable=1"),
                          SQLITE_OPEN_READONLY | SQLITE_OPEN_URI | SQLITE_OPEN_NOFOLLOW);
    } catch (const SqliteError& exception) {
        if (eaccess(files.database.c_str(), R_OK) != 0) {
            refuse(files.database, errno);
        }
        refuse(files.database, exception);
    }
}

const Examination& ReadingConnection::examination() {
    if (!examined) {
        examined = examineStructure(connection);
    }
    return *examined;
}

bool ReadingConnection::isStillRight() const noexcept {
    try {
        const States now = statesOf(files);
        const bool isCopy = !before[1] || !before[2];
        const auto isSame = [&](std::size_t file) {
            return now[file].has_value() == before[file].has_value() &&
                   (!now[file] || (now[file]->isSameFile(*before[file]) &&
                                   (!isCopy || now[file]->modified == before[file]->modified)));
        };
        return isSame(0) && isSame(1) && isSame(2);
    } catch (const std::exception&) {
        return false;
    }
}

void PatientReader::read(FunctionRef<void(ReadingConnection&)> read) {
    const Waiting waiting;
    bool isSecondLook = false;
    while (true) {
        try {
            if (!connection || !connection->isStillRight()) {
                connection.reset();
                connection = std::make_unique<ReadingConnection>(files);
            }
            read(*connection);
            if (connection->isStillRight()) {
                return;
            }
        } catch (const SqliteError& exception) {
            const bool maySucceed = isPassing(exception) || looksAgain(failureOf(exception), isSecondLook);
            if (!maySucceed || waiting.isOver()) {
                refuse(files.database, exception);
            }
        } catch (const Fault& fault) {
            const bool maySucceed = fault.kind == Failure::Busy || looksAgain(fault.kind, isSecondLook);
            if (!maySucceed || waiting.isOver()) {
                refuse(files.database, fault);
            }
        }
        connection.reset();
        waiting.goesOn();
    }
}

/// Others may have come in between; and what could not be read may look damaged.
bool PatientReader::looksAgain(Failure failure, bool& isSecondLook) const {
    if (connection && !connection->isStillRight()) {
        return true;
    }
    if (failure != Failure::Damaged || std::exchange(isSecondLook, true)) {
        return false;
    }
    requireReadable(files.database);
    return true;
}

}  // namespace standalone

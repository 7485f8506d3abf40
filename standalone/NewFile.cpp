#include "NewFile.h"

#include "LogbookFiles.h"
#include "failures.h"
#include "schema.h"
#include "storedRecord.h"

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace standalone {

namespace {

// A record as the library makes it takes 200 to 300 bytes, and the oldest and newest pages are not full.
constexpr std::int64_t bytesPerRecord = 400;
constexpr std::int64_t blockBytes = 4096;
constexpr std::int64_t leastBytes = std::int64_t{64} * 1024;

void fillWithZeros(const OpenFile& file, std::int64_t from, std::int64_t to) {
    const std::vector<char> zeros(static_cast<std::size_t>(blockBytes));
    for (std::int64_t at = from; at < to; at += blockBytes) {
        file.write(at, zeros.data(), static_cast<std::size_t>(std::min(blockBytes, to - at)));
    }
}

}  // namespace

LogbookId newId() {
    LogbookId id{};
    if (getentropy(id.data(), id.size()) != 0) {
        refuse("/dev/urandom", errno);
    }
    return id;
}

std::int64_t spaceFor(std::int64_t capacity) {
    const std::int64_t blocks = (bytesPerRecord * capacity + blockBytes - 1) / blockBytes;
    return std::max(leastBytes, blocks * blockBytes);
}

NewFile::NewFile(std::string path, const LogbookHead& itsHead, const LostRanges& lost)
    : file(std::move(path)), head(itsHead) {
    removeFile(file);
    const OpenFile forOwnerAndGroup(file, O_RDWR | O_CREAT | O_EXCL);
    attempt([&] {
        connection.emplace(pathForSqlite(file), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW);
        connection->execute("PRAGMA page_size = " + std::to_string(schema::pageBytes));
        connection->execute("PRAGMA journal_mode = OFF");  // a kill leaves a file that nobody uses
        connection->execute("PRAGMA synchronous = OFF");
        connection->execute("BEGIN");
        connection->execute("PRAGMA application_id = " + std::to_string(schema::applicationId));
        connection->execute("PRAGMA user_version = " + std::to_string(schema::version));
        for (const schema::Table& table : schema::tables) {
            if (table.sql != nullptr) {
                connection->execute(table.sql);
            }
        }
        Statement insertLogbook(*connection, schema::insertLogbook);
        insertLogbook.bindBytes(1, head.id);
        insertLogbook.bind(2, head.capacity);
        insertLogbook.bind(3, head.cleared);
        insertLogbook.bind(4, std::int64_t{checksum(head.id, head.capacity, head.cleared)});
        insertLogbook.run();
        Statement insertLost(*connection, schema::insertLost);
        for (const LostRange& range : lost.all()) {
            insertLost.bind(1, range.first);
            insertLost.bind(2, range.last);
            insertLost.bind(3, range.found);
            insertLost.run();
        }
        insertRecord.emplace(*connection, schema::insertRecord);
    });
}

NewFile::~NewFile() {
    insertRecord.reset();
    connection.reset();
    if (!finished) {
        unlink(file.c_str());
    }
}

template <typename Operation>
void NewFile::attempt(Operation operation) {
    try {
        operation();
    } catch (const SqliteError& exception) {
        if (failureOf(exception) == Failure::Damaged) {  // not a file of ours that is just being made
            throw DatabaseError(Failure::InputOutput, file + ": " + exception.what());
        }
        refuse(file, exception);
    }
}

void NewFile::add(const NumberedRecord& record) {
    attempt([&] { insert(*insertRecord, record, head.id); });
}

void NewFile::finish() {
    attempt([&] {
        insertRecord.reset();
        connection->execute("COMMIT");
        connection.reset();
    });
    const OpenFile made(file, O_RDWR);
    constexpr std::int64_t versionsAt = 18;
    made.write(versionsAt, "\2\2", 2);  // from now on with a write-ahead log
    const std::int64_t bytes = made.state().bytes;
    const std::int64_t space = std::max(bytes, spaceFor(head.capacity));
    if (space - bytes > freeBytes(file)) {
        refuse(file, ENOSPC);  // and nobody else's space is taken in trying
    }
    if (!made.allot(space, true)) {
        fillWithZeros(made, bytes, space);
    }
    made.sync();
    finished = true;
}

}  // namespace standalone

#include "LogbookFile.h"

#include "Transaction.h"
#include "errors.h"
#include "schema.h"

#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>
#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <limits>
#include <system_error>
#include <thread>

namespace standalone {

namespace {

constexpr std::chrono::milliseconds lockTimeout(5000);

// Stand in the header of every file: "TqZL", and the version of the tables below.
constexpr int applicationId = 0x54715a4c;
constexpr int schemaVersion = 1;

// A commit writes each page that it touches whole. Of a record as the library makes it three fit into a page.
constexpr int pageBytes = 1024;

// A record as the library makes it takes 200 to 300 bytes, and the oldest and newest pages are not full.
constexpr std::int64_t bytesPerRecord = 400;

// The log is written back into the database when it has grown by so much, and has as much again for what is added while
// a reader holds it up.
constexpr int checkpointBytes = 64 * 1024;
constexpr int logBytes = 2 * checkpointBytes;

/// What a file turned out to be.
enum class Content { Nothing, Logbook };

int pragma(SQLite::Database& connection, const std::string& name) {
    return connection.execAndGet("PRAGMA " + name).getInt();
}

void checkStructure(SQLite::Database& connection) {
    const std::string found = connection.execAndGet("PRAGMA quick_check(1)").getString();
    if (found != "ok") {
        throw DatabaseError("damaged: " + found.substr(found.rfind('\n') + 1));
    }
}

/// Records are numbered without gaps, and behind those that were cleared.
void checkNumbers(SQLite::Database& connection) {
    SQLite::Statement numbers(connection, schema::selectNumbers);
    numbers.executeStep();
    const std::int64_t count = numbers.getColumn(0);
    const std::int64_t first = numbers.getColumn(1);
    const std::int64_t last = numbers.getColumn(2);
    const std::int64_t cleared = numbers.getColumn(3);
    if (count > 0 && last - first != count - 1) {
        throw DatabaseError("damaged: of the records " + std::to_string(first) + " to " + std::to_string(last) +
                            " only " + std::to_string(count) + " are there");
    }
    if (count > 0 && first <= cleared) {
        throw DatabaseError("damaged: record " + std::to_string(first) + " is there, but all up to " +
                            std::to_string(cleared) + " were cleared");
    }
}

/// Only reads, so that a file that is refused stays as it is. Within a transaction, or what it sees may be half of what
/// another process is making.
Content examine(SQLite::Database& connection) {
    const int id = pragma(connection, "application_id");
    const int version = pragma(connection, "user_version");
    if (id == 0 && version == 0 && connection.execAndGet("SELECT count(*) FROM sqlite_master").getInt() == 0) {
        return Content::Nothing;
    }
    if (id != applicationId) {
        throw DatabaseError("an SQLite database, but not a logbook");
    }
    if (version != schemaVersion) {
        throw DatabaseError("written by schema " + std::to_string(version) + ", this program reads " +
                            std::to_string(schemaVersion));
    }
    checkStructure(connection);
    checkNumbers(connection);
    return Content::Logbook;
}

Content contentOf(SQLite::Database& connection) {
    TransactionStatements statements(connection, TransactionStatements::reading);
    const Transaction transaction(statements);
    return examine(connection);
}

/// Somebody else may be making the same logbook at this moment: whoever gets the lock first does.
void makeLogbook(SQLite::Database& connection) {
    connection.exec("PRAGMA page_size = " + std::to_string(pageBytes));  // fixed once the transaction has begun
    TransactionStatements statements(connection, TransactionStatements::writing);
    Transaction transaction(statements);
    if (examine(connection) == Content::Nothing) {
        connection.exec("PRAGMA application_id = " + std::to_string(applicationId));
        connection.exec("PRAGMA user_version = " + std::to_string(schemaVersion));
        connection.exec(schema::makeTables);
    }
    transaction.commit();
}

/// Lets the database file grow by no less than a full logbook needs, at once. What the disk can't give is done without.
void setSpaceAside(SQLite::Database& connection, std::uint32_t capacity) {
    constexpr std::int64_t block = 4096;
    const std::int64_t blocks = (bytesPerRecord * capacity + block - 1) / block;
    int bytes = static_cast<int>(std::min<std::int64_t>(blocks * block, std::numeric_limits<int>::max()));
    sqlite3_file_control(connection.getHandle(), "main", SQLITE_FCNTL_CHUNK_SIZE, &bytes);
}

/// The same for the write-ahead log, which keeps its space when the last connection is closed.
void setLogSpaceAside(sqlite3* connection) {
    int persist = 1;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    sqlite3_exec(connection, "SELECT through FROM cleared", nullptr, nullptr, nullptr);  // opens the log
    sqlite3_file* log = nullptr;
    sqlite3_file_control(connection, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
    if (log != nullptr && log->pMethods != nullptr) {
        int chunk = logBytes;
        sqlite3_int64 size = logBytes;
        log->pMethods->xFileControl(log, SQLITE_FCNTL_CHUNK_SIZE, &chunk);
        log->pMethods->xFileControl(log, SQLITE_FCNTL_SIZE_HINT, &size);
    }
}

/// Each commit is one append to the write-ahead log. SQLite does not wait when two processes switch at once, as each
/// would wait for the other; so this does.
void switchToWriteAheadLog(SQLite::Database& connection) {
    constexpr const char* sql = "PRAGMA journal_mode = WAL";
    const auto deadline = std::chrono::steady_clock::now() + lockTimeout;
    while (connection.tryExec(sql) == SQLITE_BUSY && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    connection.exec(sql);
}

/// The file's name as a URI, without a host even if it begins with two slashes.
std::string uriOf(std::string file) {
    boost::algorithm::replace_all(file, "%", "%25");
    boost::algorithm::replace_all(file, "?", "%3f");
    boost::algorithm::replace_all(file, "#", "%23");
    return (file.front() == '/' ? "file://" : "file:") + file;
}

bool exists(const std::string& file) {
    std::error_code error;
    const bool found = std::filesystem::exists(file, error);
    if (error) {
        throw DatabaseError(error.message());
    }
    return found;
}

bool holdsAnything(const std::string& file) {
    if (!exists(file)) {
        return false;
    }
    std::ifstream content(file, std::ios::binary);
    const int first = content.get();
    if (!content.is_open() || content.bad()) {
        throw DatabaseError(file + " can't be read");
    }
    return first > 0;  // an emptied log starts with a zero
}

/// Does what it is to do with a file; what it throws then names the file.
template <typename Operation>
auto naming(const std::string& file, Operation operation) {
    try {
        return operation();
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    } catch (const DatabaseError& error) {
        refuse(file, error);
    }
}

}  // namespace

void refuse(const std::string& file, const std::exception& reason) {
    throw DatabaseError(file + ": " + reason.what());
}

SQLite::Database openLogbook(const std::string& file, std::uint32_t capacity) {
    return naming(file, [&] {
        SQLite::Database connection(file, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                                    static_cast<int>(lockTimeout.count()));
        setSpaceAside(connection, capacity);
        if (contentOf(connection) == Content::Nothing) {
            makeLogbook(connection);
        }
        switchToWriteAheadLog(connection);
        connection.exec("PRAGMA synchronous = FULL");   // a commit returns when it would survive power loss
        connection.exec("PRAGMA secure_delete = OFF");  // else pages are written only to be forgotten
        connection.exec("PRAGMA wal_autocheckpoint = " +
                        std::to_string(checkpointBytes / pragma(connection, "page_size")));
        setLogSpaceAside(connection.getHandle());
        return connection;
    });
}

// The index of the write-ahead log lies beside a logbook in use, and stays when it is closed; only read, it shows what
// the log holds. Without it the file is a copy, to be taken as it is.
SQLite::Database connectForReading(const std::string& file) {
    return naming(file, [&] {
        if (!exists(file)) {
            throw DatabaseError("there is no such logbook");
        }
        const bool inUse = exists(file + "-shm");
        if (!inUse && holdsAnything(file + "-wal")) {
            throw DatabaseError("its newest records are in " + file + "-wal, which can't be read without " + file +
                                "-shm");
        }
        return SQLite::Database(uriOf(file) + (inUse ? "?readonly_shm=1" : "?immutable=1"),
                                SQLite::OPEN_READONLY | SQLite::OPEN_URI, static_cast<int>(lockTimeout.count()));
    });
}

SQLite::Database openForReading(const std::string& file) {
    SQLite::Database connection = connectForReading(file);
    naming(file, [&] {
        if (contentOf(connection) == Content::Nothing) {
            throw DatabaseError("an empty database, not a logbook");
        }
    });
    return connection;
}

void emptyWriteAheadLog(SQLite::Database& connection) noexcept {
    if (sqlite3_wal_checkpoint_v2(connection.getHandle(), "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) ==
        SQLITE_OK) {
        setLogSpaceAside(connection.getHandle());
    }
}

void checkpoint(SQLite::Database& connection) noexcept {
    sqlite3_wal_checkpoint_v2(connection.getHandle(), "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}

}  // namespace standalone

#include "LogbookReader.h"

#include "LogbookFile.h"
#include "schema.h"
#include "storedRecord.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <string>
#include <utility>

namespace standalone {

namespace {

constexpr const char* secondsBefore =
    ", (SELECT seconds FROM record AS before WHERE before.number = record.number - 1)";
constexpr int secondsBeforeColumn = 6;

}  // namespace

struct LogbookReader::Connection {
    explicit Connection(std::string path)
        : file(std::move(path)),
          database(openForReading(file)),
          recordsBefore(database, schema::selectRecords("number < ? ORDER BY number DESC LIMIT ?", secondsBefore)),
          recordsAfter(database, schema::selectRecords("number > ? ORDER BY number LIMIT ?", secondsBefore)) {}

    std::vector<StoredRecord> read(Statement& statement, std::int64_t number, unsigned int count) const {
        try {
            const Use use(statement);
            statement.bind(1, number);
            statement.bind(2, std::int64_t{count});
            std::vector<StoredRecord> records;
            while (statement.step()) {
                records.push_back(storedRecord(statement));
                if (!statement.isNull(secondsBeforeColumn)) {
                    records.back().secondsBefore = statement.number(secondsBeforeColumn);
                }
            }
            return records;
        } catch (const SQLite::Exception& exception) {
            refuse(file, exception);
        }
    }

    std::string file;
    SQLite::Database database;
    Statement recordsBefore;
    Statement recordsAfter;
};

LogbookReader::LogbookReader(const std::filesystem::path& path) {
    try {
        connection = std::make_unique<Connection>(path.string());
    } catch (const SQLite::Exception& exception) {
        refuse(path.string(), exception);
    }
}

LogbookReader::~LogbookReader() = default;

std::vector<StoredRecord> LogbookReader::before(std::int64_t number, unsigned int count) {
    return connection->read(connection->recordsBefore, number, count);
}

std::vector<StoredRecord> LogbookReader::after(std::int64_t number, unsigned int count) {
    return connection->read(connection->recordsAfter, number, count);
}

std::int64_t LogbookReader::count() {
    try {
        return connection->database.execAndGet("SELECT count(*) FROM record").getInt64();
    } catch (const SQLite::Exception& exception) {
        refuse(connection->file, exception);
    }
}

std::vector<std::string> structuralDamage(const std::filesystem::path& path) {
    const std::string file = path.string();
    SQLite::Database connection = connectForReading(file);
    try {
        std::vector<std::string> damage;
        SQLite::Statement check(connection, "PRAGMA integrity_check");
        while (check.executeStep()) {
            const std::string line = check.getColumn(0);
            if (line != "ok") {
                damage.push_back(line);
            }
        }
        return damage;
    } catch (const SQLite::Exception& exception) {
        refuse(file, exception);
    }
}

}  // namespace standalone

#include "LogbookReader.h"

#include "Connection.h"
#include "SetAside.h"
#include "reading.h"
#include "schema.h"
#include "storedRecord.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace standalone {

namespace {

constexpr const char* secondsBefore =
    ", (SELECT seconds FROM record AS before WHERE before.number = record.number - 1)";
constexpr int secondsBeforeColumn = 6;

/// Appends what a row of an integrity check names, which may be several damages, under a title.
void appendDamages(std::vector<std::string>& damages, std::string_view row) {
    constexpr std::string_view title = "***";
    while (!row.empty()) {
        const std::string_view line = row.substr(0, row.find('\n'));
        if (line.substr(0, title.size()) != title) {
            damages.emplace_back(line);
        }
        row.remove_prefix(std::min(row.size(), line.size() + 1));
    }
}

}  // namespace

struct LogbookReader::File {
    explicit File(const std::string& path) : reader(path) {
        reader.read([](ReadingConnection& connection) { connection.examination(); });
    }

    std::vector<StoredRecord> read(const std::string& sql, std::int64_t number, unsigned int count) {
        std::vector<StoredRecord> records;
        reader.read([&](ReadingConnection& connection) {
            records.clear();
            const LogbookId& id = connection.examination().head.id;
            Statement statement(connection.database(), sql);
            statement.bind(1, number);
            statement.bind(2, std::int64_t{count});
            while (statement.step()) {
                records.push_back(storedRecord(statement, id));
                if (!statement.isNull(secondsBeforeColumn)) {
                    records.back().secondsBefore = statement.number(secondsBeforeColumn);
                }
            }
        });
        return records;
    }

    PatientReader reader;
};

LogbookReader::LogbookReader(const std::filesystem::path& path) : file(std::make_unique<File>(path.string())) {}

LogbookReader::~LogbookReader() = default;

std::vector<StoredRecord> LogbookReader::before(std::int64_t number, unsigned int count) {
    static const std::string sql = schema::selectRecords("number < ? ORDER BY number DESC LIMIT ?", secondsBefore);
    return file->read(sql, number, count);
}

std::vector<StoredRecord> LogbookReader::after(std::int64_t number, unsigned int count) {
    static const std::string sql = schema::selectRecords("number > ? ORDER BY number LIMIT ?", secondsBefore);
    return file->read(sql, number, count);
}

std::int64_t LogbookReader::count() {
    std::int64_t records = 0;
    file->reader.read([&](ReadingConnection& connection) {
        records = numberFrom(connection.database(), "SELECT count(*) FROM record");
    });
    return records;
}

LogbookDescription LogbookReader::description() {
    LogbookDescription description{};
    file->reader.read([&](ReadingConnection& connection) {
        const LogbookHead head = headOf(connection.database());
        description = {"", static_cast<std::uint32_t>(head.capacity), head.cleared,
                       lostOf(connection.database()).all()};
        for (const unsigned char byte : head.id) {
            constexpr const char* digits = "0123456789abcdef";
            description.id += {digits[byte >> 4], digits[byte & 15]};
        }
    });
    return description;
}

std::vector<std::string> structuralDamage(const std::filesystem::path& path) {
    std::vector<std::string> damage;
    try {
        PatientReader(path.string()).read([&](ReadingConnection& connection) {
            damage.clear();
            Statement check(connection.database(), "PRAGMA integrity_check");
            while (check.step()) {
                const std::string row = check.text(0);
                if (row != "ok") {
                    appendDamages(damage, row);
                }
            }
            if (!damage.empty()) {
                throw Fault{Failure::Damaged, damage.front()};  // to be looked at again
            }
        });
    } catch (const DatabaseError& error) {
        if (error.kind() != Failure::Damaged || damage.empty()) {
            throw;
        }
    }
    return damage;
}

std::vector<std::filesystem::path> filesSetAside(const std::filesystem::path& logbook) {
    const std::vector<std::string> databases = SetAside(LogbookFiles(logbook.string())).all();
    return {databases.begin(), databases.end()};
}

}  // namespace standalone

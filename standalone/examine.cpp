#include "examine.h"

#include "LogbookFiles.h"
#include "Transaction.h"
#include "failures.h"
#include "schema.h"
#include "storedRecord.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>

namespace standalone {

namespace {

[[noreturn]] void refuseAsDamaged(const std::string& what) {
    throw Fault{Failure::Damaged, "damaged: " + what};
}

enum class Tables { None, Ours, Others };

/// Compared byte by byte: a database with texts in UTF-16 has others.
Tables tablesOf(Connection& connection) {
    Statement found(connection, "SELECT name, sql FROM sqlite_master");
    std::size_t count = 0;
    for (; found.step(); ++count) {
        if (count == schema::tables.size()) {
            return Tables::Others;
        }
        const schema::Table& table = schema::tables[count];
        const std::string name = found.text(0);
        const std::string sql = found.text(1);
        const bool isOurs = table.sql == nullptr ? found.isNull(1) : sql == table.sql;
        if (name != table.name || !isOurs) {
            return Tables::Others;
        }
    }
    if (count == 0) {
        return Tables::None;
    }
    return count == schema::tables.size() ? Tables::Ours : Tables::Others;
}

/// Whether it is ours is told by its header and by its tables; where they differ, the one is damaged or the other
/// newer.
void requireLogbook(Connection& connection) {
    const std::int64_t id = numberFrom(connection, "PRAGMA application_id");
    const std::int64_t version = numberFrom(connection, "PRAGMA user_version");
    const Tables tables = tablesOf(connection);
    if (tables == Tables::Ours && (id != schema::applicationId || version != schema::version)) {
        refuseAsDamaged("its header is not that of a logbook");
    }
    if (id != schema::applicationId) {
        throw Fault{Failure::Foreign, tables == Tables::None ? "an empty database, not a logbook"
                                                             : "an SQLite database, but not a logbook"};
    }
    if (version != schema::version) {
        throw Fault{
            version > schema::version ? Failure::Newer : Failure::Foreign,
            "written by schema " + std::to_string(version) + ", this program reads " + std::to_string(schema::version)};
    }
    if (tables != Tables::Ours) {
        refuseAsDamaged("its tables are not those of a logbook");
    }
}

void requireStructure(Connection& connection) {
    constexpr std::int64_t mostPages = std::int64_t{1} << 24;  // for a list of which there is memory
    if (numberFrom(connection, "PRAGMA page_count") > mostPages) {
        refuseAsDamaged("it can't have so many pages");
    }
    const std::string found = textFrom(connection, "PRAGMA integrity_check(1)");
    if (found != "ok") {
        refuseAsDamaged(found.substr(found.rfind('\n') + 1));
    }
}

/// Records are numbered without gaps but for lost ranges, and behind those that were cleared.
void requireNumbers(Connection& connection, Examination& found) {
    Statement numbers(connection, schema::selectNumbers);
    numbers.step();
    const std::int64_t count = numbers.number(0);
    const std::int64_t first = numbers.number(1);
    const std::int64_t last = numbers.number(2);
    found.newest = found.lost.newest(std::max(found.head.cleared, last));
    if (count == 0) {
        return;
    }
    found.oldest = first;
    if (first < 1 || last >= highestNumber) {
        refuseAsDamaged("records " + std::to_string(first) + " to " + std::to_string(last) + " can't be");
    }
    const std::int64_t expected = found.lost.recordsBetween(first, last);
    if (expected != count) {
        refuseAsDamaged("of the records " + std::to_string(first) + " to " + std::to_string(last) + " only " +
                        std::to_string(count) + " are there");
    }
    if (first <= found.head.cleared) {
        refuseAsDamaged("record " + std::to_string(first) + " is there, but all up to " +
                        std::to_string(found.head.cleared) + " were cleared");
    }
}

void findDamaged(Connection& connection, Examination& found) {
    Statement records(connection, schema::selectRecords("number > 0 ORDER BY number"));
    while (records.step()) {
        const StoredRecord record = storedRecord(records, found.head.id);
        if (!record.intact) {
            found.damaged.push_back(record.number);
        }
    }
}

using Header = std::array<unsigned char, 100>;

/// As it stands in the database: what a logbook's log may hold of it differs in nothing that is looked at. What a file
/// that was cut short lacks is zeros.
Header headerOf(Connection& connection) {
    Header header{};
    sqlite3_file* const file = connection.file();
    const int outcome = file->pMethods->xRead(file, header.data(), static_cast<int>(header.size()), 0);
    if (outcome != SQLITE_OK && outcome != SQLITE_IOERR_SHORT_READ) {
        throw SqliteError(nullptr, outcome);
    }
    return header;
}

constexpr std::size_t versionsAt = 18;

}  // namespace

LogbookHead headOf(Connection& connection) {
    Statement row(connection, schema::selectLogbook);
    LogbookHead head;
    std::string id;
    if (row.step()) {
        id = row.text(0);
    }
    if (id.size() != head.id.size()) {
        refuseAsDamaged("it does not say which logbook it is");
    }
    std::memcpy(head.id.data(), id.data(), id.size());
    head.capacity = row.number(1);
    head.cleared = row.number(2);
    const bool isWhole = row.number(3) == checksum(head.id, head.capacity, head.cleared) && isPossible(head);
    if (!isWhole || row.step()) {
        refuseAsDamaged("what it says of itself is not what was stored");
    }
    return head;
}

LostRanges lostOf(Connection& connection) {
    constexpr std::size_t mostRanges = 100000;
    Statement rows(connection, schema::selectLost);
    std::vector<LostRange> ranges;
    while (rows.step()) {
        const LostRange range{rows.number(0), rows.number(1), rows.number(2)};
        const std::int64_t before = ranges.empty() ? 0 : ranges.back().last;
        if (range.first <= before || range.last < range.first || range.last >= highestNumber ||
            ranges.size() == mostRanges) {
            refuseAsDamaged("its list of lost numbers is not in order");
        }
        ranges.push_back(range);
    }
    return LostRanges(std::move(ranges));
}

void writeHead(Connection& connection, const LogbookHead& head) {
    Statement update(connection, schema::updateLogbook);
    update.bind(1, head.capacity);
    update.bind(2, head.cleared);
    update.bind(3, std::int64_t{checksum(head.id, head.capacity, head.cleared)});
    update.run();
}

bool isWithoutLog(Connection& connection) {
    const Header header = headerOf(connection);
    const bool isHalfChanged = header[versionsAt] == 2;  // by somebody who was killed
    return (isHalfChanged || header[versionsAt] == 1) && header[versionsAt + 1] == 1;
}

void requireHeader(Connection& connection) {
    struct Bytes {
        std::size_t at;
        std::string_view expected;
    };

    using namespace std::string_view_literals;
    // Versions, reserved bytes and fractions of a page; the format of tables; no vacuum; UTF-8; no vacuum again.
    constexpr Bytes all[] = {
        {versionsAt, "\2\2\0\x40\x20\x20"sv}, {44, "\0\0\0\4"sv}, {52, "\0\0\0\0\0\0\0\1"sv}, {64, "\0\0\0\0"sv}};
    const Header header = headerOf(connection);
    for (const Bytes& bytes : all) {
        if (std::memcmp(header.data() + bytes.at, bytes.expected.data(), bytes.expected.size()) != 0) {
            refuseAsDamaged("its header is not that of a logbook");
        }
    }
}

namespace {

/// SQLite says of sizes that can't be, too, that there is no memory for them.
bool isMemoryLeft() {
    void* const some = sqlite3_malloc(1 << 20);
    sqlite3_free(some);
    return some != nullptr;
}

/// Before anything else needs them, as SQLite reads them all, however many there are.
void readTables(Connection& connection) {
    constexpr int steps = 1000;  // more than for those of a logbook many times over
    sqlite3_progress_handler(
        connection.handle(), steps, [](void*) { return 1; }, nullptr);
    try {
        connection.execute("SELECT 1 FROM sqlite_master LIMIT 0");
    } catch (const SqliteError& met) {
        if (met.outcome() == SQLITE_INTERRUPT || (met.outcome() == SQLITE_NOMEM && isMemoryLeft())) {
            refuseAsDamaged("its tables are not those of a logbook");
        }
        throw;
    }
    sqlite3_progress_handler(connection.handle(), 0, nullptr, nullptr);
}

}  // namespace

void distrust(Connection& connection) {
    sqlite3* const handle = connection.handle();
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, static_cast<int>(mostRowBytes));
    connection.execute("PRAGMA cell_size_check = ON");
    readTables(connection);
}

namespace {

Examination examined(Connection& connection, bool eachRecord) {
    TransactionStatements statements(connection, TransactionStatements::reading);
    const Transaction transaction(statements);
    requireLogbook(connection);
    Examination found;
    found.head = headOf(connection);
    found.lost = lostOf(connection);
    requireStructure(connection);
    requireNumbers(connection, found);
    if (eachRecord) {
        findDamaged(connection, found);
    }
    return found;
}

}  // namespace

Examination examine(Connection& connection) {
    return examined(connection, true);
}

Examination examineStructure(Connection& connection) {
    return examined(connection, false);
}

}  // namespace standalone

#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace support {

/// What a closed logbook says of its numbers, read past its own code.
struct Numbers {
    std::string id;       ///< of the logbook
    std::int64_t newest;  ///< of a record
    bool areWithoutGaps;  ///< each number once, in a record or in a range that was lost
};

inline Numbers numbersOf(const std::filesystem::path& file) {
    const SQLite::Database database("file:" + file.string() + "?immutable=1", SQLite::OPEN_READONLY | SQLite::OPEN_URI);
    SQLite::Statement ranges(database,
                             "SELECT number, number FROM record UNION ALL SELECT first, last FROM lost ORDER BY 1");
    bool areWithoutGaps = true;
    std::int64_t expected = 0;
    while (ranges.executeStep()) {
        const std::int64_t first = ranges.getColumn(0).getInt64();
        const std::int64_t last = ranges.getColumn(1).getInt64();
        areWithoutGaps = areWithoutGaps && (expected == 0 || first == expected) && last >= first;
        expected = last + 1;
    }
    SQLite::Statement head(database, "SELECT id, (SELECT max(number) FROM record) FROM logbook");
    head.executeStep();
    return {head.getColumn(0).getString(), head.getColumn(1).getInt64(), areWithoutGaps};
}

}  // namespace support

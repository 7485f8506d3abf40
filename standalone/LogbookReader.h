#pragma once

#include "LostRange.h"
#include "export.h"

#include <lgb/IDatabase.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace standalone {

/// A record as it lies in the file of a logbook.
struct StoredRecord {
    std::int64_t number;                        ///< counts up from 1 in the order of adding
    lgb::DatabaseRecord content;                ///< not to be trusted unless intact
    bool intact;                                ///< whether the check value stored with the record fits
    std::optional<std::int64_t> secondsBefore;  ///< when the record before it was made, if that one is still kept
};

/// What the file of a logbook says of itself.
struct LogbookDescription {
    std::string id;               ///< what tells it from all others, 32 hexadecimal digits
    std::uint32_t capacity;       ///< in records; 0: unlimited
    std::int64_t cleared;         ///< the last number given out before everything was removed; 0: nothing ever was
    std::vector<LostRange> lost;  ///< oldest first; the numbers of records have no other gaps
};

/// Reads the file of a logbook as it lies there, for tools. Changes and makes no file: a logbook in use by others is
/// read as well as a copy on a medium that can't be written. What others add meanwhile is seen by the next call, and a
/// logbook that takes the place of this one as well. For one thread.
class TQZEL_STANDALONE_EXPORT LogbookReader {
public:
    /// @param path of the file
    /// @throws DatabaseError, here and from every operation, naming the file and the reason
    explicit LogbookReader(const std::filesystem::path& path);

    LogbookReader(const LogbookReader&) = delete;
    LogbookReader& operator=(const LogbookReader&) = delete;
    ~LogbookReader();

    /// Records with numbers below `number`, newest first, no more than `count` of them.
    std::vector<StoredRecord> before(std::int64_t number, unsigned int count);

    /// Records with numbers above `number`, oldest first, no more than `count` of them.
    std::vector<StoredRecord> after(std::int64_t number, unsigned int count);

    /// How many records the file holds, those that are not intact included.
    std::int64_t count();

    /// What the file says of itself.
    LogbookDescription description();

private:
    struct File;
    std::unique_ptr<File> file;
};

/// What is wrong with the structure of a file, thoroughly checked, each index and page of it: a text for each damage,
/// none when it is sound. Changes and makes no file. Whether it holds a logbook or another SQLite database makes no
/// difference.
/// @throws DatabaseError, naming the file and the reason, when there is none or it can't be read as a database at all
TQZEL_STANDALONE_EXPORT std::vector<std::string> structuralDamage(const std::filesystem::path& file);

/// The damaged files of a logbook that were set aside when it was healed, oldest first.
TQZEL_STANDALONE_EXPORT std::vector<std::filesystem::path> filesSetAside(const std::filesystem::path& logbook);

}  // namespace standalone

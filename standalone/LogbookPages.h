#pragma once

#include "Connection.h"
#include "LogbookFiles.h"
#include "LogbookHead.h"
#include "WriteAheadLog.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace standalone {

/// A page as it lies in a database or in its log.
struct PageImage {
    int trust;          ///< of two copies of a record the one with more counts; of one in the database `inDatabase`
    std::size_t index;  ///< in the database, or of the frame in the log: the later, the newer

    static constexpr int inDatabase = 2;

    bool operator<(const PageImage& other) const { return std::tie(trust, index) < std::tie(other.trust, other.index); }

    bool operator==(const PageImage& other) const { return trust == other.trust && index == other.index; }
};

/// In which version a page is looked for.
enum class Version { AsItWasThen, Latest };

/// Where to look.
enum class Extent {
    Everything,
    Log,  ///< and the first pages of the database, which tell which logbook it is
};

/// The bytes of a database, read past all that SQLite knows of it, but through SQLite: whoever else has it open in this
/// process would lose its locks when a descriptor of our own was closed.
class DatabaseBytes {
public:
    explicit DatabaseBytes(const std::string& database);

    std::size_t size() const;

    /// @return how many bytes there were, fewer than asked for at the end
    std::size_t read(std::size_t offset, char* bytes, std::size_t count) const;

private:
    std::string name;
    Connection connection;
    sqlite3_file* file;
};

/// The pages of a logbook's files, whatever their state. Only reads.
class LogbookPages {
public:
    /// @param database its file
    /// @param log its log; there need not be one
    LogbookPages(const std::string& database, const std::string& log);

    std::vector<PageImage> all(Extent extent) const;

    /// All of a page, zeros where the file ends before it does.
    std::string bytesOf(const PageImage& image) const;

    /// The version of a page that went with the one beside it.
    PageImage versionOf(std::uint32_t page, const PageImage& beside, Version version) const;

    /// A page as it is now, as far as can be seen.
    PageImage latest(std::uint32_t page) const;

    bool isIn(LogFrame::Part part, const PageImage& image) const;

    std::size_t pageBytes() const { return size; }

    std::size_t allBytes() const { return bytes; }

    std::size_t logFrames() const { return content.frames.size(); }

    /// No row can be longer.
    std::size_t mostPayload() const { return std::min(bytes, mostRowBytes); }

    /// Whether a page of that number may be somewhere.
    bool mayHold(std::uint32_t page) const { return page > 0 && (page <= bytes / size || isInLog(page)); }

    const std::optional<LogMark>& mark() const { return content.mark; }

    /// Whether the database says that it is one of ours, or is no more than the beginning of a file, or zeros.
    bool isBegun() const { return begun; }

private:
    PageImage imageOf(std::size_t frame) const;
    bool isInLog(std::uint32_t page) const;

    DatabaseBytes database;
    std::optional<OpenFile> log;
    LogContent content;
    std::size_t databaseBytes;
    std::size_t bytes;
    std::uint32_t size = 0;
    bool begun = false;
};

}  // namespace standalone

#pragma once

#include "LogbookHead.h"
#include "LogbookPages.h"
#include "LostRanges.h"
#include "cells.h"
#include "checksum.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace standalone {

/// A record that was found, with texts of its own.
struct FoundRecord {
    std::int64_t number;
    std::int64_t seconds;
    std::int64_t nanoseconds;
    std::string time;
    std::string json;
};

/// Looks for records at every byte of a database and its log, and knows the whole ones by their check values, whatever
/// became of the pages, tables and lists around them. Only reads. Of a record that there is more than once the newest
/// copy counts. Others may write meanwhile: what they write over is not found.
class RecordScan {
public:
    /// @param database its file
    /// @param log its log; there need not be one
    /// @param progress told how many bytes of how many were looked through
    /// @throws DatabaseError, when a file can't be read
    RecordScan(const std::string& database, const std::string& log, Extent extent = Extent::Everything,
               const std::function<void(std::int64_t done, std::int64_t all)>& progress = nullptr);

    /// Whether it is a logbook, or was one: something in it is whole, or it is no more than the beginning of a file.
    bool isLogbook() const;

    /// What the file said of itself, when that is still known.
    const std::optional<LogbookHead>& head() const { return found; }

    /// Which logbook it is, when the file or the mark of its log still tells.
    const std::optional<LogbookId>& id() const { return foundId; }

    /// The numbers of all whole records, also of those that were dropped or cleared, ascending.
    std::vector<std::int64_t> numbers() const;

    /// Whether SQLite would see records in the log, and all of them of another logbook.
    bool isLogForeign() const;

    /// The highest number of a record whose newest copy stands in such a part of the log; 0: there is none.
    std::int64_t newestIn(LogFrame::Part part) const;

    /// Of all such records, ascending.
    std::vector<std::int64_t> numbersIn(LogFrame::Part part) const;

    /// The newest of them and those that stand in the same frame, ascending.
    std::vector<FoundRecord> recordsBesideNewest(LogFrame::Part part) const;

    /// @return nothing, when somebody has written over it since it was found
    std::optional<FoundRecord> record(std::int64_t number) const;

    /// What may be ranges that were known to be lost before.
    const std::vector<LostRange>& perhapsLost() const { return ranges; }

    /// Whether these are all, as their table is whole where it was.
    bool knowsLost() const;

    /// The number of the oldest record kept, as far as the database still tells; older ones have been dropped.
    std::optional<std::int64_t> oldest() const;

    /// Whether that is known of the newest state, as the same tree leads to the newest record.
    bool isTreeTheNewest() const;

    /// The highest number that was given out for certain.
    std::int64_t newestKnown() const;

    /// The highest number that may have been given out; nothing when none is known.
    std::optional<std::int64_t> newest() const;

private:
    /// What looks like a record.
    struct Candidate {
        std::int64_t number;
        std::uint32_t signature;  ///< what its check value says of the id
        PageImage image;
        std::size_t at;
        std::size_t end;
        Version chain;  ///< in which its further pages are
    };

    struct FoundHead {
        LogbookHead head;
        PageImage image;
    };

    enum class Edge { Oldest, Newest };

    /// Where a row stands.
    using Place = std::pair<PageImage, std::size_t>;

    struct EdgeRow {
        std::int64_t number;
        Place place;
    };

    void lookThrough(const PageImage& image);
    void lookForRecord(std::string_view page, std::size_t at, const cells::Cell& cell, const PageImage& image);
    void lookForRow(std::string_view page, const cells::Cell& cell, const PageImage& image);
    void lookForIndexedHead(std::string_view page, std::size_t at, const PageImage& image);
    void choose();
    void keep(std::uint32_t signature);
    std::optional<FoundRecord> read(const Candidate& candidate) const;
    bool isMarked() const;
    std::optional<EdgeRow> edge(Edge which) const;

    LogbookPages pages;
    std::size_t linksFollowed = 0;  // from what looks like a record
    std::vector<Candidate> candidates;
    std::vector<FoundHead> heads;
    std::vector<LostRange> ranges;
    std::optional<LogbookHead> found;
    std::optional<LogbookId> foundId;
    std::map<std::int64_t, Candidate> records;
    std::set<Place> places;  // of all whole copies
};

}  // namespace standalone

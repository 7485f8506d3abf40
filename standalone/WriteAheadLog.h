#pragma once

#include "LogbookFiles.h"
#include "checksum.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace standalone {

/// What stands in an emptied log, where SQLite looks for a header of its own and then takes the log for empty. A log
/// that has neither is damaged, and a database whose newest number is lower is an older copy.
struct LogMark {
    LogbookId id;
    std::int64_t newest;  ///< number given out

    static constexpr std::size_t bytes = 40;

    using Bytes = std::array<char, bytes>;

    Bytes toBytes() const;
    static std::optional<LogMark> fromBytes(const Bytes& all);
};

/// A page as it was when it was written to a log.
struct LogFrame {
    /// What became of it. The order is that of trust: the later, the newer.
    enum class Part {
        Older,      ///< left from before the log began anew
        Open,       ///< of a transaction that was not committed, as far as can be seen
        Committed,  ///< what SQLite sees
        Behind,     ///< committed, but behind damage, which ends the log for SQLite
    };

    std::int64_t offset;  ///< of the page in the log, which may end before the page does
    std::uint32_t page;
    Part part;
    std::size_t last;  ///< index of the last frame of its transaction
};

/// What a log holds, whatever its state.
struct LogContent {
    std::optional<LogMark> mark;
    std::uint32_t pageBytes = 0;
    std::vector<LogFrame> frames;
};

/// @param pageBytes of its database, for a log whose header can't be read
LogContent readLog(const OpenFile& log, std::uint32_t pageBytes);

/// The space of a log: as much as it grows until it is written back, and as much again for what is added while a reader
/// holds that up.
inline constexpr int checkpointBytes = 64 * 1024;
inline constexpr int logBytes = 2 * checkpointBytes;

}  // namespace standalone

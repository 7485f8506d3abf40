#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// Which rows still stand whole in the bytes of a database and its log. It knows what was stored and how SQLite's file
// format writes that, so it compares bytes and guesses nothing; it shares no code with what finds rows it doesn't know.

namespace support {

/// The files of one logbook; what is missing was deleted.
struct Files {
    std::optional<std::string> database;
    std::optional<std::string> log;
    std::optional<std::string> index;
};

constexpr std::size_t pageBytes = 1024;
constexpr std::size_t logHeaderBytes = 32;
constexpr std::size_t frameHeaderBytes = 24;
constexpr std::size_t frameBytes = frameHeaderBytes + pageBytes;

struct Blob {
    std::string bytes;
};

/// Null, integer, text, blob.
using Field = std::variant<std::monostate, std::int64_t, std::string, Blob>;

/// The bytes of a row, wherever it is stored.
struct RowBytes {
    std::string cell;                ///< what of it stands in the page of the table
    std::vector<std::string> chain;  ///< the rest, as much as each further page holds
};

RowBytes tableRow(std::int64_t rowId, const std::vector<Field>& fields);

/// An entry of an index, short enough for one page.
RowBytes indexRow(const std::vector<Field>& fields);

enum class Fate {
    Whole,
    InDoubt,  ///< its further pages are whole only in another version than the one that went with its cell
    Gone,
};

/// The pages of a database and its log. The files must outlast it.
class PageSlots {
public:
    explicit PageSlots(const Files& files);

    Fate fateOf(const RowBytes& row) const;

    /// The pages of the database where copies of a row's cell stand, counted from 0.
    std::set<std::size_t> pagesOf(const RowBytes& row) const;

private:
    struct Slot {
        std::uint32_t page;
        std::string_view bytes;
        std::size_t transactionEnd;  // of a frame in the log: index of the last one written with it
        bool isInLog;
    };

    Fate fateOfChain(const RowBytes& row, const Slot& slot, std::size_t pointerAt) const;
    const Slot* versionBeside(std::uint32_t page, const Slot& slot) const;
    const Slot* anyVersion(std::uint32_t page, const std::string& chunk) const;

    std::vector<Slot> database;
    std::vector<Slot> log;
};

}  // namespace support

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// SQLite's file format, as far as it is needed to find rows without SQLite: https://sqlite.org/fileformat2.html.
namespace standalone::cells {

/// A value of a row.
struct Value {
    enum class Type { Null, Integer, Text, Blob };

    Type type;
    std::int64_t number;     ///< of an integer
    std::string_view bytes;  ///< of a text or a blob
};

/// The beginning of a row in a page.
struct Cell {
    std::int64_t rowId;
    std::size_t payloadBytes;
    std::size_t payloadAt;   ///< in the page
    std::size_t localBytes;  ///< of the payload in this page; the rest is in a chain of pages
};

/// What a row of a table would be that began here; most that begin anywhere are none.
/// @param page all of it
/// @param mostBytes longest payload that can be
std::optional<Cell> cellAt(std::string_view page, std::size_t at, std::size_t mostBytes);

/// The same for an entry of an index, which has no row id.
std::optional<Cell> indexCellAt(std::string_view page, std::size_t at);

/// The values of a row; nothing when the payload is none.
/// @param columns how many there must be
std::optional<std::vector<Value>> valuesOf(std::string_view payload, std::size_t columns);

/// Bytes of a payload that a page of a chain holds, behind the number of the next one.
std::size_t chainBytes(std::size_t pageBytes);

std::uint32_t pageNumberAt(std::string_view page, std::size_t at);

/// A number of two bytes.
std::size_t shortAt(std::string_view page, std::size_t at);

/// Reads a number of one to nine bytes and goes on behind it.
std::optional<std::uint64_t> varint(std::string_view bytes, std::size_t& at);

}  // namespace standalone::cells

#include "cells.h"

#include <iterator>

namespace standalone::cells {

namespace {

constexpr std::size_t longestVarint = 9;
constexpr std::size_t pageNumberBytes = 4;

std::uint64_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

/// How much of a payload is in the page itself.
std::size_t localOf(std::size_t payload, std::size_t pageBytes, std::size_t most) {
    const std::size_t least = (pageBytes - 12) * 32 / 255 - 23;
    if (payload <= most) {
        return payload;
    }
    const std::size_t fitting = least + (payload - least) % (pageBytes - pageNumberBytes);
    return fitting <= most ? fitting : least;
}

std::optional<Cell> cellOf(std::string_view page, std::size_t at, std::uint64_t payload, std::int64_t rowId,
                           std::size_t mostLocal) {
    const std::size_t local = localOf(static_cast<std::size_t>(payload), page.size(), mostLocal);
    const std::size_t inPage = local < payload ? local + pageNumberBytes : local;
    if (at + inPage > page.size()) {
        return std::nullopt;
    }
    return Cell{rowId, static_cast<std::size_t>(payload), at, local};
}

/// Bytes of a value by its type code; nothing for codes that stand for none of ours.
std::optional<std::size_t> sizeOf(std::uint64_t code) {
    constexpr std::size_t sizes[] = {0, 1, 2, 3, 4, 6, 8};
    if (code < std::size(sizes)) {
        return sizes[code];
    }
    if (code == 8 || code == 9) {
        return 0;
    }
    return code < 12 ? std::nullopt : std::optional<std::size_t>((code - 12) / 2);
}

Value valueOf(std::uint64_t code, std::string_view bytes) {
    if (code == 0) {
        return {Value::Type::Null, 0, {}};
    }
    if (code == 8 || code == 9) {
        return {Value::Type::Integer, static_cast<std::int64_t>(code - 8), {}};
    }
    if (code >= 12) {
        return {code % 2 == 0 ? Value::Type::Blob : Value::Type::Text, 0, bytes};
    }
    std::uint64_t number = (byteAt(bytes, 0) & 0x80) != 0 ? ~std::uint64_t{0} : 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        number = number << 8 | byteAt(bytes, i);
    }
    return {Value::Type::Integer, static_cast<std::int64_t>(number), {}};
}

}  // namespace

std::optional<std::uint64_t> varint(std::string_view bytes, std::size_t& at) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < longestVarint && at < bytes.size(); ++i) {
        const std::uint64_t byte = byteAt(bytes, at++);
        if (i + 1 == longestVarint) {
            return number << 8 | byte;
        }
        number = number << 7 | (byte & 0x7f);
        if ((byte & 0x80) == 0) {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<Cell> cellAt(std::string_view page, std::size_t at, std::size_t mostBytes) {
    const auto payload = varint(page, at);
    if (!payload || *payload == 0 || *payload > mostBytes) {
        return std::nullopt;
    }
    const auto rowId = varint(page, at);
    return rowId ? cellOf(page, at, *payload, static_cast<std::int64_t>(*rowId), page.size() - 35) : std::nullopt;
}

std::optional<Cell> indexCellAt(std::string_view page, std::size_t at) {
    const std::size_t mostLocal = (page.size() - 12) * 64 / 255 - 23;
    const auto payload = varint(page, at);
    return payload && *payload <= mostLocal ? cellOf(page, at, *payload, 0, mostLocal) : std::nullopt;
}

std::optional<std::vector<Value>> valuesOf(std::string_view payload, std::size_t columns) {
    std::size_t at = 0;
    const auto headerBytes = varint(payload, at);
    if (!headerBytes || *headerBytes > payload.size()) {
        return std::nullopt;
    }
    const auto bodyAt = static_cast<std::size_t>(*headerBytes);
    std::vector<Value> values;
    values.reserve(columns);
    for (std::size_t valueAt = bodyAt; values.size() < columns;) {
        const auto code = at < bodyAt ? varint(payload, at) : std::nullopt;
        const auto size = code ? sizeOf(*code) : std::nullopt;
        if (!size || *size > payload.size() - valueAt) {
            return std::nullopt;
        }
        values.push_back(valueOf(*code, payload.substr(valueAt, *size)));
        valueAt += *size;
        if (values.size() == columns && (at != bodyAt || valueAt != payload.size())) {
            return std::nullopt;
        }
    }
    return values;
}

std::size_t chainBytes(std::size_t pageBytes) {
    return pageBytes - pageNumberBytes;
}

std::uint32_t pageNumberAt(std::string_view page, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < pageNumberBytes; ++i) {
        number = number << 8 | static_cast<std::uint32_t>(byteAt(page, at + i));
    }
    return number;
}

std::size_t shortAt(std::string_view page, std::size_t at) {
    return static_cast<std::size_t>(byteAt(page, at) << 8 | byteAt(page, at + 1));
}

}  // namespace standalone::cells

#include "SurvivingRows.h"

#include <algorithm>
#include <array>
#include <utility>

namespace support {

namespace {

// https://sqlite.org/fileformat2.html
constexpr std::size_t pointerBytes = 4;
constexpr std::size_t mostLocal = pageBytes - 35;
constexpr std::size_t leastLocal = (pageBytes - 12) * 32 / 255 - 23;

std::string varint(std::uint64_t number) {
    std::string bytes(1, static_cast<char>(number & 0x7f));
    while ((number >>= 7) != 0) {
        bytes.insert(bytes.begin(), static_cast<char>((number & 0x7f) | 0x80));
    }
    return bytes;
}

std::string highestFirst(std::int64_t number, std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = count; i-- > 0; number >>= 8) {
        bytes[i] = static_cast<char>(number & 0xff);
    }
    return bytes;
}

/// A field's type code and its bytes.
using Encoded = std::pair<std::uint64_t, std::string>;

struct Encoder {
    Encoded operator()(std::monostate) const { return {0, ""}; }

    Encoded operator()(std::int64_t number) const {
        if (number == 0 || number == 1) {
            return {static_cast<std::uint64_t>(8 + number), ""};
        }
        constexpr std::array<std::size_t, 6> sizes = {1, 2, 3, 4, 6, 8};
        std::size_t code = 0;
        while (code + 1 < sizes.size() && number >> (8 * sizes[code] - 1) != (number < 0 ? -1 : 0)) {
            ++code;
        }
        return {code + 1, highestFirst(number, sizes[code])};
    }

    Encoded operator()(const std::string& text) const { return {2 * text.size() + 13, text}; }

    Encoded operator()(const Blob& blob) const { return {2 * blob.bytes.size() + 12, blob.bytes}; }
};

std::string payloadOf(const std::vector<Field>& fields) {
    std::string types;
    std::string body;
    for (const Field& field : fields) {
        const auto [type, bytes] = std::visit(Encoder(), field);
        types += varint(type);
        body += bytes;
    }
    return varint(types.size() + 1) + types + body;  // the types of a row here take less than 127 bytes
}

std::uint32_t numberAt(std::string_view bytes, std::size_t at) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < pointerBytes; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    }
    return number;
}

}  // namespace

RowBytes tableRow(std::int64_t rowId, const std::vector<Field>& fields) {
    const std::string payload = payloadOf(fields);
    std::size_t local = payload.size();
    if (local > mostLocal) {
        local = leastLocal + (payload.size() - leastLocal) % (pageBytes - pointerBytes);
        local = local > mostLocal ? leastLocal : local;
    }
    RowBytes row{varint(payload.size()) + varint(static_cast<std::uint64_t>(rowId)) + payload.substr(0, local), {}};
    for (std::size_t at = local; at < payload.size(); at += pageBytes - pointerBytes) {
        row.chain.push_back(payload.substr(at, pageBytes - pointerBytes));
    }
    return row;
}

RowBytes indexRow(const std::vector<Field>& fields) {
    const std::string payload = payloadOf(fields);
    return {varint(payload.size()) + payload, {}};
}

PageSlots::PageSlots(const Files& files) {
    const std::string_view all = files.database ? std::string_view(*files.database) : std::string_view();
    for (std::size_t at = 0; at < all.size(); at += pageBytes) {
        database.push_back({static_cast<std::uint32_t>(database.size() + 1), all.substr(at, pageBytes), 0, false});
    }
    const std::string_view frames = files.log ? std::string_view(*files.log) : std::string_view();
    std::size_t begun = 0;
    for (std::size_t at = logHeaderBytes; at + frameHeaderBytes < frames.size(); at += frameBytes) {
        log.push_back({numberAt(frames, at), frames.substr(at + frameHeaderBytes, pageBytes), log.size(), true});
        const bool isCommit = numberAt(frames, at + pointerBytes) != 0;
        for (std::size_t frame = begun; frame < log.size(); ++frame) {
            log[frame].transactionEnd = log.size() - 1;
        }
        begun = isCommit ? log.size() : begun;
    }
}

const PageSlots::Slot* PageSlots::versionBeside(std::uint32_t page, const Slot& slot) const {
    for (std::size_t frame = slot.isInLog ? slot.transactionEnd + 1 : 0; frame-- > 0;) {
        if (log[frame].page == page) {
            return &log[frame];
        }
    }
    return page > 0 && page <= database.size() ? &database[page - 1] : nullptr;
}

namespace {

bool holdsChunk(std::string_view page, const std::string& chunk) {
    return page.size() >= pointerBytes && page.compare(pointerBytes, chunk.size(), chunk) == 0;
}

}  // namespace

const PageSlots::Slot* PageSlots::anyVersion(std::uint32_t page, const std::string& chunk) const {
    for (const std::vector<Slot>* const slots : {&database, &log}) {
        const auto found = std::find_if(slots->begin(), slots->end(), [&](const Slot& slot) {
            return slot.page == page && holdsChunk(slot.bytes, chunk);
        });
        if (found != slots->end()) {
            return &*found;
        }
    }
    return nullptr;
}

Fate PageSlots::fateOfChain(const RowBytes& row, const Slot& slot, std::size_t pointerAt) const {
    Fate fate = Fate::Whole;
    std::string_view page = slot.bytes;
    std::size_t at = pointerAt;
    for (const std::string& chunk : row.chain) {
        if (at + pointerBytes > page.size()) {
            return Fate::Gone;
        }
        const std::uint32_t next = numberAt(page, at);
        const Slot* found = versionBeside(next, slot);
        if (found == nullptr || !holdsChunk(found->bytes, chunk)) {
            found = anyVersion(next, chunk);
            fate = Fate::InDoubt;
        }
        if (found == nullptr) {
            return Fate::Gone;
        }
        page = found->bytes;
        at = 0;
    }
    return fate;
}

Fate PageSlots::fateOf(const RowBytes& row) const {
    Fate best = Fate::Gone;
    for (const std::vector<Slot>* const slots : {&database, &log}) {
        for (const Slot& slot : *slots) {
            for (std::size_t at = slot.bytes.find(row.cell); at != std::string_view::npos;
                 at = slot.bytes.find(row.cell, at + 1)) {
                best = std::min(best, fateOfChain(row, slot, at + row.cell.size()));
                if (best == Fate::Whole) {
                    return best;
                }
            }
        }
    }
    return best;
}

std::set<std::size_t> PageSlots::pagesOf(const RowBytes& row) const {
    std::set<std::size_t> pages;
    for (std::size_t page = 0; page < database.size(); ++page) {
        if (database[page].bytes.find(row.cell) != std::string_view::npos) {
            pages.insert(page);
        }
    }
    return pages;
}

}  // namespace support

#include "WriteAheadLog.h"

#include "LogbookHead.h"

#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

namespace standalone {

namespace {

constexpr std::string_view markBegins = "TqZL";

// As SQLite's file format has it: numbers begin with their highest byte.
constexpr std::size_t headerBytes = 32;
constexpr std::size_t frameHeaderBytes = 24;
constexpr std::uint32_t magic = 0x377f0682;  // the lowest bit: sums are over numbers that begin with their highest byte
constexpr std::uint32_t leastPage = 512;
constexpr std::uint32_t mostPage = 65536;

std::uint32_t numberAt(const char* bytes) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

std::uint32_t swapped(std::uint32_t number) {
    return number >> 24 | (number >> 8 & 0xff00) | (number << 8 & 0xff0000) | number << 24;
}

/// SQLite's running sum over a log.
struct Sum {
    std::uint32_t first = 0;
    std::uint32_t second = 0;

    Sum() = default;

    explicit Sum(const char* bytes) : first(numberAt(bytes)), second(numberAt(bytes + 4)) {}

    void add(const char* bytes, std::size_t count, bool highestFirst) {
        for (std::size_t i = 0; i < count; i += 8) {
            const std::uint32_t one = numberAt(bytes + i);
            const std::uint32_t two = numberAt(bytes + i + 4);
            first += (highestFirst ? one : swapped(one)) + second;
            second += (highestFirst ? two : swapped(two)) + first;
        }
    }

    bool isAt(const char* bytes) const { return numberAt(bytes) == first && numberAt(bytes + 4) == second; }
};

struct Salts {
    std::uint32_t first = 0;
    std::uint32_t second = 0;

    Salts() = default;

    explicit Salts(const char* bytes) : first(numberAt(bytes)), second(numberAt(bytes + 4)) {}

    bool operator==(const Salts& other) const { return first == other.first && second == other.second; }
};

bool isPageSize(std::uint32_t bytes) {
    return bytes >= leastPage && bytes <= mostPage && (bytes & (bytes - 1)) == 0;
}

/// Reads the frames of a log one after another and finds out what became of each.
class FrameReader {
public:
    FrameReader(const OpenFile& file, LogContent& found) : log(file), content(found) {}

    void read(const std::array<char, headerBytes>& header, std::uint32_t usualPageBytes) {
        highestFirst = (numberAt(header.data()) & 1U) != 0;
        sum.add(header.data(), 24, highestFirst);
        const bool isHeaderWhole = (numberAt(header.data()) & ~1U) == magic &&
                                   isPageSize(numberAt(header.data() + 8)) && sum.isAt(header.data() + 24);
        content.pageBytes = isHeaderWhole ? numberAt(header.data() + 8) : usualPageBytes;
        salts = Salts(header.data() + 16);
        areSaltsSure = isHeaderWhole;
        isWhole = isHeaderWhole;
        frame.resize(frameHeaderBytes + content.pageBytes);
        while (readFrame()) {
        }
        conclude();
    }

private:
    bool readFrame() {
        const auto offset = static_cast<std::int64_t>(headerBytes + content.frames.size() * frame.size());
        const std::size_t there = log.read(offset, frame.data(), frame.size());
        if (there <= frameHeaderBytes) {
            return false;
        }
        const bool isCut = there < frame.size();
        std::fill(frame.begin() + static_cast<std::ptrdiff_t>(there), frame.end(), '\0');
        const Salts found(frame.data() + 8);
        sum.add(frame.data(), 8, highestFirst);
        sum.add(frame.data() + frameHeaderBytes, content.pageBytes, highestFirst);
        const bool goesOn = !isCut && sum.isAt(frame.data() + 16);
        if (!areSaltsSure) {
            salts = found;  // the first frames are of the newest round, whatever became of the header
            areSaltsSure = goesOn && numberAt(frame.data()) != 0;  // which zeros do, too
        }
        const bool isOfThisRound = found == salts || (wasOfThisRound && goesOn);
        isWhole = isWhole && found == salts && goesOn;
        sum = Sum(frame.data() + 16);  // the sum of the next one goes on from there, whatever became of this one
        wasOfThisRound = isOfThisRound;
        const auto part = isWhole ? Part::Committed : isOfThisRound ? Part::Behind : Part::Older;
        content.frames.push_back(
            {offset + static_cast<std::int64_t>(frameHeaderBytes), numberAt(frame.data()), part, 0});
        commits.push_back(numberAt(frame.data() + 4) != 0 && !isCut);
        return !isCut;
    }

    /// From the end, as a transaction is told by its last frame.
    void conclude() {
        std::vector<LogFrame>& frames = content.frames;
        for (std::size_t i = frames.size(); i-- > 0;) {
            const bool goesOn = i + 1 < frames.size() && !commits[i] &&
                                (frames[i].part == Part::Older) == (frames[i + 1].part == Part::Older);
            frames[i].last = goesOn ? frames[i + 1].last : i;
            if (frames[i].part != Part::Older && !commits[frames[i].last]) {
                frames[i].part = Part::Open;
            } else if (frames[frames[i].last].part == Part::Behind) {
                frames[i].part = Part::Behind;
            }
        }
        openLastTransaction();
    }

    /// A writer who is killed leaves the last one torn, which is no damage, and behind which there is nothing.
    void openLastTransaction() {
        std::vector<LogFrame>& frames = content.frames;
        const auto isBehind = [](const LogFrame& one) { return one.part == Part::Behind; };
        const auto first = std::find_if(frames.begin(), frames.end(), isBehind);
        const bool isLast = std::none_of(first, frames.end(),
                                         [&](const LogFrame& one) { return isBehind(one) && one.last != first->last; });
        for (auto one = first; isLast && one != frames.end(); ++one) {
            one->part = isBehind(*one) ? Part::Open : one->part;
        }
    }

    using Part = LogFrame::Part;

    const OpenFile& log;
    LogContent& content;
    Salts salts;
    std::vector<char> frame;
    std::vector<bool> commits;
    Sum sum;
    bool highestFirst = false;
    bool areSaltsSure = false;
    bool isWhole = false;
    bool wasOfThisRound = true;
};

std::uint32_t sumOf(const char* bytes, std::size_t count) {
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const unsigned char*>(bytes), count));
}

void putNumber(char* bytes, std::uint64_t number, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<char>(number >> (8 * i));
    }
}

std::uint64_t numberFrom(const char* bytes, std::size_t count) {
    std::uint64_t number = 0;
    for (std::size_t i = count; i-- > 0;) {
        number = number << 8 | static_cast<unsigned char>(bytes[i]);
    }
    return number;
}

// Where SQLite's header has its salts there are zeros: readers who find no index compare them with those of an empty
// log.
constexpr std::size_t newestAt = 4;
constexpr std::size_t sumAt = 12;
constexpr std::size_t idAt = 24;

}  // namespace

LogMark::Bytes LogMark::toBytes() const {
    Bytes all{};
    std::copy(markBegins.begin(), markBegins.end(), all.begin());
    putNumber(all.data() + newestAt, static_cast<std::uint64_t>(newest), 8);
    std::memcpy(all.data() + idAt, id.data(), id.size());
    putNumber(all.data() + sumAt, sumOf(all.data(), all.size()), 4);
    return all;
}

std::optional<LogMark> LogMark::fromBytes(const Bytes& all) {
    LogMark mark{{}, static_cast<std::int64_t>(numberFrom(all.data() + newestAt, 8))};
    std::memcpy(mark.id.data(), all.data() + idAt, mark.id.size());
    const bool isPossible = mark.newest >= 0 && mark.newest < highestNumber;
    return isPossible && mark.toBytes() == all ? std::optional(mark) : std::nullopt;
}

LogContent readLog(const OpenFile& log, std::uint32_t pageBytes) {
    LogContent content;
    LogMark::Bytes mark{};
    if (log.read(0, mark.data(), mark.size()) == mark.size()) {
        content.mark = LogMark::fromBytes(mark);
    }
    std::array<char, headerBytes> header{};
    if (log.read(0, header.data(), header.size()) == header.size()) {
        FrameReader(log, content).read(header, pageBytes);
    }
    if (content.mark) {
        for (LogFrame& frame : content.frames) {
            frame.part = LogFrame::Part::Older;
        }
    }
    return content;
}

}  // namespace standalone

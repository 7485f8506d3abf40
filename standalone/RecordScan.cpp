#include "RecordScan.h"

#include "cells.h"
#include "errors.h"

#include <algorithm>
#include <initializer_list>
#include <set>
#include <tuple>
#include <utility>

namespace standalone {

namespace {

using cells::Cell;
using cells::Value;
using Values = std::optional<std::vector<Value>>;

constexpr LogbookId noId{};

// As the tables are made.
constexpr std::uint32_t recordRoot = 4;
constexpr std::uint32_t lostRoot = 5;

// What a page of a table begins with.
constexpr char branch = 5;
constexpr char leaf = 13;

// Followed to further pages. Each copy of a page leads to those of its records, and a log may hold a hundred copies.
constexpr std::size_t mostLinksPerPage = 256;
constexpr std::size_t framesPerLink = 256;  // as many frames are looked at in the time of one link

/// What the id of a logbook adds to the check values of its records, the same for all of them.
std::uint32_t signatureOf(const LogbookId& id) {
    const NumberedRecord any{0, 0, 0, "", ""};
    return checksum(any, id) ^ checksum(any, noId);
}

bool areIntegers(const std::vector<Value>& values, std::initializer_list<std::size_t> columns) {
    return std::all_of(columns.begin(), columns.end(),
                       [&](std::size_t column) { return values[column].type == Value::Type::Integer; });
}

/// A record whose texts lie in a payload, and its check value.
using Checked = std::pair<NumberedRecord, std::uint32_t>;

std::optional<Checked> recordIn(std::string_view payload, std::int64_t rowId) {
    const Values values = cells::valuesOf(payload, 6);
    if (!values || rowId < 1 || rowId >= highestNumber || !areIntegers(*values, {1, 2, 5}) ||
        (*values)[0].type != Value::Type::Null || (*values)[3].type != Value::Type::Text ||
        (*values)[4].type != Value::Type::Text) {
        return std::nullopt;
    }
    return Checked{{rowId, (*values)[1].number, (*values)[2].number, (*values)[3].bytes, (*values)[4].bytes},
                   static_cast<std::uint32_t>((*values)[5].number)};
}

std::optional<LogbookHead> headIn(const Values& values) {
    LogbookHead head;
    if (!values || (*values)[0].type != Value::Type::Blob || (*values)[0].bytes.size() != head.id.size() ||
        !areIntegers(*values, {1, 2, 3})) {
        return std::nullopt;
    }
    std::copy((*values)[0].bytes.begin(), (*values)[0].bytes.end(), head.id.begin());
    head.capacity = (*values)[1].number;
    head.cleared = (*values)[2].number;
    const bool isWhole = (*values)[3].number == checksum(head.id, head.capacity, head.cleared) && isPossible(head);
    return isWhole ? std::optional(head) : std::nullopt;
}

/// Whether a record may begin there: looked at before anything is read, as most bytes begin none.
bool mayHoldRecord(std::string_view page, const Cell& cell) {
    constexpr char leastHeader = 7;
    constexpr char mostHeader = 30;
    return cell.localBytes >= 2 && page[cell.payloadAt] >= leastHeader && page[cell.payloadAt] <= mostHeader &&
           page[cell.payloadAt + 1] == 0;
}

/// Rows of the other tables are short.
bool mayHoldRow(const Cell& cell) {
    constexpr std::size_t longest = 64;
    return cell.payloadBytes <= longest && cell.localBytes == cell.payloadBytes;
}

/// All of a payload, with what of it stands in further pages, which are told.
template <typename Told>
std::optional<std::string> payloadOf(const LogbookPages& pages, std::string_view page, const Cell& cell,
                                     const PageImage& image, Version chain, Told told) {
    std::string payload(page.substr(cell.payloadAt, cell.localBytes));
    if (payload.size() == cell.payloadBytes) {
        return payload;
    }
    std::uint32_t next = cells::pageNumberAt(page, cell.payloadAt + cell.localBytes);
    while (payload.size() < cell.payloadBytes) {
        if (!pages.mayHold(next)) {
            return std::nullopt;
        }
        const PageImage link = pages.versionOf(next, image, chain);
        told(link);
        const std::string more = pages.bytesOf(link);
        next = cells::pageNumberAt(more, 0);
        payload.append(more, 4, std::min(cells::chainBytes(more.size()), cell.payloadBytes - payload.size()));
    }
    return payload;
}

void tellNobody(const PageImage&) {}

}  // namespace

RecordScan::RecordScan(const std::string& database, const std::string& log, Extent extent,
                       const std::function<void(std::int64_t done, std::int64_t all)>& progress)
    : pages(database, log) {
    const std::vector<PageImage> images = pages.all(extent);
    const auto pageBytes = static_cast<std::int64_t>(pages.pageBytes());
    for (std::size_t i = 0; i < images.size(); ++i) {
        lookThrough(images[i]);
        if (progress) {
            progress(static_cast<std::int64_t>(i + 1) * pageBytes,
                     static_cast<std::int64_t>(images.size()) * pageBytes);
        }
    }
    choose();
}

void RecordScan::lookThrough(const PageImage& image) {
    constexpr std::size_t shortest = 6;
    const std::string page = pages.bytesOf(image);
    for (std::size_t at = 0; at + shortest < page.size(); ++at) {
        if (page[at] != 0) {
            if (const auto cell = cells::cellAt(page, at, pages.mostPayload())) {
                lookForRecord(page, at, *cell, image);
                lookForRow(page, *cell, image);
            }
            lookForIndexedHead(page, at, image);
        }
    }
}

void RecordScan::lookForRecord(std::string_view page, std::size_t at, const cells::Cell& cell, const PageImage& image) {
    if (!mayHoldRecord(page, cell)) {
        return;
    }
    for (const Version chain : {Version::AsItWasThen, Version::Latest}) {
        if (linksFollowed > mostLinksPerPage * (pages.allBytes() / pages.pageBytes())) {
            return;  // made to be searched for ever
        }
        const auto payload = payloadOf(pages, page, cell, image, chain, [this](const PageImage&) {
            linksFollowed += 1 + pages.logFrames() / framesPerLink;
        });
        if (const auto record = payload ? recordIn(*payload, cell.rowId) : std::nullopt) {
            candidates.push_back({cell.rowId, record->second ^ checksum(record->first, noId), image, at,
                                  cell.payloadAt + cell.localBytes, chain});
        }
        if (cell.localBytes == cell.payloadBytes) {
            return;
        }
    }
}

void RecordScan::lookForRow(std::string_view page, const cells::Cell& cell, const PageImage& image) {
    if (!mayHoldRow(cell)) {
        return;
    }
    const std::string_view payload = page.substr(cell.payloadAt, cell.localBytes);
    if (const auto head = headIn(cells::valuesOf(payload, 4))) {
        heads.push_back({*head, image});
    }
    const Values range = cells::valuesOf(payload, 3);
    if (range && (*range)[0].type == Value::Type::Null && areIntegers(*range, {1, 2})) {
        ranges.push_back({cell.rowId, (*range)[1].number, (*range)[2].number});
    }
}

void RecordScan::lookForIndexedHead(std::string_view page, std::size_t at, const PageImage& image) {
    const auto cell = cells::indexCellAt(page, at);
    if (!cell || !mayHoldRow(*cell)) {
        return;
    }
    if (const auto head = headIn(cells::valuesOf(page.substr(cell->payloadAt, cell->localBytes), 5))) {
        heads.push_back({*head, image});
    }
}

/// Of the ids that were found the one that most records are of; without any, that in the mark of the log, if it is
/// theirs; without that, what most records agree in, as one alone might be anything.
void RecordScan::choose() {
    std::map<std::uint32_t, std::size_t> votes;
    for (const Candidate& candidate : candidates) {
        ++votes[candidate.signature];
    }
    const std::optional<LogMark>& mark = pages.mark();
    const auto weight = [&](const FoundHead& head) {
        const auto voted = votes.find(signatureOf(head.head.id));
        const bool isMarked = mark && mark->id == head.head.id;
        // What was cleared stays cleared: of two in the database that which tells of more is the newer one.
        return std::make_tuple(voted == votes.end() ? 0 : voted->second, isMarked, head.image.trust, head.head.cleared,
                               head.image.index);
    };
    const auto best = std::max_element(heads.begin(), heads.end(), [&](const FoundHead& one, const FoundHead& other) {
        return weight(one) < weight(other);
    });
    const auto most = std::max_element(votes.begin(), votes.end(),
                                       [](const auto& one, const auto& other) { return one.second < other.second; });
    if (best != heads.end()) {
        found = best->head;
        foundId = found->id;
    } else if (mark && (votes.empty() || votes.count(signatureOf(mark->id)) != 0)) {
        foundId = mark->id;
    }
    if (foundId) {
        keep(signatureOf(*foundId));
    } else if (most != votes.end() && most->second > 1) {
        keep(most->first);
    }
}

/// Keeps the newest whole copy of each record. What lies within a whole record is its text, whatever it looks like.
void RecordScan::keep(std::uint32_t signature) {
    std::vector<Candidate> whole;
    std::set<PageImage> texts;
    for (const Candidate& candidate : candidates) {
        const bool isInside = !whole.empty() && whole.back().image == candidate.image &&
                              candidate.at > whole.back().at && candidate.at < whole.back().end;
        if (candidate.signature != signature || isInside) {
            continue;
        }
        const std::string page = pages.bytesOf(candidate.image);
        if (const auto cell = cells::cellAt(page, candidate.at, pages.mostPayload())) {
            whole.push_back(candidate);
            places.emplace(candidate.image, candidate.at);
            payloadOf(pages, page, *cell, candidate.image, candidate.chain,
                      [&](const PageImage& link) { texts.insert(link); });
        }
    }
    for (const Candidate& candidate : whole) {
        if (texts.count(candidate.image) == 0) {
            const auto [kept, isNew] = records.emplace(candidate.number, candidate);
            if (!isNew && kept->second.image < candidate.image) {
                kept->second = candidate;
            }
        }
    }
}

bool RecordScan::isLogbook() const {
    return foundId || !records.empty() || pages.isBegun();
}

std::vector<std::int64_t> RecordScan::numbers() const {
    std::vector<std::int64_t> all;
    for (const auto& [number, candidate] : records) {
        all.push_back(number);
    }
    return all;
}

std::vector<FoundRecord> RecordScan::recordsBesideNewest(LogFrame::Part part) const {
    std::vector<FoundRecord> all;
    const auto newest = records.find(newestIn(part));
    for (auto one = records.begin(); newest != records.end() && one != records.end(); ++one) {
        if (one->second.image == newest->second.image) {
            if (auto record = read(one->second)) {
                all.push_back(std::move(*record));
            }
        }
    }
    return all;
}

std::vector<std::int64_t> RecordScan::numbersIn(LogFrame::Part part) const {
    std::vector<std::int64_t> all;
    for (const auto& [number, candidate] : records) {
        if (pages.isIn(part, candidate.image)) {
            all.push_back(number);
        }
    }
    return all;
}

std::int64_t RecordScan::newestIn(LogFrame::Part part) const {
    const std::vector<std::int64_t> all = numbersIn(part);
    return all.empty() ? 0 : all.back();
}

/// Of remains, whose further pages hold something else by now, each has a signature of its own: what two records agree
/// in is another id.
bool RecordScan::isLogForeign() const {
    if (!found) {
        return false;
    }
    const std::uint32_t own = signatureOf(found->id);
    std::map<std::uint32_t, std::int64_t> others;  // by signature, the number of a record
    bool agree = false;
    for (const Candidate& candidate : candidates) {
        if (!pages.isIn(LogFrame::Part::Committed, candidate.image)) {
            continue;  // elsewhere what looks like a record may be half of one of ours
        }
        if (candidate.signature == own) {
            return false;
        }
        agree = agree || others.emplace(candidate.signature, candidate.number).first->second != candidate.number;
    }
    return agree;
}

std::optional<FoundRecord> RecordScan::record(std::int64_t number) const {
    return read(records.at(number));
}

std::optional<FoundRecord> RecordScan::read(const Candidate& candidate) const {
    const std::string page = pages.bytesOf(candidate.image);
    const auto cell = cells::cellAt(page, candidate.at, pages.mostPayload());
    const auto payload =
        cell ? payloadOf(pages, page, *cell, candidate.image, candidate.chain, tellNobody) : std::nullopt;
    const auto stored = payload ? recordIn(*payload, cell->rowId) : std::nullopt;
    if (!stored || (stored->second ^ checksum(stored->first, noId)) != candidate.signature) {
        return std::nullopt;
    }
    const NumberedRecord& record = stored->first;
    return FoundRecord{record.number, record.seconds, record.nanoseconds, std::string(record.time),
                       std::string(record.json)};
}

std::optional<std::int64_t> RecordScan::oldest() const {
    const auto row = edge(Edge::Oldest);
    if (!row || places.count(row->place) == 0) {
        return std::nullopt;
    }
    // A page of newer records in the place of the root looks like the root of a short logbook.
    const bool isShort = pages.bytesOf(pages.latest(recordRoot)).front() == leaf;
    return isShort && records.count(row->number - 1) != 0 ? std::nullopt : std::optional(row->number);
}

bool RecordScan::isTreeTheNewest() const {
    const auto row = edge(Edge::Newest);
    return row && row->number == newestKnown();
}

bool RecordScan::knowsLost() const {
    const std::string page = pages.bytesOf(pages.latest(lostRoot));
    const std::size_t count = cells::shortAt(page, 3);
    if (page.front() != leaf || 8 + 2 * count > page.size()) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto cell = cells::cellAt(page, cells::shortAt(page, 8 + 2 * i), pages.mostPayload());
        const auto isOfCell = [&](const LostRange& range) { return cell && range.first == cell->rowId; };
        if (std::none_of(ranges.begin(), ranges.end(), isOfCell)) {
            return false;
        }
    }
    return true;
}

bool RecordScan::isMarked() const {
    return foundId && pages.mark() && pages.mark()->id == *foundId;
}

std::int64_t RecordScan::newestKnown() const {
    return std::max({found ? found->cleared : 0, records.empty() ? 0 : records.rbegin()->first,
                     isMarked() ? pages.mark()->newest : 0});
}

std::optional<std::int64_t> RecordScan::newest() const {
    constexpr std::size_t leastRecord = 16;  // bytes
    const std::int64_t known = newestKnown();
    if (isMarked()) {
        return known;
    }
    const auto last = edge(Edge::Newest);
    if (last && (last->number == known || (records.empty() && last->number == 0))) {
        return known;
    }
    if (records.empty()) {
        return std::nullopt;
    }
    return known + static_cast<std::int64_t>(pages.pageBytes() / leastRecord);  // as many as the last page can hold
}

/// The row at an edge of the tree of records, as far as the tree holds together; 0 when it is empty.
std::optional<RecordScan::EdgeRow> RecordScan::edge(Edge which) const {
    constexpr int deepest = 20;
    std::uint32_t number = recordRoot;
    std::uint64_t bound = INT64_MAX;
    for (int depth = 0; depth < deepest && pages.mayHold(number); ++depth) {
        const PageImage image = pages.latest(number);
        const std::string page = pages.bytesOf(image);
        const std::size_t count = cells::shortAt(page, 3);
        if (12 + 2 * count > page.size() || (page[0] != branch && page[0] != leaf)) {
            return std::nullopt;
        }
        if (page[0] == leaf) {
            if (count == 0) {
                return depth == 0 ? std::optional(EdgeRow{0, {image, 0}}) : std::nullopt;
            }
            const std::size_t firstAt = cells::shortAt(page, 8);
            const std::size_t lastAt = cells::shortAt(page, 6 + 2 * count);
            const auto first = cells::cellAt(page, firstAt, pages.mostPayload());
            const auto last = cells::cellAt(page, lastAt, pages.mostPayload());
            if (!first || !last || static_cast<std::uint64_t>(last->rowId) > bound) {
                return std::nullopt;
            }
            return which == Edge::Oldest ? EdgeRow{first->rowId, {image, firstAt}}
                                         : EdgeRow{last->rowId, {image, lastAt}};
        }
        if (which == Edge::Newest) {
            number = cells::pageNumberAt(page, 8);
            continue;
        }
        std::size_t key = cells::shortAt(page, 12) + 4;  // behind the number of the page below
        if (key > page.size()) {
            return std::nullopt;
        }
        number = cells::pageNumberAt(page, key - 4);
        bound = std::min(bound, cells::varint(page, key).value_or(0));
    }
    return std::nullopt;
}

}  // namespace standalone

#include "SqliteDatabase.h"

#include "failures.h"
#include "reading.h"
#include "report.h"
#include "schema.h"
#include "storedRecord.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <numeric>
#include <optional>
#include <utility>

namespace lgb {

IDatabase::~IDatabase() = default;

}  // namespace lgb

namespace standalone {

namespace {

// Room that is made at once for a page; a longer one grows.
constexpr unsigned int usualPage = 100;

// As many as a log may hold that was deleted before it was written back.
constexpr std::int64_t mostToSave = 4096;

// How many of the oldest make room at first, where a disk is full: those of a page or two.
constexpr std::int64_t firstToMakeRoom = 4;

/// Thrown where the file turns out to be no longer the one in the folder; nothing was done.
struct HasMoved {};

NumberedRecord numbered(std::int64_t number, const lgb::timestamp::Timestamp& timestamp, const std::string& json) {
    return {number, timestamp.seconds, timestamp.nanoseconds, timestamp.text, json};
}

NumberedRecord numbered(std::int64_t number, const lgb::DatabaseRecord& record) {
    return numbered(number, record.timestamp, record.json);
}

NumberedRecord numbered(std::int64_t number, const FoundRecord& record) {
    return {number, record.seconds, record.nanoseconds, record.time, record.json};
}

/// What tells the content of a record from that of others, whatever its number.
using Contents = std::map<std::uint32_t, std::size_t>;

template <typename Record>
std::uint32_t contentOf(const Record& record) {
    constexpr LogbookId none{};
    return checksum(numbered(0, record), none);
}

bool take(std::uint32_t content, Contents& from) {
    std::size_t& left = from[content];
    return left > 0 && left-- > 0;
}

/// Ascending numbers: those that follow one another make one range.
void extend(std::vector<LostRange>& ranges, std::int64_t first, std::int64_t last) {
    if (!ranges.empty() && ranges.back().last + 1 == first) {
        ranges.back().last = last;
    } else {
        ranges.push_back({first, last, 0});
    }
}

}  // namespace

/// A file that is open, and what is asked of it, prepared once.
struct SqliteDatabase::Session {
    explicit Session(std::unique_ptr<LogbookFile> opened) : Session(opened->database(), opened->examination()) {
        file = std::move(opened);
    }

    Session(std::unique_ptr<ReadingConnection> opened, const Examination& found) : Session(opened->database(), found) {
        reading = std::move(opened);
    }

    Session(Connection& database, const Examination& found)
        : connection(database),
          id(found.head.id),
          lost(found.lost),
          transactions(connection, TransactionStatements::writing),
          selectPage(connection, schema::selectRecords(schema::onPage)),
          selectNewest(connection, schema::selectNewest),
          selectBounds(connection, schema::selectBounds),
          insertRecord(connection, schema::insertRecord),
          deleteOldest(connection, schema::deleteOldest) {}

    bool isInPlace() const noexcept { return file ? file->isInPlace() : reading->isStillRight(); }

    /// Others may have given up numbers.
    void learnLost(std::int64_t newestRange) {
        if (newestRange != (lost.all().empty() ? 0 : lost.all().back().first)) {
            lost = lostOf(connection);
        }
    }

    Numbers numbers() {
        const Use use(selectBounds);
        selectBounds.step();
        learnLost(selectBounds.number(4));
        const bool isEmpty = selectBounds.isNull(1);
        const std::int64_t last = selectBounds.number(isEmpty ? 2 : 1);
        return {isEmpty ? last + 1 : selectBounds.number(0), last, lost.newest(last), selectBounds.number(3)};
    }

    std::int64_t stored() {
        const Numbers all = numbers();
        return lost.recordsBetween(all.oldest, all.newestRecord);
    }

    /// How many numbers to skip for so many records.
    std::int64_t skip(unsigned int records) {
        if (records == 0) {
            return 0;
        }
        const Use use(selectNewest);
        selectNewest.step();
        learnLost(selectNewest.number(1));
        const std::int64_t newest = selectNewest.number(0);
        return newest - lost.before(newest, records);
    }

    void insert(const NumberedRecord& record) {
        if (record.number >= highestNumber) {
            throw Fault{Failure::Full, "all numbers are given out"};
        }
        const std::size_t bytes = record.time.size() + record.json.size();
        if (bytes > mostRecordBytes) {
            throw Fault{Failure::Full, "takes no entry of " + std::to_string(bytes) + " bytes, only of up to " +
                                           std::to_string(mostRecordBytes)};
        }
        standalone::insert(insertRecord, record, id);
    }

    /// Drops what is older than the newest so many.
    void keep(std::int64_t records, std::int64_t newest) {
        const std::int64_t oldest = lost.before(newest, records - 1);
        if (oldest <= 1) {
            return;
        }
        deleteOldest.bind(1, oldest - 1);
        deleteOldest.run();
        if (!lost.all().empty() && lost.all().front().last < oldest) {
            Statement deleteLost(connection, schema::deleteOldestLost);
            deleteLost.bind(1, oldest);
            deleteLost.run();
        }
    }

    /// Drops so many of the oldest.
    void giveWay(std::int64_t records, std::int64_t newest) {
        if (records > 0) {
            keep(std::max<std::int64_t>(stored() - records, 0), newest);
        }
    }

    void keepCapacity(std::int64_t newest, std::int64_t capacity) {
        if (capacity > 0) {
            keep(capacity, newest);
        }
    }

    /// Gives up all numbers up to this one that have not been given out.
    void loseTo(std::int64_t number, std::vector<LostRange>& newlyLost) {
        const std::int64_t first = numbers().newest + 1;
        if (number < first) {
            return;
        }
        const auto now = std::chrono::system_clock::now().time_since_epoch();
        Statement insertLost(connection, schema::insertLost);
        insertLost.bind(1, first);
        insertLost.bind(2, number);
        insertLost.bind(3, std::chrono::duration_cast<std::chrono::seconds>(now).count());
        insertLost.run();
        lost = lostOf(connection);
        extend(newlyLost, first, number);
    }

    std::vector<FoundRecord> newestRecords() {
        std::vector<FoundRecord> found;
        const Use use(selectPage);
        selectPage.bind(1, std::int64_t{0});
        selectPage.bind(2, mostToSave);
        while (selectPage.step()) {
            StoredRecord record = storedRecord(selectPage, id);
            if (record.intact) {
                auto& [seconds, nanoseconds, time] = record.content.timestamp;
                found.push_back({record.number, seconds, nanoseconds, std::move(time), std::move(record.content.json)});
            }
        }
        std::reverse(found.begin(), found.end());
        return found;
    }

    bool holds(const FoundRecord& record) {
        Statement select(connection, schema::selectRecords("number = ?"));
        select.bind(1, record.number);
        return select.step() && select.number(5) == checksum(numbered(record.number, record), id);
    }

    /// Of all records from a number on.
    Contents contentsFrom(std::int64_t number) {
        Contents contents;
        Statement select(connection, schema::selectRecords("number >= ?"));
        select.bind(1, number);
        while (select.step()) {
            ++contents[contentOf(storedRecord(select, id).content)];
        }
        return contents;
    }

    /// The indexes of those that are there neither under their number nor under another, as put back by another process
    /// that had them.
    std::vector<std::size_t> missingOf(const std::vector<FoundRecord>& records) {
        std::vector<std::size_t> notThere;
        Contents others = records.empty() ? Contents() : contentsFrom(records.front().number);
        for (std::size_t i = 0; i < records.size(); ++i) {
            if (holds(records[i])) {
                take(contentOf(records[i]), others);
            } else {
                notThere.push_back(i);
            }
        }
        std::vector<std::size_t> missing;
        for (const std::size_t i : notThere) {
            if (!take(contentOf(records[i]), others)) {
                missing.push_back(i);
            }
        }
        return missing;
    }

    std::unique_ptr<LogbookFile> file;           // null: it can only be read
    std::unique_ptr<ReadingConnection> reading;  // then
    Connection& connection;
    LogbookId id;
    LostRanges lost;
    TransactionStatements transactions;
    Statement selectPage;
    Statement selectNewest;
    Statement selectBounds;
    Statement insertRecord;
    Statement deleteOldest;
};

/// Sees to it that what the operation works on is open, and in place.
void SqliteDatabase::guarded(Access access, FunctionRef<void()> operation) {
    constexpr int mostTries = 5;
    const std::lock_guard lock(mutex);
    for (int tries = 1;; ++tries) {
        try {
            makeReady(access);
            operation();
            return;
        } catch (const SqliteError& exception) {
            if (tries > 1 || !openingAnewHelps(failureOf(exception))) {
                refuse(files.database, exception);
            }
        } catch (const Fault& fault) {
            if (tries > 1 || !openingAnewHelps(fault.kind)) {
                refuse(files.database, fault);
            }
        } catch (const HasMoved&) {
            if (tries == mostTries) {
                throw DatabaseError(Failure::Busy, files.database + ": is replaced again and again");
            }
        }
    }
}

SqliteDatabase::SqliteDatabase(const std::string& path, const WantedCapacity& capacity)
    : files(path), wanted(capacity) {
    guarded(Access::Reading, [] {});
}

SqliteDatabase::~SqliteDatabase() {
    if (session && session->file) {
        try {
            session->file->noteNewest(session->numbers().newest);
        } catch (const std::exception&) {
            return;  // what can't be read is not written back either
        }
    }
}

/// Sees to it that what is in the folder now is open.
void SqliteDatabase::makeReady(Access access) {
    const bool canOnlyRead = session && !session->file;
    const bool isWriting = access == Access::Writing;  // looks for itself, under the lock
    if (session && (isWriting ? canOnlyRead : !session->isInPlace())) {
        leave(canOnlyRead);
    }
    if (!session) {
        open(access);
    }
}

/// It heals what is damaged, and what could only be read may be written again.
/// @return whether that was done
bool SqliteDatabase::openingAnewHelps(Failure failure) {
    if (failure != Failure::Damaged && failure != Failure::ReadOnly) {
        return false;
    }
    if (failure == Failure::Damaged && session && session->file) {
        session->file->noteDamage();
    }
    session.reset();
    return true;
}

/// Closes what is no longer in place, and keeps what only it may have.
void SqliteDatabase::leave(bool silently) {
    if (!silently) {
        try {
            leftRecords = session->newestRecords();
            leftId = session->id;
        } catch (const SqliteError& exception) {
            if (failureOf(exception) == Failure::Memory) {
                throw;
            }
            leftRecords.clear();  // as gone as the file
        }
        const bool isDatabase = session->file->isDatabaseInPlace();
        report(Level::Error, files.database +
                                 (isDatabase ? ": its log was deleted or replaced while in use"
                                             : ": was deleted or replaced while in use") +
                                 "; recording goes on in what is there now");
    }
    session.reset();
}

void SqliteDatabase::open(Access access) {
    try {
        OpenedLogbook opened = openLogbook(files, wanted);
        session = std::make_unique<Session>(std::move(opened.file));
        settle(opened.log);
    } catch (const DatabaseError& refusal) {
        if (access == Access::Writing || refusal.kind() != Failure::ReadOnly || !stateOf(files.database)) {
            throw;
        }
        openForReading();
    }
}

/// On a medium that can't be written.
void SqliteDatabase::openForReading() {
    auto connection = std::make_unique<ReadingConnection>(files);
    try {
        const Examination found = connection->examination();
        session = std::make_unique<Session>(std::move(connection), found);
    } catch (const Fault& fault) {
        refuse(files.database, fault);
    }
}

/// Sees to it that nothing is left of what happened to the logbook before.
void SqliteDatabase::settle(LogFindings& log) {
    try {
        if (leftId != session->id) {
            leftRecords.clear();
            leftId = session->id;
        }
        const std::int64_t newestLeft = leftRecords.empty() ? 0 : leftRecords.back().number;
        putBackWhatFits(leftAndCutOff(log), std::max(newestLeft, log.newestKnown(session->id)));
    } catch (...) {
        session.reset();
        throw;
    }
    leftRecords.clear();
    session->file->noteSettled();
    if (log.isTorn) {  // what is torn would look committed behind frames to come
        session->file->noteNewest(session->numbers().newest);
        session->file->emptyLog();
    }
}

/// What was cut off in a log comes behind what a file that was left held, of which a failure leaves it as it is.
std::vector<FoundRecord> SqliteDatabase::leftAndCutOff(const LogFindings& log) const {
    std::vector<FoundRecord> records = leftRecords;
    std::int64_t next = session->numbers().newest + 1;
    for (const FoundRecord& record : log.cutOff) {
        if (record.number != next) {
            continue;
        }
        ++next;
        const auto isSame = [&](const FoundRecord& left) {
            return left.number == record.number && contentOf(left) == contentOf(record);
        };
        if (std::none_of(leftRecords.begin(), leftRecords.end(), isSame)) {
            records.push_back(record);
        }
    }
    return records;
}

/// Where the disk has room for nothing else, only the newest.
void SqliteDatabase::putBackWhatFits(std::vector<FoundRecord> records, std::int64_t newestKnown) {
    while (true) {
        try {
            putBack(records, newestKnown);
            return;
        } catch (const SqliteError& exception) {
            if (failureOf(exception) != Failure::Full || records.empty()) {
                throw;
            }
        }
        const auto half = static_cast<std::ptrdiff_t>((records.size() + 1) / 2);
        records.erase(records.begin(), records.begin() + half);
    }
}

/// What the file does not hold of these, unless it was cleared or dropped there.
void SqliteDatabase::putBack(const std::vector<FoundRecord>& records, std::int64_t newestKnown) {
    if (records.empty() && newestKnown <= session->numbers().newest) {
        return;
    }
    std::vector<LostRange> added;
    std::vector<LostRange> lost;
    const auto change = [&](const Numbers& numbers) {
        added.clear();
        lost.clear();
        const LostRanges lostBefore = session->lost;
        for (const std::size_t missing : session->missingOf(records)) {
            const FoundRecord& record = records[missing];
            if (record.number >= numbers.oldest || lostBefore.holds(record.number)) {
                session->loseTo(record.number - 1, lost);
                const std::int64_t number = session->numbers().newest + 1;
                session->insert(numbered(number, record));
                extend(added, number, number);
            }
        }
        session->loseTo(newestKnown, lost);
        session->keepCapacity(session->numbers().newest, numbers.capacity);
    };
    if (!changeWithRoom(0, change)) {
        throw HasMoved();
    }
    tellOf(added, lost);
}

void SqliteDatabase::tellOf(const std::vector<LostRange>& added, const std::vector<LostRange>& lost) const {
    if (!added.empty()) {
        report(Level::Error, files.database + ": put back: " + textOf(added));
    }
    if (!lost.empty()) {
        report(Level::Error, files.database + ": lost: " + textOf(lost));
    }
}

/// A file may have lost its name just when it was written to.
void SqliteDatabase::followTo(Whose whose) {
    if (session->isInPlace()) {
        return;
    }
    const LogbookId before = session->id;
    leave(false);
    open(Access::Writing);  // puts back what was just added, if it is the same logbook
    if (whose == Whose::OfAnyLogbook && session->id != before) {
        throw HasMoved();
    }
}

/// Makes a change in one transaction; where there is no space for it, again and again with more room.
/// @param bytes of what is added
/// @return whether it is made: not where the names stand for other files by now
bool SqliteDatabase::changeWithRoom(std::size_t bytes, Change change) {
    Room room{false, true, 2 * (1 + bytes / LogbookFile::growthBytes), 0};
    while (true) {
        try {
            Transaction transaction(session->transactions);
            if (!session->file->isInPlace()) {
                return false;
            }
            session->file->limitToSpace();
            const Numbers numbers = session->numbers();
            session->giveWay(room.records, numbers.newest);
            change(numbers);
            transaction.commit();
        } catch (const SqliteError& exception) {
            const bool isFull = failureOf(exception) == Failure::Full;
            if (!isFull || room.records > session->stored()) {
                throw;
            }
            makeMore(room);
            continue;
        }
        if (room.records > 0) {
            tellOfFullDisk();
        }
        return true;
    }
}

/// @param bytes of what is added
void SqliteDatabase::commit(Whose whose, std::size_t bytes, Change change) {
    std::optional<LogbookId> meant;
    guarded(Access::Writing, [&] {
        if (whose == Whose::OfThisLogbook && meant.value_or(session->id) != session->id) {
            return;
        }
        meant = session->id;
        if (!changeWithRoom(bytes, change)) {
            leave(false);
            throw HasMoved();
        }
        followTo(whose);
    });
}

/// In the log, as far as its readers allow, then in the database, as far as the disk allows, at last by the oldest.
void SqliteDatabase::makeMore(Room& room) {
    if (room.logIsFree) {
        room.logIsFree = session->file->makeRoomInLog();
    }
    if (!std::exchange(room.madeInLog, true)) {
        return;
    }
    if (room.records == 0 && room.growthsLeft > 0 && session->file->grow()) {
        --room.growthsLeft;
    } else {
        room.records = std::max(2 * room.records, firstToMakeRoom);
    }
}

void SqliteDatabase::tellOfFullDisk() {
    if (!std::exchange(toldOfFullDisk, true)) {
        report(Level::Warning, files.database + ": the disk is full; the oldest records make room for the newest");
    }
}

std::vector<lgb::DatabaseRecord> SqliteDatabase::fetch(unsigned int offset, unsigned int count) {
    bool heals = true;
    std::vector<lgb::DatabaseRecord> page;
    page.reserve(std::min(count, usualPage));
    guarded(Access::Reading, [&] {
        page.clear();
        const std::int64_t skipped = session->skip(offset);
        Statement& select = session->selectPage;
        const Use use(select);
        select.bind(1, skipped);
        select.bind(2, std::int64_t{count});
        while (select.step()) {
            StoredRecord record = storedRecord(select, session->id);
            if (record.intact) {
                page.push_back(std::move(record.content));
            } else if (session->file && std::exchange(heals, false)) {
                throw Fault{Failure::Damaged, "damaged: record " + std::to_string(record.number)};
            } else {
                report(Level::Error,
                       files.database + ": record " + std::to_string(record.number) + " is damaged and left out");
            }
        }
    });
    return page;
}

void SqliteDatabase::add(const std::string& json, const lgb::timestamp::Timestamp& timestamp) {
    commit(Whose::OfAnyLogbook, json.size() + timestamp.text.size(), [&](const Numbers& numbers) {
        const std::int64_t number = numbers.newest + 1;
        session->insert(numbered(number, timestamp, json));
        session->keepCapacity(number, numbers.capacity);
    });
}

std::int64_t SqliteDatabase::addAll(const std::vector<lgb::DatabaseRecord>& records) {
    const std::size_t bytes = std::accumulate(records.begin(), records.end(), std::size_t{0},
                                              [](std::size_t sum, const lgb::DatabaseRecord& record) {
                                                  return sum + record.json.size() + record.timestamp.text.size();
                                              });
    std::int64_t dropped = 0;
    commit(Whose::OfAnyLogbook, bytes, [&](const Numbers& numbers) {
        const std::int64_t before = session->stored();
        std::int64_t number = numbers.newest;
        for (const lgb::DatabaseRecord& record : records) {
            session->insert(numbered(++number, record.timestamp, record.json));
        }
        const std::int64_t all = session->stored();
        session->keepCapacity(number, numbers.capacity);
        dropped = std::min(before, all - session->stored());
    });
    return dropped;
}

void SqliteDatabase::clear() {
    commit(Whose::OfThisLogbook, 0, [&](const Numbers& numbers) {
        writeHead(session->connection, {session->id, numbers.capacity, numbers.newest});
        session->connection.execute(schema::deleteAll);
        session->connection.execute(schema::deleteAllLost);
    });
}

unsigned int SqliteDatabase::count() {
    std::int64_t records = 0;
    guarded(Access::Reading, [&] { records = session->stored(); });
    return static_cast<unsigned int>(records);
}

std::int64_t SqliteDatabase::resize(std::uint32_t capacity) {
    std::int64_t dropped = 0;
    commit(Whose::OfThisLogbook, 0, [&](const Numbers& numbers) {
        const std::int64_t before = session->stored();
        const bool isEmpty = before == 0;  // maybe to make room
        const std::int64_t cleared = isEmpty ? numbers.newest : headOf(session->connection).cleared;
        writeHead(session->connection, {session->id, capacity, cleared});
        session->keepCapacity(numbers.newest, capacity);
        dropped = before - session->stored();
    });
    guarded(Access::Writing, [&] { session->file->takeSpaceFor(capacity); });
    return dropped;
}

}  // namespace standalone

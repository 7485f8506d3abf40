#include "LogbookFile.h"

#include "NewFile.h"
#include "Transaction.h"
#include "WriteLock.h"
#include "failures.h"
#include "healing.h"
#include "report.h"
#include "storedRecord.h"

#include <sqlite3.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <utility>

namespace standalone {

namespace {

// Long enough for a transaction of somebody else's, too short to be noticed when a program ends.
constexpr std::chrono::milliseconds closingTimeout(200);

Connection connect(const LogbookFiles& files) {
    try {
        return Connection(pathForSqlite(files.database), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW);
    } catch (const SqliteError& exception) {
        if (eaccess(files.database.c_str(), R_OK | W_OK) != 0) {
            refuse(files.database, errno);
        }
        refuse(files.database, exception);
    }
}

/// What SQLite would follow, wait for or carry out.
void requireUsable(const LogbookFiles& files) {
    for (const std::string* const file : {&files.database, &files.log, &files.index}) {
        stateOf(*file);
    }
    requireNoJournal(files);
}

/// Others of this process may still use what has lost its name, and SQLite goes on with that.
FileState openedState(const std::string& file) {
    const auto state = stateOf(file);
    if (!state) {
        throw DatabaseError(Failure::Busy, file + ": was removed, and is still in use by this process");
    }
    return *state;
}

}  // namespace

int LogbookFile::Patience::wait(void* patience, int times) {
    auto& own = *static_cast<Patience*>(patience);
    if (times == 0) {
        own.waiting = Waiting(own.most);
    }
    return own.waiting.goesOn() ? 1 : 0;
}

LogbookFile::LogbookFile(const LogbookFiles& names, const WantedCapacity& wanted, const LogFindings& found)
    : files((requireUsable(names), names)), connection(connect(files)), settled(found.cutOff.empty() && !found.isTorn) {
    try {
        begin();
        sound = content.damaged.empty() && !found.damageOf(content);
        if (sound) {
            growTo(wanted);
        }
    } catch (const SqliteError& exception) {
        refuse(files.database, exception);
    } catch (const Fault& fault) {
        refuse(files.database, fault);
    }
}

LogbookFile::~LogbookFile() {
    if (sound && settled && isInPlace()) {
        patience.most = closingTimeout;
        emptyLog();
    }
}

void LogbookFile::configure() {
    sqlite3* const handle = connection.handle();
    sqlite3_busy_handler(handle, Patience::wait, &patience);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);  // not into what is no longer in place
    int persist = 1;
    sqlite3_file_control(handle, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    distrust(connection);
    connection.execute("PRAGMA journal_size_limit = -1");  // or a log that holds something would be cut, too
    connection.execute("PRAGMA synchronous = FULL");       // a commit returns when it would survive power loss
    connection.execute("PRAGMA secure_delete = OFF");      // else pages are written only to be forgotten
}

void LogbookFile::begin() {
    requireNotEmpty(openedState(files.database));
    configure();
    if (sqlite3_db_readonly(connection.handle(), "main") == 1) {  // as SQLite opens what it can't open for writing
        if (eaccess(files.database.c_str(), W_OK) != 0) {
            refuse(files.database, errno);
        }
        throw Fault{Failure::ReadOnly, "can't be opened for writing"};
    }
    const bool hadLog = stateOf(files.log).has_value();
    content = examine(connection);
    if (isWithoutLog(connection)) {
        useLog();
        content = examine(connection);
    }
    requireHeader(connection);
    newest = content.newest;
    pageBytes = static_cast<int>(numberFrom(connection, "PRAGMA page_size"));
    connection.execute("PRAGMA wal_autocheckpoint = " + std::to_string(checkpointBytes / pageBytes));
    if (!hadLog) {
        syncFolder(files.folder);
    }
    setLogSpaceAside();
    log.emplace(connection.handle());
    databaseState = openedState(files.database);
    logState = openedState(files.log);
    indexState = openedState(files.index);
    limitToSpace();
}

/// Two bytes of the header say how a file is written; a journal for changing them would be left behind by a kill.
void LogbookFile::useLog() {
    sqlite3_file* const file = connection.file();
    const Waiting waiting;
    for (const int lock : {SQLITE_LOCK_SHARED, SQLITE_LOCK_RESERVED, SQLITE_LOCK_EXCLUSIVE}) {
        while (file->pMethods->xLock(file, lock) != SQLITE_OK) {
            if (!waiting.goesOn()) {
                file->pMethods->xUnlock(file, SQLITE_LOCK_NONE);
                throw Fault{Failure::Busy, "database is locked"};
            }
        }
    }
    constexpr sqlite3_int64 versionsAt = 18;
    const bool isDone = file->pMethods->xWrite(file, "\2\2", 2, versionsAt) == SQLITE_OK &&
                        file->pMethods->xSync(file, SQLITE_SYNC_NORMAL) == SQLITE_OK;
    file->pMethods->xUnlock(file, SQLITE_LOCK_NONE);
    if (!isDone) {
        throw Fault{Failure::InputOutput, "disk I/O error"};
    }
    connection = connect(files);
    configure();
}

/// What the disk can't give is done without, but for the little that a single record needs, or at first a large one.
void LogbookFile::setLogSpaceAside() {
    const OpenFile file(files.log, O_RDWR);
    const FileState state = file.state();
    if (state.allotted >= logBytes) {
        return;
    }
    const std::int64_t leastBytes = newest == 0 ? checkpointBytes : 16 * 1024;
    try {
        if (!file.allot(logBytes, false) && state.bytes == 0) {
            TransactionStatements statements(connection, TransactionStatements::writing);
            const Transaction nobodyElseWrites(statements);
            if (file.state().bytes == 0) {
                const std::string zeros(logBytes, '\0');
                file.write(0, zeros.data(), zeros.size());
                file.sync();
            }
        }
    } catch (const DatabaseError& error) {
        if (error.kind() != Failure::Full || file.state().allotted < leastBytes) {
            throw;
        }
        report(Level::Warning,
               files.database + ": the disk has no space for its log; recording goes on as long as there is some");
    }
}

bool LogbookFile::isInPlace() const noexcept {
    return isDatabaseInPlace() && stillIs(files.log, logState) && stillIs(files.index, indexState);
}

void LogbookFile::limitToSpace() {
    sqlite3_file* const file = connection.file();  // its name may stand for another by now
    sqlite3_int64 bytes = 0;
    if (file->pMethods->xFileSize(file, &bytes) != SQLITE_OK || bytes == limitedTo) {
        return;
    }
    limitedTo = bytes;
    int chunk = static_cast<int>(std::min<std::int64_t>(limitedTo, std::int64_t{1} << 30));
    sqlite3_file_control(connection.handle(), "main", SQLITE_FCNTL_CHUNK_SIZE, &chunk);
    connection.execute("PRAGMA max_page_count = " + std::to_string(limitedTo / pageBytes));
}

/// Whoever writes back may wait for writers to end, so its end is waited for outside of a transaction.
bool LogbookFile::takeSpace(std::int64_t bytes) {
    constexpr int writeBack = 1;  // SQLite's lock for it: others must not write to the database meanwhile
    constexpr int lock = SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE;
    sqlite3_file* const file = connection.file();
    TransactionStatements statements(connection, TransactionStatements::writing);
    const Waiting waiting;
    while (true) {
        {
            const Transaction nobodyElseWrites(statements);
            if (file->pMethods->xShmLock(file, writeBack, 1, lock) == SQLITE_OK) {
                int chunk = 4096;
                sqlite3_int64 size = bytes;
                file->pMethods->xFileControl(file, SQLITE_FCNTL_CHUNK_SIZE, &chunk);
                file->pMethods->xFileControl(file, SQLITE_FCNTL_SIZE_HINT, &size);
                file->pMethods->xShmLock(file, writeBack, 1, SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE);
                const std::int64_t before = std::exchange(limitedTo, 0);
                limitToSpace();
                return limitedTo > before;
            }
        }
        if (!waiting.goesOn()) {
            throw Fault{Failure::Busy, "database is locked"};
        }
    }
}

bool LogbookFile::grow() {
    return takeSpace(limitedTo + std::max<std::int64_t>(std::int64_t{growthBytes}, limitedTo / 4));
}

void LogbookFile::takeSpaceFor(std::int64_t capacity) {
    const std::int64_t bytes = spaceFor(capacity);
    if (bytes > limitedTo && bytes - limitedTo <= freeBytes(files.database)) {
        takeSpace(bytes);
    }
}

/// The capacity is the file's; device software that wants more gets it, and nobody takes it away.
void LogbookFile::growTo(const WantedCapacity& wanted) {
    const auto isMore = [&](std::int64_t kept) { return kept != 0 && (wanted.records == 0 || wanted.records > kept); };
    if (wanted.meaning == Capacity::OfNewAlone || !isMore(content.head.capacity)) {
        return;
    }
    {
        TransactionStatements statements(connection, TransactionStatements::writing);
        Transaction transaction(statements);
        content.head = headOf(connection);
        content.head.capacity = isMore(content.head.capacity) ? wanted.records : content.head.capacity;
        writeHead(connection, content.head);
        transaction.commit();
    }
    takeSpaceFor(wanted.records);
}

bool LogbookFile::makeRoomInLog() noexcept {
    const Waiting waiting;  // SQLite waits for readers itself, but not for another who writes back
    int outcome = SQLITE_BUSY;
    do {
        outcome = sqlite3_wal_checkpoint_v2(connection.handle(), "main", SQLITE_CHECKPOINT_RESTART, nullptr, nullptr);
    } while (outcome == SQLITE_BUSY && waiting.goesOn());
    return outcome == SQLITE_OK;
}

void LogbookFile::emptyLog() noexcept {
    log->markWith({content.head.id, newest});
    sqlite3_wal_checkpoint_v2(connection.handle(), "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
}

namespace {

/// A logbook that was closed needs none of it, but how it was left is not known any more.
void tellOfMissingLog(const LogbookFiles& files) {
    if (stateOf(files.index)) {
        removeFile(files.index);
        report(Level::Error,
               files.log + ": was deleted; the newest records are gone unless the logbook had been closed");
    } else {
        report(Level::Warning, files.log + ": is missing; if the logbook was not closed, the newest records are gone");
    }
}

LogFindings findingsIn(const LogbookFiles& files) {
    if (!stateOf(files.log)) {
        tellOfMissingLog(files);
        return {};
    }
    std::optional<WriteLock> nobodyWrites;  // or what is found changes while it is read
    if (stateOf(files.index) && eaccess(files.database.c_str(), W_OK) == 0 && !isEmptied(files.log)) {
        nobodyWrites.emplace(files.database);
    }
    LogFindings found = lookThroughLog(files.database, files.log);
    if (found.isForeign) {
        setLogAside(files);
        return {};
    }
    return found;
}

OpenedLogbook openLocked(const LogbookFiles& files, const WantedCapacity& wanted) {
    const bool isNew = finishHealing(files) || makeIfMissing(files, wanted.records);
    LogFindings log = isNew ? LogFindings() : findingsIn(files);
    bool isUsable = false;
    try {
        auto file = std::make_unique<LogbookFile>(files, wanted, log);
        if (file->isSound()) {
            return {std::move(file), std::move(log)};
        }
        isUsable = true;
    } catch (const DatabaseError& damage) {
        if (damage.kind() != Failure::Damaged) {
            throw;
        }
    }
    try {
        if (heal(files, wanted)) {
            log = LogFindings();
        }
    } catch (const DatabaseError& trouble) {
        if (!isUsable || trouble.kind() != Failure::Full || stateOf(files.healed)) {
            throw;
        }
        report(Level::Error,
               std::string(trouble.what()) + "; the logbook can't be healed, and what is damaged is left out");
    }
    auto file = std::make_unique<LogbookFile>(files, wanted, log);
    return {std::move(file), std::move(log)};
}

/// On a disk that is too full for it there would be a logbook that can't be opened, or not again.
void removeNew(const LogbookFiles& files) {
    for (const std::string* const file : {&files.database, &files.log, &files.index}) {
        removeFile(*file);
    }
}

}  // namespace

OpenedLogbook openLogbook(const LogbookFiles& files, const WantedCapacity& wanted) {
    makeFolder(files.folder);
    const NamesLock lock(files);
    const bool isNew = !stateOf(files.database) && !stateOf(files.healed);
    const auto open = [&] {
        if (isNew) {
            lock.setSpaceAside();
        }
        OpenedLogbook opened = openLocked(files, wanted);
        lock.trySetSpaceAside();
        return opened;
    };
    try {
        return open();
    } catch (const DatabaseError& error) {
        if (error.kind() != Failure::Full) {
            throw;
        }
        const bool hadSpace = lock.giveSpaceBack();
        if (isNew && stateOf(files.database)) {
            removeNew(files);
        }
        if (isNew || !hadSpace) {
            throw;
        }
    }
    return open();
}

}  // namespace standalone

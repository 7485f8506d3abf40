#include "healing.h"

#include "Connection.h"
#include "LogFindings.h"
#include "LogbookHead.h"
#include "LostRanges.h"
#include "NewFile.h"
#include "RecordScan.h"
#include "Remains.h"
#include "SetAside.h"
#include "WriteLock.h"
#include "examine.h"
#include "failures.h"
#include "report.h"
#include "schema.h"

#include <sqlite3.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace standalone {

namespace {

constexpr std::size_t copiedAtOnce = std::size_t{64} * 1024;

template <typename Source>
void copyBytes(const Source& source, const std::string& to) {
    const OpenFile copy(to, O_RDWR | O_CREAT | O_EXCL);
    std::vector<char> bytes(copiedAtOnce);
    for (std::size_t at = 0;; at += bytes.size()) {
        const std::size_t count = source(at, bytes);
        copy.write(static_cast<std::int64_t>(at), bytes.data(), count);
        if (count < bytes.size()) {
            break;
        }
    }
    copy.sync();
}

/// A database and its log, copied as they are; removed again unless they are to be kept.
class Copies {
public:
    Copies(const LogbookFiles& files, std::string name) : copied(std::move(name)) {
        try {
            copy(files);
        } catch (...) {
            removeSet(copied);
            throw;
        }
    }

    Copies(const Copies&) = delete;
    Copies& operator=(const Copies&) = delete;

    ~Copies() {
        unlink((copied + "-shm").c_str());
        if (!kept) {
            unlink(log().c_str());
            unlink(copied.c_str());
        }
    }

    const std::string& database() const { return copied; }

    std::string log() const { return copied + "-wal"; }

    void keep() { kept = true; }

private:
    void copy(const LogbookFiles& files) const {
        const DatabaseBytes from(files.database);
        copyBytes([&](std::size_t at, std::vector<char>& bytes) { return from.read(at, bytes.data(), bytes.size()); },
                  copied);
        if (stateOf(files.log)) {
            const OpenFile fromLog(files.log, O_RDONLY);
            copyBytes(
                [&](std::size_t at, std::vector<char>& bytes) {
                    return fromLog.read(static_cast<std::int64_t>(at), bytes.data(), bytes.size());
                },
                log());
        }
    }

    std::string copied;
    bool kept = false;
};

/// What is wrong with a copy; nothing when it is sound.
/// @throws DatabaseError for trouble of any other kind
std::optional<std::string> damageOf(const std::string& copy, const LogFindings& log) {
    try {
        requireNotEmpty(stateOf(copy).value());
        Connection connection(pathForSqlite(copy), SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOFOLLOW);
        sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        int persist = 1;
        sqlite3_file_control(connection.handle(), "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
        distrust(connection);
        const Examination found = examine(connection);
        if (!isWithoutLog(connection)) {
            requireHeader(connection);
        }
        if (!found.damaged.empty()) {
            return "damaged: record " + std::to_string(found.damaged.front());
        }
        return log.damageOf(found);
    } catch (const Fault& fault) {
        if (fault.kind != Failure::Damaged) {
            refuse(copy, fault);
        }
        return fault.reason;
    } catch (const SqliteError& exception) {
        if (failureOf(exception) != Failure::Damaged) {
            refuse(copy, exception);
        }
        return std::string("damaged: ") + exception.what();
    }
}

void tell(const LogbookFiles& files, const std::string& damage, const std::string& aside, const Remains& remains) {
    std::string line = files.database + ": " + damage + "; healed with " + std::to_string(remains.numbers.size()) +
                       " records, the damaged files are kept as " + aside;
    if (!remains.newlyLost.empty()) {
        line += "; lost: " + textOf(remains.newlyLost);
    }
    report(Level::Error, line);
}

void makeHealed(const LogbookFiles& files, const RecordScan& scan, const Remains& remains) {
    NewFile made(files.making, remains.head, remains.lost);
    for (const std::int64_t number : remains.numbers) {
        const FoundRecord record = scan.record(number).value();  // of copies, to which nobody writes
        made.add({record.number, record.seconds, record.nanoseconds, record.time, record.json});
    }
    made.finish();
    renameFile(files.making, files.healed, true);
    syncFolder(files.folder);
}

/// From the moment when its log is gone nobody adds to the damaged one any more: its users notice, and whoever opens it
/// finishes this.
void putHealedInPlace(const LogbookFiles& files) {
    removeFile(files.log);
    removeFile(files.index);
    syncFolder(files.folder);
    renameFile(files.healed, files.database, true);
    syncFolder(files.folder);
}

/// Of a logbook that doesn't tell its own any more. Who only wants one for new logbooks takes nothing away.
std::int64_t capacityFor(const WantedCapacity& wanted, const RecordScan& scan) {
    const bool keepsAll = wanted.meaning == Capacity::OfNewAlone && wanted.records > 0;
    return keepsAll ? std::max<std::int64_t>(wanted.records, static_cast<std::int64_t>(scan.numbers().size()))
                    : wanted.records;
}

/// While nobody writes.
/// @return whether there was anything to heal
bool healLocked(const LogbookFiles& files, const WantedCapacity& wanted, const SetAside& sets) {
    Copies copies(files, sets.next());
    const auto damage = damageOf(copies.database(), lookThroughLog(copies.database(), copies.log()));
    if (!damage) {
        return false;
    }
    const RecordScan scan(copies.database(), copies.log());
    if (!scan.isLogbook()) {
        throw DatabaseError(Failure::Foreign, files.database + ": file is not a database");
    }
    const Remains remains = remainsOf(scan, capacityFor(wanted, scan));
    makeHealed(files, scan, remains);
    copies.keep();
    putHealedInPlace(files);
    tell(files, *damage, copies.database(), remains);
    sets.removeOld();
    return true;
}

}  // namespace

void setLogAside(const LogbookFiles& files) {
    const SetAside aside(files);
    const std::string name = aside.next() + "-wal";
    removeFile(files.index);
    renameFile(files.log, name, false);
    syncFolder(files.folder);
    aside.removeOld();
    report(Level::Error, files.log + ": is the log of another logbook, and kept as " + name);
}

bool makeIfMissing(const LogbookFiles& files, std::int64_t capacity) {
    if (stateOf(files.database)) {
        return false;
    }
    if (stateOf(files.log)) {
        if (isEmptied(files.log)) {
            removeFile(files.log);
        } else {
            setLogAside(files);
        }
    }
    removeFile(files.index);
    NewFile made(files.making, {newId(), capacity, 0}, {});
    made.finish();
    renameFile(files.making, files.database, false);
    syncFolders(files.folder);  // who made them may have been killed before
    return true;
}

bool finishHealing(const LogbookFiles& files) {
    removeFile(files.making);
    SetAside(files).removeOld();
    if (!stateOf(files.healed)) {
        return false;
    }
    const auto log = stateOf(files.log);
    if (log && log->bytes > 0) {
        removeFile(files.healed);  // the damaged one may have been added to since
        return false;
    }
    putHealedInPlace(files);
    return true;
}

bool heal(const LogbookFiles& files, const WantedCapacity& wanted) {
    const WriteLock nobodyWrites(files.database);
    const SetAside sets(files);
    try {
        return healLocked(files, wanted, sets);
    } catch (const DatabaseError& trouble) {
        const bool isHealed = stateOf(files.healed).has_value();  // and what it was made from is in the newest set
        if (trouble.kind() != Failure::Full || isHealed || !sets.removeOld(0)) {
            throw;
        }
        return healLocked(files, wanted, sets);  // in the space of older sets
    }
}

}  // namespace standalone

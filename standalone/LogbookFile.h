#pragma once

#include "Connection.h"
#include "KeptLog.h"
#include "LogFindings.h"
#include "LogbookFiles.h"
#include "Waiting.h"
#include "WantedCapacity.h"
#include "examine.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace standalone {

/// The file of one logbook, open for writing: examined, each commit safe from power loss, and the space of a full
/// logbook set aside. Whoever opens one holds the lock of its names.
class LogbookFile {
public:
    /// @param found in its log
    /// @throws DatabaseError naming the file, which is then left as it is
    LogbookFile(const LogbookFiles& names, const WantedCapacity& wanted, const LogFindings& found);
    LogbookFile(const LogbookFile&) = delete;
    LogbookFile& operator=(const LogbookFile&) = delete;

    /// Leaves the log empty, but its space set aside, unless others use it: what is left in a log would pass for newer
    /// than the database when it is opened again. What is damaged stays as it is, to be healed from.
    ~LogbookFile();

    Connection& database() { return connection; }

    const LogbookId& id() const { return content.head.id; }

    const Examination& examination() const { return content; }

    /// Whether nothing in it is damaged.
    bool isSound() const { return sound; }

    /// Damage was met in use: nothing is to be written over what it may be healed from.
    void noteDamage() { sound = false; }

    /// What its log held of a transaction that was cut off is in safety: the log may be emptied.
    void noteSettled() { settled = true; }

    /// Whether the folder's names still stand for what is open.
    bool isInPlace() const noexcept;

    /// Whether at least the database is where it was.
    bool isDatabaseInPlace() const noexcept { return stillIs(files.database, databaseState); }

    /// Lets no commit need more than the disk keeps for the database, so that it can be written back on a full disk.
    void limitToSpace();

    /// By how much it grows at least when it needs more space than was set aside.
    static constexpr std::size_t growthBytes = std::size_t{64} * 1024;

    /// Has the disk keep more for the database. Not within a transaction.
    /// @return whether it does
    /// @throws Fault, when others write back all the time
    bool grow();

    /// Has the disk keep what so many usual records need, if it has that. Not within a transaction.
    void takeSpaceFor(std::int64_t capacity);

    /// Writes as much of the log back as its readers allow, who are waited for, which makes room in the log.
    /// @return whether there were none
    bool makeRoomInLog() noexcept;

    /// Writes the log back, and marks it as empty, as far as its readers allow, who are waited for.
    void emptyLog() noexcept;

    /// The newest number given out, as far as this object knows: what an emptied log is marked with.
    void noteNewest(std::int64_t number) { newest = number; }

private:
    /// How long SQLite is to wait for a lock.
    struct Patience {
        std::chrono::milliseconds most = lockTimeout;
        Waiting waiting;

        static int wait(void* patience, int times);
    };

    void configure();
    void begin();
    void useLog();
    void setLogSpaceAside();
    bool takeSpace(std::int64_t bytes);
    void growTo(const WantedCapacity& wanted);

    LogbookFiles files;
    Patience patience;
    std::optional<KeptLog> log;  // outlives the connection
    Connection connection;
    Examination content;
    bool sound = true;
    bool settled;
    FileState databaseState;
    FileState logState;
    FileState indexState;
    std::int64_t newest = 0;
    std::int64_t limitedTo = 0;  // bytes
    int pageBytes = 0;
};

/// A logbook that was opened.
struct OpenedLogbook {
    std::unique_ptr<LogbookFile> file;
    LogFindings log;  ///< what its log held that SQLite does not see
};

/// Opens a logbook; makes it when there is none, and heals it when it is damaged.
/// @throws DatabaseError naming the file
OpenedLogbook openLogbook(const LogbookFiles& files, const WantedCapacity& wanted);

}  // namespace standalone

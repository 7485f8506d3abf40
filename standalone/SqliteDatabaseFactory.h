#pragma once

#include "export.h"

#include <lgb/DatabaseFactory.h>
#include <lgb/IDatabase.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

/// A platform for any Linux box: logbooks in SQLite files, a logger to standard error, the system's clock.
namespace standalone {

/// Where the logbooks are kept unless said otherwise: $TQZEL_LOGBOOK_DIR, else $STATE_DIRECTORY, else
/// $XDG_STATE_HOME/tqzel-logbook, else $HOME/.local/state/tqzel-logbook. Reads the environment, which no other thread
/// may change meanwhile.
/// @throws DatabaseError when none of the variables is set
TQZEL_STANDALONE_EXPORT std::filesystem::path logbookFolder();

/// The file in a folder that holds the named logbook; it need not exist.
TQZEL_STANDALONE_EXPORT std::filesystem::path logbookFile(const std::filesystem::path& folder, const char* name);

/// What the capacity that is asked for means to a logbook that is there already.
enum class Capacity {
    AtLeast,     ///< the logbook grows to it, and never shrinks
    OfNewAlone,  ///< nothing: the logbook keeps to its own
};

/// Opens logbooks as SQLite files in one folder. The databases it makes may be used from several threads, and several
/// processes may use the same folder; a lock is waited for up to 5 s.
class TQZEL_STANDALONE_EXPORT SqliteDatabaseFactory : public lgb::DatabaseFactory {
public:
    /// @param logbooks the folder, made when missing, at the first `create`; a relative path is looked for from the
    /// current folder at each operation
    /// @param meaning of the capacity that is asked for
    explicit SqliteDatabaseFactory(std::filesystem::path logbooks, Capacity meaning = Capacity::AtLeast);

    /// Newest record first, by order of adding. When `add` returns, the record survives power loss.
    /// @param name of the logbook; the file is `name`.db
    /// @param first has no meaning here
    /// @param second capacity in records, beyond which the oldest is dropped; 0: unlimited
    /// @throws DatabaseError, here and from the database, naming the file and the reason. A damaged logbook is healed;
    /// a file that is not a logbook, or was written by newer software, is left as it is.
    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t second) const override;

    /// Adds records to a logbook, oldest first, all of them or, when it throws, none. Makes the logbook when missing,
    /// and drops the oldest records beyond its capacity.
    /// @param name of the logbook; the file is `name`.db
    /// @param capacity in records, as `create` takes it
    /// @param records stored as they are, with the times they carry
    /// @return how many records of those that the logbook held before were dropped
    /// @throws DatabaseError
    std::int64_t addAll(const char* name, std::uint32_t capacity,
                        const std::vector<lgb::DatabaseRecord>& records) const;

    /// Changes how many records a logbook keeps, and drops the oldest beyond that at once. Makes the logbook when
    /// missing.
    /// @param name of the logbook; the file is `name`.db
    /// @param capacity in records; 0: unlimited
    /// @return how many records were dropped
    /// @throws DatabaseError
    std::int64_t resize(const char* name, std::uint32_t capacity) const;

private:
    std::filesystem::path folder;
    Capacity meaning;
};

}  // namespace standalone

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

/// Where the logbooks are kept unless said otherwise: $TQZEL_LOGBOOK_DIR, else $XDG_STATE_HOME/tqzel-logbook, else
/// $HOME/.local/state/tqzel-logbook. Reads the environment, which no other thread may change meanwhile.
/// @throws DatabaseError when none of the variables is set
TQZEL_STANDALONE_EXPORT std::filesystem::path logbookFolder();

/// The file in a folder that holds the named logbook; it need not exist.
TQZEL_STANDALONE_EXPORT std::filesystem::path logbookFile(const std::filesystem::path& folder, const char* name);

/// Opens logbooks as SQLite files in one folder. The databases it makes may be used from several threads, and several
/// processes may use the same folder; a lock is waited for up to 5 s.
class TQZEL_STANDALONE_EXPORT SqliteDatabaseFactory : public lgb::DatabaseFactory {
public:
    /// @param logbooks the folder, made when missing, at the first `create`
    explicit SqliteDatabaseFactory(std::filesystem::path logbooks);

    /// Newest record first, by order of adding. When `add` returns, the record survives power loss.
    /// @param name of the logbook; the file is `name`.db
    /// @param first has no meaning here
    /// @param second capacity in records, beyond which the oldest is dropped; 0: unlimited
    /// @throws DatabaseError, here and from the database, naming the file and the reason. A file that is not a logbook,
    ///         is damaged, or was written by a newer schema is left as it is.
    std::unique_ptr<lgb::IDatabase> create(const char* name, std::uint32_t first, std::uint32_t second) const override;

    /// Adds records to a logbook, oldest first, all of them or, when it throws, none. Makes the logbook when missing,
    /// and drops the oldest records beyond its capacity.
    /// @param name of the logbook; the file is `name`.db
    /// @param capacity in records; 0: unlimited
    /// @param records stored as they are, with the times they carry
    /// @return how many records of those that the logbook held before were dropped
    /// @throws DatabaseError
    std::int64_t addAll(const char* name, std::uint32_t capacity,
                        const std::vector<lgb::DatabaseRecord>& records) const;

private:
    std::filesystem::path folder;
};

}  // namespace standalone

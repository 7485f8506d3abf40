#pragma once

#include "LostRange.h"
#include "export.h"

#include <lgb/IDatabase.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace standalone {

/// What is left of a logbook whose file is damaged, found wherever it lies in the file and in the log beside it. Only
/// whole records count. Changes and makes no file; meant for files that nobody writes to. For one thread.
class TQZEL_STANDALONE_EXPORT Salvage {
public:
    /// Told now and then how many bytes of how many were looked through.
    using Progress = std::function<void(std::int64_t done, std::int64_t all)>;

    /// @param file a database; its log is looked for beside it, under the same name with "-wal" behind
    /// @throws DatabaseError naming the file and the reason, also when nothing in it is of a logbook
    explicit Salvage(const std::filesystem::path& file, const Progress& progress = nullptr);

    Salvage(const Salvage&) = delete;
    Salvage& operator=(const Salvage&) = delete;
    ~Salvage();

    /// The numbers of the records that the logbook kept, ascending.
    const std::vector<std::int64_t>& numbers() const;

    /// Those of records that it kept no longer, being full or cleared, but that still lie there, ascending.
    const std::vector<std::int64_t>& removed() const;

    /// Those of records that it kept and that are not whole any more.
    const std::vector<LostRange>& missing() const;

    /// @param number one of those found
    /// @return nothing, when somebody has written over it since
    std::optional<lgb::DatabaseRecord> record(std::int64_t number) const;

private:
    struct Found;
    std::unique_ptr<const Found> found;
};

}  // namespace standalone

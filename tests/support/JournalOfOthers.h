#pragma once

#include "SystemCall.h"
#include "TemporaryFolder.h"
#include "preparedLogs.h"

#include <filesystem>
#include <string>
#include <utility>

namespace support {

/// While it lasts, somebody puts a journal beside a database in the moment between the last look at its folder and its
/// opening by SQLite.
class JournalOfOthers {
public:
    /// @param itsEnd of the name of that database
    /// @param precious what the journal names, for SQLite to delete
    JournalOfOthers(std::string itsEnd, const std::filesystem::path& precious) {
        end = std::move(itsEnd);
        journal = journalNaming(precious.string());
    }

private:
    using OpenCall = SystemCall<int(const char* file, int flags, int mode)>;

    static int open(const char* file, int flags, int mode) {
        const std::string name = file;
        if (name.size() >= end.size() && name.substr(name.size() - end.size()) == end) {
            write(name + "-journal", journal);
        }
        return OpenCall::itself(file, flags, mode);
    }

    static inline std::string end;
    static inline std::string journal;
    const OpenCall call{{"open"}, open};
};

}  // namespace support

#pragma once

#include "LogbookFiles.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace standalone {

/// Names for the files of a logbook that were set aside because they are damaged: lgbCustomer.damaged-1.db and, behind
/// it, its log, counting up.
class SetAside {
public:
    explicit SetAside(const LogbookFiles& files);

    /// A database that is not there yet.
    std::string next() const;

    /// The databases of all sets, oldest first; of some there is only the log.
    std::vector<std::string> all() const;

    static constexpr std::size_t usuallyKept = 2;

    /// Removes all but the newest sets, as far as that is possible.
    /// @return whether any was removed
    bool removeOld(std::size_t kept = usuallyKept) const;

private:
    std::set<unsigned long> numbers() const;

    std::string databaseOf(unsigned long number) const {
        return folder + '/' + beginning + std::to_string(number) + ".db";
    }

    std::string folder;
    std::string beginning;
};

/// Removes a database and what stands beside it.
void removeSet(const std::string& database);

}  // namespace standalone

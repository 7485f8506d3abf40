#pragma once

#include <lgb/IDatabase.h>

#include <cstdint>
#include <memory>

#pragma GCC visibility push(default)

namespace lgb {

/// Opens the platform's databases by name. Both members are defined by the platform; a subclass may replace
/// `create`.
class DatabaseFactory {
public:
    virtual ~DatabaseFactory();

    /// Opens the named database, making it when there is none. A ZelLogbook calls it twice, while it is made.
    /// @param name of the logbook, "lgbCustomer" or "lgbService"
    /// @param first 6381 for both logbooks: a number that is the platform's own
    /// @param second how many records to keep: 500 for the customer logbook, 1000 for the service logbook
    /// @return never null
    /// @throws whatever the platform throws when the database can't be opened
    virtual std::unique_ptr<IDatabase> create(const char* name, std::uint32_t first, std::uint32_t second) const;
};

}  // namespace lgb

#pragma GCC visibility pop

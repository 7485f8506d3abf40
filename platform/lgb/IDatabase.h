#pragma once

#include <lgb/timestamp.h>

#include <string>
#include <vector>

#pragma GCC visibility push(default)

namespace lgb {

/// One stored record, as it was handed to IDatabase::add.
struct DatabaseRecord {
    timestamp::Timestamp timestamp;  ///< as the clock gave it
    std::string json;                ///< the stored document, usually about 150 bytes; any byte may occur
};

/// Storage of one logbook: records in one consistent order of the platform's choosing.
///
/// Every operation may throw; the exception reaches the caller of the logbook. A logbook takes no lock, so
/// concurrent calls of a logbook are as safe as concurrent calls of its database.
class IDatabase {
public:
    /// Defined by the platform.
    virtual ~IDatabase();

    /// Up to `count` records from position `offset` of the order on, in that order; none past the end.
    virtual std::vector<DatabaseRecord> fetch(unsigned int offset, unsigned int count) = 0;

    /// Stores one record; the database decides its position in the order. A record whose `add` threw is stored whole or
    /// not at all; which of the two may show only when the database is opened again, as when the disk failed to sync.
    virtual void add(const std::string& json, const timestamp::Timestamp& timestamp) = 0;

    /// Removes every record.
    virtual void clear() = 0;

    /// The number of stored records.
    virtual unsigned int count() = 0;
};

}  // namespace lgb

#pragma GCC visibility pop

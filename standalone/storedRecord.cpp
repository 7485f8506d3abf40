#include "storedRecord.h"

#include "checksum.h"

namespace standalone {

std::string selectRecords(const char* condition, const char* furtherColumns) {
    return std::string("SELECT number, seconds, nanoseconds, time, json, checksum") + furtherColumns +
           " FROM record WHERE " + condition;
}

StoredRecord storedRecord(const Statement& statement) {
    StoredRecord record{statement.number(0),
                        {{statement.number(1), statement.number(2), statement.text(3)}, statement.text(4)},
                        false,
                        {}};
    const auto& [seconds, nanoseconds, time] = record.content.timestamp;
    const NumberedRecord stored{record.number, seconds, nanoseconds, time, record.content.json};
    record.intact = checksum(stored) == statement.number(5);
    return record;
}

}  // namespace standalone

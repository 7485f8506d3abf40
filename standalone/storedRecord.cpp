#include "storedRecord.h"

#include "checksum.h"

namespace standalone {

StoredRecord storedRecord(const Statement& statement) {
    StoredRecord record{};
    record.number = statement.number(0);
    record.content.timestamp.seconds = statement.number(1);
    record.content.timestamp.nanoseconds = statement.number(2);
    record.content.timestamp.text = statement.text(3);
    record.content.json = statement.text(4);
    const auto& [seconds, nanoseconds, time] = record.content.timestamp;
    const NumberedRecord stored{record.number, seconds, nanoseconds, time, record.content.json};
    record.intact = checksum(stored) == statement.number(5);
    return record;
}

}  // namespace standalone

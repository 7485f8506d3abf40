#include "storedRecord.h"

namespace standalone {

StoredRecord storedRecord(const Statement& statement, const LogbookId& id) {
    StoredRecord record{};
    record.number = statement.number(0);
    record.content.timestamp.seconds = statement.number(1);
    record.content.timestamp.nanoseconds = statement.number(2);
    record.content.timestamp.text = statement.text(3);
    record.content.json = statement.text(4);
    const auto& [seconds, nanoseconds, time] = record.content.timestamp;
    const NumberedRecord stored{record.number, seconds, nanoseconds, time, record.content.json};
    record.intact = checksum(stored, id) == statement.number(5);
    return record;
}

void insert(Statement& statement, const NumberedRecord& record, const LogbookId& id) {
    statement.bind(1, record.number);
    statement.bind(2, record.seconds);
    statement.bind(3, record.nanoseconds);
    statement.bind(4, record.time);
    statement.bind(5, record.json);
    statement.bind(6, std::int64_t{checksum(record, id)});
    statement.run();
}

}  // namespace standalone

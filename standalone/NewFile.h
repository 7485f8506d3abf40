#pragma once

#include "Connection.h"
#include "LogbookHead.h"
#include "LostRanges.h"
#include "Statement.h"
#include "checksum.h"

#include <cstdint>
#include <optional>
#include <string>

namespace standalone {

/// Space that is set aside for a full logbook of usual records.
/// @param capacity in records; 0: unlimited
std::int64_t spaceFor(std::int64_t capacity);

/// The file of a logbook in the making, under a name that nobody else uses. It is removed again unless it is finished.
class NewFile {
public:
    /// @throws DatabaseError, as the others do
    NewFile(std::string path, const LogbookHead& itsHead, const LostRanges& lost);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    void add(const NumberedRecord& record);

    /// Sets its space aside and makes it safe from power loss, but for its name.
    void finish();

private:
    template <typename Operation>
    void attempt(Operation operation);

    std::string file;
    LogbookHead head;
    std::optional<Connection> connection;
    std::optional<Statement> insertRecord;
    bool finished = false;
};

}  // namespace standalone

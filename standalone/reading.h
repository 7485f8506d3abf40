#pragma once

#include "Connection.h"
#include "FunctionRef.h"
#include "LogbookFiles.h"
#include "examine.h"
#include "failures.h"

#include <array>
#include <memory>
#include <optional>
#include <string>

namespace standalone {

/// A connection that reads a file, whatever it holds, and neither changes nor makes any file. A file beside which there
/// are a log and its index is read together with those who use it; without them it is a copy, and taken as it is.
class ReadingConnection {
public:
    /// @throws DatabaseError naming the file, also when there is none
    explicit ReadingConnection(LogbookFiles names);

    Connection& database() { return connection; }

    /// What the file holds: looked at once, before anything in it is believed.
    /// @throws Fault, SqliteError
    const Examination& examination();

    /// Whether what was read can be trusted: a copy may have come into use meanwhile, and a file may be another.
    bool isStillRight() const noexcept;

private:
    using States = std::array<std::optional<FileState>, 3>;

    static States statesOf(const LogbookFiles& files);
    Connection connect() const;

    LogbookFiles files;
    States before;
    Connection connection;
    std::optional<Examination> examined;
};

/// Reads a file beside others who may write to it, make it or heal it at that moment; then it reads again.
class PatientReader {
public:
    explicit PatientReader(const std::string& path) : files(path) {}

    const LogbookFiles& names() const { return files; }

    /// @param read is given a connection, and called again when others came in between
    /// @throws DatabaseError naming the file
    void read(FunctionRef<void(ReadingConnection&)> read);

private:
    bool looksAgain(Failure failure, bool& isSecondLook) const;

    LogbookFiles files;
    std::unique_ptr<ReadingConnection> connection;
};

}  // namespace standalone

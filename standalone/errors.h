#pragma once

#include "export.h"

#include <tqbase2/system/Exception.h>

#include <string>
#include <utility>

namespace standalone {

/// A platform exception with a message of its own.
class TQZEL_STANDALONE_EXPORT Error : public tqbase2::system::Exception {
public:
    /// @param text what the exception says
    explicit Error(std::string text) : message(std::move(text)) {}

    /// The text it was made with; valid as long as the exception.
    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

/// A text that is not JSON; says where it broke.
class TQZEL_STANDALONE_EXPORT JsonError : public Error {
public:
    using Error::Error;  ///< As Error is made.
};

/// What keeps a logbook from being used, for those who do something about it.
enum class Failure {
    Busy,         ///< another process held a lock longer than it is waited for: to be tried again
    Full,         ///< the disk or a quota is full, or one entry is more than a logbook takes
    Denied,       ///< the process lacks a right on file or folder
    ReadOnly,     ///< the medium can't be written; what it holds can be read
    Damaged,      ///< what is stored is not what was stored, and it could not be healed
    Newer,        ///< written by newer software
    Foreign,      ///< no logbook of ours, or no regular file
    InputOutput,  ///< the medium fails
    Missing,      ///< there is no such logbook, or nothing says where the logbooks are
    Memory,       ///< there is no memory left, or no number for one more open file
};

/// A logbook file or folder that can't be used; names it and says why.
class TQZEL_STANDALONE_EXPORT DatabaseError : public Error {
public:
    /// @param failure what it is
    /// @param text what the exception says
    DatabaseError(Failure failure, std::string text) : Error(std::move(text)), reason(failure) {}

    /// What it is.
    Failure kind() const noexcept { return reason; }

private:
    Failure reason;
};

}  // namespace standalone

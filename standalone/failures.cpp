#include "failures.h"

#include <array>
#include <cerrno>
#include <system_error>

namespace standalone {

namespace {

struct Kind {
    int code;
    Failure failure;
};

constexpr std::array<Kind, 13> ofSystem = {{
    {ENOSPC, Failure::Full},
    {EDQUOT, Failure::Full},
    {EFBIG, Failure::Full},
    {EACCES, Failure::Denied},
    {EPERM, Failure::Denied},
    {EROFS, Failure::ReadOnly},
    {ENOENT, Failure::Missing},
    {ENOMEM, Failure::Memory},
    {EMFILE, Failure::Memory},
    {ENFILE, Failure::Memory},
    {ENOTDIR, Failure::Foreign},
    {EISDIR, Failure::Foreign},
    {ELOOP, Failure::Foreign},
}};

// What isn't listed here is what damage leads to.
constexpr std::array<Kind, 8> ofSqlite = {{
    {SQLITE_BUSY, Failure::Busy},
    {SQLITE_LOCKED, Failure::Busy},
    {SQLITE_PROTOCOL, Failure::Busy},
    {SQLITE_FULL, Failure::Full},
    {SQLITE_READONLY, Failure::ReadOnly},
    {SQLITE_NOMEM, Failure::Memory},
    {SQLITE_PERM, Failure::Denied},
    {SQLITE_AUTH, Failure::Denied},
}};

template <typename Kinds>
Failure kindOf(int code, const Kinds& kinds, Failure otherwise) {
    for (const Kind& kind : kinds) {
        if (kind.code == code) {
            return kind.failure;
        }
    }
    return otherwise;
}

}  // namespace

Failure failureOf(int error) {
    return kindOf(error, ofSystem, Failure::InputOutput);
}

Failure failureOf(const SqliteError& exception) {
    const int code = exception.outcome();
    if (code == SQLITE_IOERR || code == SQLITE_CANTOPEN) {
        const bool isMemory = exception.extendedOutcome() == SQLITE_IOERR_NOMEM;
        return failureOf(isMemory ? ENOMEM : exception.systemError());
    }
    return kindOf(code, ofSqlite, Failure::Damaged);
}

void refuse(const std::string& file, int error) {
    throw DatabaseError(failureOf(error), file + ": " + std::generic_category().message(error));
}

void refuse(const std::string& file, const Fault& fault) {
    throw DatabaseError(fault.kind, file + ": " + fault.reason);
}

void refuse(const std::string& file, const SqliteError& exception) {
    std::string text = file + ": " + exception.what();
    if (const int error = exception.systemError(); error != 0) {
        text += ": " + std::generic_category().message(error);
    }
    throw DatabaseError(failureOf(exception), text);
}

}  // namespace standalone

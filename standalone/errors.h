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

/// A logbook file or folder that can't be used; names it and says why.
class TQZEL_STANDALONE_EXPORT DatabaseError : public Error {
public:
    using Error::Error;  ///< As Error is made.
};

}  // namespace standalone

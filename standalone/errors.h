#pragma once

#include "export.h"

#include <tqbase2/system/Exception.h>

#include <string>
#include <utility>

namespace standalone {

/// A platform exception with a message of its own.
class TQZEL_STANDALONE_EXPORT Error : public tqbase2::system::Exception {
public:
    explicit Error(std::string text) : message(std::move(text)) {}

    const char* what() const noexcept override { return message.c_str(); }

private:
    std::string message;
};

/// A text that is not JSON; says where it broke.
class TQZEL_STANDALONE_EXPORT JsonError : public Error {
public:
    using Error::Error;
};

/// A logbook file or folder that can't be used; names it and says why.
class TQZEL_STANDALONE_EXPORT DatabaseError : public Error {
public:
    using Error::Error;
};

}  // namespace standalone

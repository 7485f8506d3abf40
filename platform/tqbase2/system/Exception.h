#pragma once

#include <exception>
#include <string>

#pragma GCC visibility push(default)

/// What the library needs of any platform: exceptions, JSON text, a logger, signals.
namespace tqbase2::system {

/// Base of what the platform throws. Keeps the default what().
class Exception : public std::exception {};

/// A value that has no meaning, such as an enum value that can't be converted. Keeps the default what().
class LogicError : public Exception {};

/// What a log line says of a caught exception; the wording is the platform's.
std::string extractErrorMessage(const Exception& exception);

}  // namespace tqbase2::system

#pragma GCC visibility pop

#pragma once

namespace tqbase2::system {
class Exception;
}

namespace lgb {

/// Logs at level 4 what a description failed on: the operation, a blank, the platform's words for the exception.
void logFailure(const char* operation, const tqbase2::system::Exception& exception);

}  // namespace lgb

// A message table as it must be; the same with TWO_ROWS_OF_ONE_ID must not compile.

#include "Message.h"

namespace {

#ifdef TWO_ROWS_OF_ONE_ID
constexpr unsigned int secondId = 3;
#else
constexpr unsigned int secondId = 4;
#endif

constexpr lgb::Message messages[] = {
    {3, "Temperature below average"},
    {secondId, "Temperature above average"},
};

static_assert(lgb::idsAscend(messages), "one row an id, ids ascending");

}  // namespace

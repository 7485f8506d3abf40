// A message table as it must be; with TWO_ROWS_OF_ONE_ID, AN_ID_TOO_LARGE or AN_UNKNOWN_PLACE it must not compile.

#include "Message.h"

namespace {

#ifdef TWO_ROWS_OF_ONE_ID
constexpr unsigned int secondId = 3;
#elif defined AN_ID_TOO_LARGE
constexpr unsigned int secondId = 65536;
#else
constexpr unsigned int secondId = 4;
#endif

#ifdef AN_UNKNOWN_PLACE
#define PLACE "{modul}"
#else
#define PLACE "{module}"
#endif

constexpr lgb::Message messages[] = {
    {3, "Temperature below average"},
    {secondId, "Temperature above average for amplifier " PLACE},
};

static_assert(lgb::idsAscend(messages), "one row an id, ids ascending");
static_assert(lgb::placesAreKnown(messages), "each {place} is one of those in places.h");

}  // namespace

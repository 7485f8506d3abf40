#pragma once

#include <lgb/timestamp.h>
#include <nsa/zel/structs/LogbookEntry.h>

namespace tqbase2::nsa::zel::logbook {

/// What a logbook adds and returns: a record with the time at which it was made.
struct Entry : structs::LogbookEntry {
    lgb::timestamp::Timestamp timestamp;
};

}  // namespace tqbase2::nsa::zel::logbook

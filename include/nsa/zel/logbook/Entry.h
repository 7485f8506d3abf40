#pragma once

#include <lgb/timestamp.h>
#include <nsa/zel/structs/LogbookEntry.h>

/// What goes through a logbook.
namespace tqbase2::nsa::zel::logbook {

/// What a logbook adds and returns: a record with the time at which it was made.
struct Entry : structs::LogbookEntry {
    lgb::timestamp::Timestamp timestamp;  ///< stored as it is; the order of a logbook is the database's, not the time's
};

}  // namespace tqbase2::nsa::zel::logbook

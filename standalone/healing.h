#pragma once

#include "LogbookFiles.h"
#include "WantedCapacity.h"

#include <cstdint>

namespace standalone {

// All of this by whoever holds the lock of the names.

/// Makes a logbook where there is none. A log that was left behind is set aside.
/// @return whether it did
bool makeIfMissing(const LogbookFiles& files, std::int64_t capacity);

/// Goes on where a healing was cut off by a kill or by power loss.
/// @return whether it put a healed logbook in its place
bool finishHealing(const LogbookFiles& files);

/// Looks again, while nobody writes, whether a logbook is damaged. If so sets its files aside and puts one in their
/// place that holds each record which is whole, wherever it was found; says at level 4 what was found and what is lost.
/// @param wanted of the new one, when the damaged one doesn't tell any more
/// @return whether it was damaged
/// @throws DatabaseError, also for what never was a logbook; then everything is as it was
bool heal(const LogbookFiles& files, const WantedCapacity& wanted);

/// Moves a log away that is of another logbook.
void setLogAside(const LogbookFiles& files);

}  // namespace standalone

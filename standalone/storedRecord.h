#pragma once

#include "LogbookReader.h"
#include "Statement.h"

namespace standalone {

/// The record that a statement by schema::selectRecords stands at, compared with its check value.
StoredRecord storedRecord(const Statement& statement);

}  // namespace standalone

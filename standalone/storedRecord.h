#pragma once

#include "LogbookReader.h"
#include "Statement.h"
#include "checksum.h"

namespace standalone {

/// The record that a statement by schema::selectRecords stands at, compared with its check value.
/// @param id of its logbook
StoredRecord storedRecord(const Statement& statement, const LogbookId& id);

/// Runs a statement by schema::insertRecord.
void insert(Statement& statement, const NumberedRecord& record, const LogbookId& id);

}  // namespace standalone

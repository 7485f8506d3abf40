#pragma once

#include "LogbookReader.h"
#include "Statement.h"

#include <string>

namespace standalone {

/// A statement for records.
/// @param condition what is to stand behind WHERE
/// @param furtherColumns each with a comma before it
std::string selectRecords(const char* condition, const char* furtherColumns = "");

/// The record that such a statement stands at, compared with its check value.
StoredRecord storedRecord(const Statement& statement);

}  // namespace standalone

#pragma once

#include <SQLiteCpp/Database.h>

#include <filesystem>
#include <string>

namespace support {

/// Changes a database past what keeps it.
inline void execute(const std::filesystem::path& database, const std::string& sql) {
    SQLite::Database(database.string(), SQLite::OPEN_READWRITE).exec(sql);
}

}  // namespace support

#pragma once

#include "TemporaryFolder.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>

namespace support {

/// Makes the files of a logbook of any bytes. The first of them tells how many units of 1024 bytes behind it are the
/// database; the rest is its log. Of 255 all is the database.
inline void writePreparedFiles(const std::filesystem::path& database, const std::string& input) {
    constexpr std::size_t unitBytes = 1024;
    constexpr unsigned char all = 255;
    const unsigned char units = input.empty() ? all : static_cast<unsigned char>(input.front());
    const std::string files = input.empty() ? "" : input.substr(1);
    const std::size_t bytes = units == all ? files.size() : std::min(files.size(), units * unitBytes);
    write(database, files.substr(0, bytes));
    if (bytes < files.size()) {
        write(database.string() + "-wal", files.substr(bytes));
    }
}

}  // namespace support

#pragma once

#include "TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace support {

/// Turns a bit of a text wherever it stands in a file, which may be in use.
inline void spoil(const std::filesystem::path& file, const std::string& text) {
    const std::string content = contentOf(file);
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    for (std::size_t at = content.find(text); at != std::string::npos; at = content.find(text, at + 1)) {
        stream.seekp(static_cast<std::streamoff>(at));
        stream.put(static_cast<char>(content[at] ^ 1));
    }
}

}  // namespace support

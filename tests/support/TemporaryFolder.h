#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

namespace support {

/// A folder that lasts as long as this object.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "tqzel-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("can't make " + name);
        }
        folder = name;
    }

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    ~TemporaryFolder() { std::filesystem::remove_all(folder); }

    const std::filesystem::path& path() const { return folder; }

    std::filesystem::path operator/(const std::string& name) const { return folder / name; }

private:
    std::filesystem::path folder;
};

inline std::string contentOf(const std::filesystem::path& file) {
    std::ostringstream content;
    content << std::ifstream(file, std::ios::binary).rdbuf();
    return content.str();
}

/// Bytes that the disk keeps for a file, which may be more than its size.
inline std::uintmax_t allottedTo(const std::filesystem::path& file) {
    struct stat status {};

    constexpr std::uintmax_t blockBytes = 512;
    return stat(file.c_str(), &status) == 0 ? static_cast<std::uintmax_t>(status.st_blocks) * blockBytes : 0;
}

/// The names and contents of the files in a folder.
inline std::map<std::string, std::string> filesOf(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        files[entry.path().filename()] = contentOf(entry.path());
    }
    return files;
}

inline void write(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

}  // namespace support

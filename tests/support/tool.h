#pragma once

#include "Check.h"
#include "run.h"

#include <json/value.h>
#include <tqbase2/system/JsonUtility.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

/// What a shell runs as the tool.
inline std::string toolCommand(const std::filesystem::path& folder, const std::string& arguments) {
    return std::string(TQZEL_TOOL) + " --folder '" + folder.string() + "' " + arguments;
}

/// A program whose output comes through a pipe, which holds it up.
class SlowlyRead {
public:
    explicit SlowlyRead(const std::string& command) : pipe(popen((command + " 2>&1").c_str(), "r")) {
        if (pipe == nullptr) {
            throw std::runtime_error("can't run " + command);
        }
    }

    SlowlyRead(const SlowlyRead&) = delete;
    SlowlyRead& operator=(const SlowlyRead&) = delete;

    ~SlowlyRead() {
        if (pipe != nullptr) {
            pclose(pipe);
        }
    }

    /// @return whether there was more
    bool readSome() {
        std::array<char, 4096> bytes{};
        const std::size_t count = fread(bytes.data(), 1, bytes.size(), pipe);
        text.append(bytes.data(), count);
        return count > 0;
    }

    /// The rest, with a pause before each piece of it.
    Outcome end(std::chrono::microseconds pause) {
        while (readSome()) {
            usleep(static_cast<useconds_t>(pause.count()));
        }
        const int status = pclose(pipe);
        pipe = nullptr;
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text, ""};
    }

private:
    FILE* pipe;
    std::string text;
};

/// The JSON text of each line.
inline std::vector<Json::Value> jsonLinesOf(const std::string& text) {
    std::vector<Json::Value> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(tqbase2::system::JsonUtility::toJsonValue(line));
    }
    return lines;
}

/// Whether numbers count down, without gaps.
inline bool countDown(const std::vector<std::int64_t>& numbers) {
    return std::adjacent_find(numbers.begin(), numbers.end(),
                              [](std::int64_t one, std::int64_t next) { return next != one - 1; }) == numbers.end();
}

}  // namespace support

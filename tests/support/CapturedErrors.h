#pragma once

#include "TemporaryFolder.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

namespace support {

/// What is written to standard error while this object lasts.
class CapturedErrors {
public:
    CapturedErrors() : before(dup(STDERR_FILENO)), capture(open((folder / "errors").c_str(), O_RDWR | O_CREAT, 0600)) {
        dup2(capture, STDERR_FILENO);
    }

    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;

    ~CapturedErrors() {
        std::fflush(stderr);
        dup2(before, STDERR_FILENO);
        close(before);
        close(capture);
    }

    /// What has been written since the last call.
    std::string take() {
        std::fflush(stderr);
        std::string text = contentOf(folder / "errors");
        if (!text.empty()) {
            std::filesystem::resize_file(folder / "errors", 0);
            lseek(capture, 0, SEEK_SET);
        }
        return text;
    }

private:
    TemporaryFolder folder;
    int before;
    int capture;
};

}  // namespace support

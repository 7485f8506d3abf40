#include "foundFile.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <stdexcept>

namespace tool {

namespace fs = std::filesystem;

namespace {

using FileState = struct stat;

FilePlace placeIn(const fs::path& file) {
    const fs::path folder = file.has_parent_path() ? file.parent_path() : ".";
    FilePlace place{Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
                    file.has_filename() ? file.filename() : ".", std::nullopt};
    FileState found{};
    if (fstatat(place.folder, place.name.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0) {
        place.found = found;
    } else {
        require(errno == ENOENT);
    }
    return place;
}

/// Whether its links lead to what a program has open.
bool isOfProcesses(const Descriptor& folder) {
    struct statfs system {};

    return fstatfs(folder, &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
}

std::string targetOf(const FilePlace& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlinkat(link.folder, link.name.c_str(), target.data(), target.size());
    require(length >= 0);
    return {target.data(), static_cast<std::size_t>(length)};
}

}  // namespace

void require(bool succeeds) {
    if (!succeeds) {
        throw Reason{errno};
    }
}

Descriptor::Descriptor(int opened) : number(opened) {
    require(number >= 0);
}

Descriptor::Descriptor(Descriptor&& other) noexcept : number(other.release()) {}

Descriptor::~Descriptor() {
    if (number >= 0) {
        close(number);
    }
}

FilePlace placeOf(fs::path file) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        FilePlace place = placeIn(file);
        if (!place.found || !S_ISLNK(place.found->st_mode) || isOfProcesses(place.folder)) {
            return place;
        }
        if (place.found->st_uid != 0 && place.found->st_uid != geteuid()) {
            throw std::runtime_error(file.string() + ": is somebody else's link, and not followed");
        }
        file = file.parent_path() / targetOf(place);
    }
    throw Reason{ELOOP};
}

/// Of links only those are left that lead to what a program has open.
Descriptor opened(const FilePlace& place, int flags) {
    const bool isLink = place.found && S_ISLNK(place.found->st_mode);
    Descriptor file(openat(place.folder, place.name.c_str(), flags | O_CLOEXEC | (isLink ? 0 : O_NOFOLLOW)));
    FileState state{};
    require(fstat(file, &state) == 0);
    if (place.found && !isLink && (state.st_dev != place.found->st_dev || state.st_ino != place.found->st_ino)) {
        throw Reason{ESTALE};
    }
    return file;
}

}  // namespace tool

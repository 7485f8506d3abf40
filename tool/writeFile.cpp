#include "writeFile.h"

#include "rights.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ext/stdio_filebuf.h>
#include <filesystem>
#include <optional>
#include <random>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace tool {

namespace fs = std::filesystem;

namespace {

using FileState = struct stat;

/// Why a file can't be written.
struct Reason {
    int error;
};

class Descriptor {
public:
    explicit Descriptor(int opened) : number(opened) {
        if (number < 0) {
            throw Reason{errno};
        }
    }

    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)) {}

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;

    ~Descriptor() {
        if (number >= 0) {
            close(number);
        }
    }

    operator int() const { return number; }  // NOLINT(google-explicit-constructor): it is one

private:
    int number;
};

void require(bool succeeds) {
    if (!succeeds) {
        throw Reason{errno};
    }
}

/// Where a file is, or is to be: a folder that is open, so that nobody puts another in its place, and a name in it.
struct Place {
    Descriptor folder;
    std::string name;
    std::optional<FileState> found;
};

Place placeIn(const fs::path& file) {
    const fs::path folder = file.has_parent_path() ? file.parent_path() : ".";
    Place place{Descriptor(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
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

std::string targetOf(const Place& link) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlinkat(link.folder, link.name.c_str(), target.data(), target.size());
    require(length >= 0);
    return {target.data(), static_cast<std::size_t>(length)};
}

/// Follows links, but none that somebody else may have prepared.
Place placeOf(fs::path file) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        Place place = placeIn(file);
        if (!place.found || !S_ISLNK(place.found->st_mode) || isOfProcesses(place.folder)) {
            return place;
        }
        if (place.found->st_uid != 0 && place.found->st_uid != geteuid()) {
            throw std::runtime_error(file.string() + ": can't be written: it is somebody else's link");
        }
        file = file.parent_path() / targetOf(place);
    }
    throw Reason{ELOOP};
}

/// Not by its name, which may stand for another file by now.
void writeThrough(int descriptor, const Writer& write) {
    const int own = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    require(own >= 0);
    __gnu_cxx::stdio_filebuf<char> buffer(own, std::ios::out | std::ios::binary);  // which closes it
    std::ostream stream(&buffer);
    errno = 0;
    write(stream, isatty(own) == 1);
    require(stream.flush() && buffer.close() != nullptr);
}

// What is in the making, for a signal that ends the program.
volatile std::sig_atomic_t folderOfPart = -1;
const char* volatile nameOfPart = nullptr;

void removePart(int signal) {
    if (nameOfPart != nullptr && seteuid(getuid()) == 0) {
        unlinkat(folderOfPart, nameOfPart, 0);
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void onEnd(void (*handle)(int signal)) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const auto before = std::signal(signal, handle);
        if (before == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

mode_t ofNewFile() {
    const mode_t masked = umask(0);
    umask(masked);
    return 0666U & ~masked;
}

/// A file beside the one that it is to replace, with a name that nobody else has.
class Part {
public:
    explicit Part(const Place& replaced) : place(replaced), file(made()) {
        folderOfPart = place.folder;
        nameOfPart = name.c_str();
        onEnd(removePart);
    }

    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    ~Part() {
        const CallersRights callers;
        unlinkat(place.folder, name.c_str(), 0);  // nothing, once it has replaced the other
        nameOfPart = nullptr;
        onEnd(SIG_DFL);
    }

    int descriptor() const { return file; }

    void replaceOther() const {
        // A medium without permissions does, too.
        static_cast<void>(fchmod(file, permissions()));
        require(fsync(file) == 0 && renameat(place.folder, name.c_str(), place.folder, place.name.c_str()) == 0);
    }

private:
    Descriptor made() {
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        constexpr int mostTries = 100;
        constexpr std::uint32_t names = 1000000;
        int opened = -1;
        int tries = 0;
        do {
            name = place.name + '.' + std::to_string(std::random_device()() % names);
            opened = openat(place.folder, name.c_str(), flags, 0600);
        } while (opened < 0 && errno == EEXIST && ++tries < mostTries);
        return Descriptor(opened);
    }

    /// Those of the older file, with its owner; where it can't have that one, no more than a new file has.
    mode_t permissions() const {
        if (!place.found) {
            return ofNewFile();
        }
        const bool isOwners = fchown(file, place.found->st_uid, place.found->st_gid) == 0;
        return place.found->st_mode & (isOwners ? 0777U : ofNewFile());
    }

    const Place& place;
    std::string name;
    Descriptor file;
};

void replace(const Place& place, const Writer& write) {
    std::optional<CallersRights> callers(std::in_place);
    const Part part(place);
    callers.reset();
    writeThrough(part.descriptor(), write);
    callers.emplace();
    part.replaceOther();
}

/// Behind what a shell has collected in it.
void append(const Place& place, const Writer& write) {
    std::optional<CallersRights> callers(std::in_place);
    const Descriptor file(openat(place.folder, place.name.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC));
    callers.reset();
    writeThrough(file, write);
}

Place placeForCaller(const std::string& file) {
    const CallersRights callers;
    return placeOf(file);
}

}  // namespace

void writeFile(const std::string& file, const Writer& write) {
    try {
        const Place place = placeForCaller(file);
        const bool canBeReplaced = !place.found || S_ISREG(place.found->st_mode);
        (canBeReplaced ? replace : append)(place, write);
    } catch (const Reason& reason) {
        throw std::runtime_error(file + ": can't be written" +
                                 (reason.error == 0 ? "" : ": " + std::generic_category().message(reason.error)));
    }
}

}  // namespace tool

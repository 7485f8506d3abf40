#include "writeFile.h"

#include "foundFile.h"
#include "rights.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ext/stdio_filebuf.h>
#include <optional>
#include <random>
#include <stdexcept>
#include <system_error>

namespace tool {

namespace {

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
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ}) {
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
    explicit Part(const FilePlace& replaced) : place(replaced), file(made()) {
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

    const FilePlace& place;
    std::string name;
    Descriptor file;
};

void replace(const FilePlace& place, const Writer& write) {
    std::optional<CallersRights> callers(std::in_place);
    const Part part(place);
    callers.reset();
    writeThrough(part.descriptor(), write);
    callers.emplace();
    part.replaceOther();
}

/// Behind what a shell has collected in it.
void append(const FilePlace& place, const Writer& write) {
    std::optional<CallersRights> callers(std::in_place);
    const Descriptor file = opened(place, O_WRONLY | O_APPEND | O_NOCTTY);
    callers.reset();
    writeThrough(file, write);
}

FilePlace placeForCaller(const std::string& file) {
    const CallersRights callers;
    return placeOf(file);
}

}  // namespace

void writeFile(const std::string& file, const Writer& write) {
    try {
        const FilePlace place = placeForCaller(file);
        const bool canBeReplaced = !place.found || S_ISREG(place.found->st_mode);
        (canBeReplaced ? replace : append)(place, write);
    } catch (const Reason& reason) {
        throw std::runtime_error(file + ": can't be written" +
                                 (reason.error == 0 ? "" : ": " + std::generic_category().message(reason.error)));
    }
}

}  // namespace tool

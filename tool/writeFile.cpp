#include "writeFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace tool {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuseToWrite(const std::string& file) {
    const int reason = errno;
    throw std::runtime_error(file + ": can't be written" +
                             (reason == 0 ? "" : ": " + std::generic_category().message(reason)));
}

/// @param shown how the file is called
void writeTo(const std::string& file, std::ios::openmode mode, const std::string& shown, const Writer& write) {
    errno = 0;
    std::ofstream stream(file, mode | std::ios::binary);
    if (stream) {
        write(stream);
        stream.close();
    }
    if (!stream) {
        refuseToWrite(shown);
    }
}

/// Whether a name leads to what a program has open.
bool isOpenElsewhere(fs::path file) {
    while (fs::is_symlink(file)) {
        const fs::path place = fs::canonical(file.parent_path());
        if (place.string().rfind("/proc/", 0) == 0) {
            return true;
        }
        file = place / fs::read_symlink(file);
    }
    return false;
}

bool canBeReplaced(const fs::path& file) {
    std::error_code none;
    return fs::is_regular_file(file, none) ? !isOpenElsewhere(fs::absolute(file))
                                           : !fs::exists(fs::symlink_status(file, none));
}

/// Those of the file that is there, else the usual ones.
mode_t permissionsOf(const fs::path& file) {
    struct stat found {};

    if (stat(file.c_str(), &found) == 0) {
        return found.st_mode & 07777U;
    }
    const mode_t masked = umask(0);
    umask(masked);
    return 0666U & ~masked;
}

/// A file beside the one that it is to replace, with a name that nobody else has.
class Part {
public:
    explicit Part(const fs::path& replaced)
        : target(replaced), file(replaced.string() + ".XXXXXX"), descriptor(mkstemp(file.data())) {}

    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;

    ~Part() {
        if (descriptor >= 0) {
            close(descriptor);
            std::remove(file.c_str());  // nothing, once it has replaced the other
        }
    }

    bool isMade() const { return descriptor >= 0; }

    const std::string& name() const { return file; }

    bool replaceTarget() const {
        static_cast<void>(fchmod(descriptor, permissionsOf(target)));  // a medium without permissions does, too
        return fsync(descriptor) == 0 && std::rename(file.c_str(), target.c_str()) == 0;
    }

private:
    fs::path target;
    std::string file;
    int descriptor;
};

void replace(const fs::path& target, const std::string& shown, const Writer& write) {
    const Part part(target);
    if (!part.isMade()) {
        refuseToWrite(shown);
    }
    writeTo(part.name(), std::ios::trunc, shown, write);
    if (!part.replaceTarget()) {
        refuseToWrite(shown);
    }
}

}  // namespace

void writeFile(const std::string& file, const Writer& write) {
    if (canBeReplaced(file)) {
        replace(fs::exists(file) ? fs::canonical(file) : fs::path(file), file, write);
    } else {
        writeTo(file, std::ios::app, file, write);  // behind what a shell has collected in it
    }
}

}  // namespace tool

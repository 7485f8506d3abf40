#include "LogbookFiles.h"

#include "Waiting.h"
#include "failures.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

namespace standalone {

namespace {

constexpr mode_t forOwnerAndGroup = 0660;

FileState stateFrom(const struct stat& status) {
    constexpr std::int64_t blockBytes = 512;  // in which st_blocks counts
    constexpr std::int64_t nanosecondsPerSecond = 1000000000;
    return {status.st_dev, status.st_ino, status.st_size, status.st_blocks * blockBytes,
            status.st_mtim.tv_sec * nanosecondsPerSecond + status.st_mtim.tv_nsec};
}

void requireRegular(const std::string& file, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        throw DatabaseError(Failure::Foreign, file + ": is no regular file");
    }
}

int opened(const std::string& file, int flags) {
    const int descriptor = open(file.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, forOwnerAndGroup);
    if (descriptor == -1) {
        const int reason = errno;
        stateOf(file);  // what is no regular file can't be opened for many reasons
        refuse(file, reason);
    }
    return descriptor;
}

struct stat statusOf(const std::string& file, int descriptor) {
    struct stat status {};

    if (fstat(descriptor, &status) != 0) {
        refuse(file, errno);
    }
    return status;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, std::max<std::size_t>(slash, 1));
}

/// Whether all of a group are to write to what is in a folder, whatever their own settings for new files.
bool isOfGroup(const std::string& folder) {
    struct stat status {};

    constexpr mode_t givenToGroup = S_ISGID | S_IWGRP;
    return stat(folder.c_str(), &status) == 0 && (status.st_mode & givenToGroup) == givenToGroup;
}

}  // namespace

std::string nameOf(const std::string& file) {
    return file.substr(file.rfind('/') + 1);
}

LogbookFiles::LogbookFiles(std::string path)
    : folder(folderOf(path)),
      database(std::move(path)),
      log(database + "-wal"),
      index(database + "-shm"),
      journal(database + "-journal"),
      lock(database + "-lock"),
      making(database + "-making"),
      healed(database + "-healed") {}

std::string pathForSqlite(const std::string& file) {
    const std::string folder = folderOf(file);
    const std::unique_ptr<char, void (*)(void*)> found(realpath(folder.c_str(), nullptr), std::free);
    return (found ? found.get() : folder) + '/' + nameOf(file);  // what keeps it from being found, SQLite meets, too
}

std::optional<FileState> stateOf(const std::string& file) {
    struct stat status {};

    if (lstat(file.c_str(), &status) != 0) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        refuse(file, errno);
    }
    requireRegular(file, status);
    return stateFrom(status);
}

void requireNoJournal(const LogbookFiles& files) {
    const auto journal = stateOf(files.journal);
    if (journal && journal->bytes > 0) {
        throw DatabaseError(Failure::Foreign, files.journal + ": stands beside a logbook, but is none of its files");
    }
}

void requireNotEmpty(const FileState& database) {
    constexpr std::int64_t mostTakenForNone = 1;
    if (database.bytes <= mostTakenForNone) {
        throw Fault{Failure::Damaged, "damaged: it is empty"};
    }
}

bool stillIs(const std::string& file, const FileState& state) noexcept {
    struct stat status {};

    return lstat(file.c_str(), &status) == 0 && status.st_ino == state.inode && status.st_dev == state.device;
}

void makeFolder(const std::string& folder) {
    struct stat status {};

    if (stat(folder.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            return;
        }
    } else if (errno != ENOENT && errno != ENOTDIR) {
        refuse(folder, errno);
    }
    const std::string parent = folderOf(folder);
    if (parent != folder) {
        makeFolder(parent);
    }
    constexpr mode_t writtenByNoOthers = 0775;
    if (mkdir(folder.c_str(), writtenByNoOthers) != 0 && errno != EEXIST) {
        const int reason = errno;
        throw DatabaseError(failureOf(reason),
                            folder + ": can't make the folder: " + std::generic_category().message(reason));
    }
    syncFolder(parent);
}

void syncFolder(const std::string& folder) {
    const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor == -1) {
        refuse(folder, errno);
    }
    const int error = fsync(descriptor) == 0 ? 0 : errno;
    close(descriptor);
    if (error != 0 && error != EINVAL) {  // a file system whose folders need none
        refuse(folder, error);
    }
}

void syncFolders(const std::string& folder) {
    syncFolder(folder);
    const std::string parent = folderOf(folder);
    if (parent != folder && eaccess(parent.c_str(), R_OK) == 0) {
        syncFolders(parent);
    }
}

std::int64_t freeBytes(const std::string& file) {
    struct statvfs space {};

    const bool isKnown = statvfs(file.c_str(), &space) == 0;
    return isKnown ? static_cast<std::int64_t>(space.f_bfree) * static_cast<std::int64_t>(space.f_frsize) : INT64_MAX;
}

void removeFile(const std::string& file) {
    if (unlink(file.c_str()) != 0 && errno != ENOENT) {
        refuse(file, errno);
    }
}

void renameFile(const std::string& from, const std::string& to, bool replaces) {
    int outcome = renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), replaces ? 0 : RENAME_NOREPLACE);
    if (outcome != 0 && !replaces && errno == EINVAL) {  // a file system that can't
        outcome = rename(from.c_str(), to.c_str());
    }
    if (outcome != 0) {
        refuse(to, errno);
    }
}

OpenFile::OpenFile(std::string file, int flags) : name(std::move(file)), descriptor(opened(name, flags)) {
    try {
        requireRegular(name, statusOf(name, descriptor));
        if ((flags & O_CREAT) != 0 && isOfGroup(folderOf(name))) {
            static_cast<void>(fchmod(descriptor, forOwnerAndGroup));  // what somebody else has made before has it
        }
    } catch (...) {
        close(descriptor);
        throw;
    }
}

OpenFile::~OpenFile() {
    close(descriptor);
}

std::size_t OpenFile::read(std::int64_t offset, char* bytes, std::size_t count) const {
    std::size_t all = 0;
    while (all < count) {
        const ssize_t got = pread(descriptor, bytes + all, count - all, offset + static_cast<std::int64_t>(all));
        if (got == -1 && errno != EINTR) {
            refuse(name, errno);
        }
        if (got == 0) {
            break;
        }
        all += got > 0 ? static_cast<std::size_t>(got) : 0;
    }
    return all;
}

void OpenFile::write(std::int64_t offset, const char* bytes, std::size_t count) const {
    for (std::size_t all = 0; all < count;) {
        const ssize_t put = pwrite(descriptor, bytes + all, count - all, offset + static_cast<std::int64_t>(all));
        if (put == -1 && errno != EINTR) {
            refuse(name, errno);
        }
        all += put > 0 ? static_cast<std::size_t>(put) : 0;
    }
}

bool OpenFile::allot(std::int64_t bytes, bool grows) const {
    int outcome = -1;
    do {
        outcome = fallocate(descriptor, grows ? 0 : FALLOC_FL_KEEP_SIZE, 0, bytes);
    } while (outcome != 0 && errno == EINTR);
    if (outcome != 0 && errno != EOPNOTSUPP && errno != ENOSYS) {
        refuse(name, errno);
    }
    return outcome == 0;
}

bool OpenFile::empty() const noexcept {
    return ftruncate(descriptor, 0) == 0;
}

void OpenFile::sync() const {
    if (fsync(descriptor) != 0) {
        refuse(name, errno);
    }
}

FileState OpenFile::state() const {
    return stateFrom(statusOf(name, descriptor));
}

void NamesLock::setSpaceAside() const {
    constexpr std::int64_t indexBytes = std::int64_t{32} * 1024;
    if (file->state().allotted < indexBytes) {
        file->allot(indexBytes, true);
    }
}

void NamesLock::trySetSpaceAside() const noexcept {
    try {
        setSpaceAside();
    } catch (const std::exception&) {  // it is done without
    }
}

bool NamesLock::giveSpaceBack() const {
    const bool hadSome = file->state().allotted > 0;
    return file->empty() && hadSome;
}

NamesLock::NamesLock(const LogbookFiles& files) {
    const Waiting waiting;
    while (!file || !stillIs(files.lock, file->state())) {  // whoever waited may hold what has lost its name meanwhile
        file.emplace(files.lock, O_RDWR | O_CREAT);
        while (flock(file->number(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK && errno != EINTR) {
                refuse(files.lock, errno);
            }
            if (!waiting.goesOn()) {
                throw DatabaseError(Failure::Busy, files.database + ": another process is opening or healing it");
            }
        }
    }
}

}  // namespace standalone

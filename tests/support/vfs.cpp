#include "vfs.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>

#include <new>

namespace support {

namespace {

constexpr const char* fileSystem = "unix";

sqlite3_vfs* below() {
    return sqlite3_vfs_find(fileSystem);
}

/// A file as the file system has it.
struct Below {
    Below() : file(static_cast<sqlite3_file*>(operator new(static_cast<std::size_t>(below()->szOsFile)))) {}

    Below(const Below&) = delete;
    Below& operator=(const Below&) = delete;

    ~Below() { operator delete(file); }

    const sqlite3_io_methods* operator->() const { return file->pMethods; }

    operator sqlite3_file*() const { return file; }

    sqlite3_file* file;
};

/// A file as SQLite has it.
struct File : sqlite3_file {
    explicit File(Vfs& its) : sqlite3_file{}, vfs(its) {}

    Vfs& vfs;
    Below disk;
};

File& of(sqlite3_file* file) {
    return *static_cast<File*>(file);
}

/// Carries a call out if it is to be.
template <typename Operation>
int ask(Vfs& vfs, Call call, Operation operation) {
    const Answer answer = vfs.answer(call);
    return answer.code == SQLITE_OK ? operation() : answer.code;
}

int closeFile(sqlite3_file* closed) {
    File& file = of(closed);
    const int code = file.disk->xClose(file.disk);
    file.~File();
    return code;
}

int readFile(sqlite3_file* from, void* bytes, int size, sqlite3_int64 offset) {
    File& file = of(from);
    return ask(file.vfs, Call::Read, [&] { return file.disk->xRead(file.disk, bytes, size, offset); });
}

int writeFile(sqlite3_file* to, const void* bytes, int size, sqlite3_int64 offset) {
    File& file = of(to);
    const auto carryOut = [&](int length) { return file.disk->xWrite(file.disk, bytes, length, offset); };
    const Answer answer = file.vfs.answer(Call::Write);
    if (answer.code == SQLITE_OK) {
        return carryOut(size);
    }
    if (answer.half) {
        carryOut(size / 2);
    }
    return answer.code;
}

int truncateFile(sqlite3_file* truncated, sqlite3_int64 size) {
    File& file = of(truncated);
    return ask(file.vfs, Call::Truncate, [&] { return file.disk->xTruncate(file.disk, size); });
}

int syncFile(sqlite3_file* synced, int flags) {
    File& file = of(synced);
    return ask(file.vfs, Call::Sync, [&] { return file.disk->xSync(file.disk, flags); });
}

int sizeOfFile(sqlite3_file* measured, sqlite3_int64* size) {
    File& file = of(measured);
    return ask(file.vfs, Call::Size, [&] { return file.disk->xFileSize(file.disk, size); });
}

int lockFile(sqlite3_file* locked, int lock) {
    File& file = of(locked);
    return ask(file.vfs, Call::Lock, [&] { return file.disk->xLock(file.disk, lock); });
}

int unlockFile(sqlite3_file* unlocked, int lock) {
    File& file = of(unlocked);
    const int code = file.disk->xUnlock(file.disk, lock);
    return ask(file.vfs, Call::Unlock, [&] { return code; });
}

int testLock(sqlite3_file* tested, int* isLocked) {
    File& file = of(tested);
    return ask(file.vfs, Call::TestLock, [&] { return file.disk->xCheckReservedLock(file.disk, isLocked); });
}

int controlFile(sqlite3_file* controlled, int operation, void* argument) {
    File& file = of(controlled);
    const auto carryOut = [&] { return file.disk->xFileControl(file.disk, operation, argument); };
    return operation == SQLITE_FCNTL_SIZE_HINT ? ask(file.vfs, Call::Grow, carryOut) : carryOut();
}

int sectorSize(sqlite3_file* file) {
    return of(file).disk->xSectorSize(of(file).disk);
}

int characteristics(sqlite3_file* file) {
    return of(file).disk->xDeviceCharacteristics(of(file).disk);
}

int mapShared(sqlite3_file* mapped, int region, int size, int extend, volatile void** memory) {
    File& file = of(mapped);
    return ask(file.vfs, Call::MapShared, [&] { return file.disk->xShmMap(file.disk, region, size, extend, memory); });
}

int lockShared(sqlite3_file* locked, int first, int count, int flags) {
    File& file = of(locked);
    const auto carryOut = [&] { return file.disk->xShmLock(file.disk, first, count, flags); };
    if ((flags & SQLITE_SHM_UNLOCK) == 0) {
        return ask(file.vfs, Call::LockShared, carryOut);
    }
    const int code = carryOut();
    return ask(file.vfs, Call::UnlockShared, [&] { return code; });
}

void sharedBarrier(sqlite3_file* file) {
    of(file).disk->xShmBarrier(of(file).disk);
}

int unmapShared(sqlite3_file* file, int removes) {
    return of(file).disk->xShmUnmap(of(file).disk, removes);
}

// Version 2: no memory-mapped reading, which no call would tell of.
constexpr sqlite3_io_methods methods = {
    2,          closeFile,     readFile,    writeFile,   truncateFile, syncFile,        sizeOfFile,
    lockFile,   unlockFile,    testLock,    controlFile, sectorSize,   characteristics, mapShared,
    lockShared, sharedBarrier, unmapShared, nullptr,     nullptr,
};

Vfs& of(const sqlite3_vfs* vfs) {
    return *static_cast<Vfs*>(vfs->pAppData);
}

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* memory, int flags, int* flagsGiven) {
    memory->pMethods = nullptr;
    return ask(of(vfs), Call::Open, [&] {
        auto* const file = new (memory) File(of(vfs));
        const int code = below()->xOpen(below(), name, file->disk, flags, flagsGiven);
        if (code != SQLITE_OK) {
            file->~File();
            return code;
        }
        file->pMethods = &methods;
        return code;
    });
}

int removeFile(sqlite3_vfs* vfs, const char* name, int syncsFolder) {
    return ask(of(vfs), Call::Delete, [&] { return below()->xDelete(below(), name, syncsFolder); });
}

int access(sqlite3_vfs* vfs, const char* name, int flags, int* result) {
    return ask(of(vfs), Call::Access, [&] { return below()->xAccess(below(), name, flags, result); });
}

int fullName(sqlite3_vfs* vfs, const char* name, int size, char* full) {
    return ask(of(vfs), Call::Name, [&] { return below()->xFullPathname(below(), name, size, full); });
}

}  // namespace

// What isn't set here does not look at whose it is.
Vfs::Vfs() : registered(*below()) {
    registered.szOsFile = sizeof(File);
    registered.zName = "watched";
    registered.pAppData = this;
    registered.xOpen = openFile;
    registered.xDelete = removeFile;
    registered.xAccess = access;
    registered.xFullPathname = fullName;
    sqlite3_vfs_register(&registered, 1);
}

Vfs::~Vfs() {
    sqlite3_vfs_unregister(&registered);
}

std::string integrityOf(const std::filesystem::path& database) {
    try {
        SQLite::Database connection(database.string(), SQLite::OPEN_READONLY, 0, fileSystem);
        return connection.execAndGet("PRAGMA integrity_check").getString();
    } catch (const SQLite::Exception& exception) {
        return exception.what();
    }
}

}  // namespace support

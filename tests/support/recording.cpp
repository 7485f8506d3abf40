// The C library's functions under their own names: neither renamed for large files nor checked.
#undef _FILE_OFFSET_BITS
#undef _TIME_BITS
#undef _FORTIFY_SOURCE

#include "recording.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

namespace support {

namespace {

/// The events, in memory that all processes share.
class Log {
public:
    Log() : memory(static_cast<char*>(share(bytesInAll))), state(*new (memory) State) {}

    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    void begin() { state.used = sizeof(State); }

    void lock() {
        while (state.taken.test_and_set(std::memory_order_acquire)) {
            sched_yield();
        }
    }

    void unlock() { state.taken.clear(std::memory_order_release); }

    /// By whoever holds the lock.
    void append(const Event& event) {
        const Head head{event.kind, getpid(), event.descriptor, event.position, event.path.size(), event.bytes.size()};
        if (state.used + sizeof(head) + event.path.size() + event.bytes.size() > bytesInAll) {
            std::cerr << "more calls than can be recorded\n";
            std::abort();
        }
        put(&head, sizeof(head));
        put(event.path.data(), event.path.size());
        put(event.bytes.data(), event.bytes.size());
    }

    std::vector<Event> all() const {
        std::vector<Event> events;
        for (std::size_t at = sizeof(State); at < state.used;) {
            Head head{};
            std::memcpy(&head, memory + at, sizeof(head));
            const char* const path = memory + at + sizeof(head);
            const char* const bytes = path + head.pathBytes;
            events.push_back({head.kind, head.process, head.descriptor, head.position, std::string(path, bytes),
                              std::string(bytes, head.bytes)});
            at += sizeof(head) + head.pathBytes + head.bytes;
        }
        return events;
    }

private:
    struct State {
        std::atomic_flag taken = ATOMIC_FLAG_INIT;
        std::size_t used = sizeof(State);
    };

    struct Head {
        Event::Kind kind;
        std::int32_t process;
        std::int32_t descriptor;
        std::int64_t position;
        std::size_t pathBytes;
        std::size_t bytes;
    };

    static constexpr std::size_t bytesInAll = std::size_t{128} << 20;  // of which only what is used takes memory

    static void* share(std::size_t bytes) {
        void* const shared =
            mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (shared == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mmap");
        }
        return shared;
    }

    void put(const void* bytes, std::size_t count) {
        std::memcpy(memory + state.used, bytes, count);
        state.used += count;
    }

    char* memory;
    State& state;
};

Log& sharedLog() {
    static Log log;
    return log;
}

/// What this process records, and a forked one goes on with.
struct Watch {
    std::string folder;  // empty: nothing is recorded
    Space space = Space::CanBeAllotted;
    std::set<int> descriptors;
};

Watch watch;

/// Below the folder.
std::optional<std::string> recordedPath(const char* path) {
    const std::string& folder = watch.folder;
    const std::string_view whole = path;
    if (folder.empty() || whole.substr(0, folder.size()) != folder) {
        return std::nullopt;
    }
    const std::string_view below = whole.substr(folder.size());
    if (below.empty()) {
        return std::string();
    }
    return below.front() == '/' ? std::optional(std::string(below.substr(1))) : std::nullopt;
}

bool isRecorded(int descriptor) {
    return watch.descriptors.count(descriptor) > 0;
}

/// While it lasts, no other process makes a call that is recorded.
class Turn {
public:
    Turn() { sharedLog().lock(); }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    ~Turn() { sharedLog().unlock(); }

    void record(const Event& event) const {
        const int error = errno;
        sharedLog().append(event);
        errno = error;
    }
};

/// The C library's own.
template <typename Function>
Function* itself(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// @param event of its outcome, when it succeeded
template <typename Call, typename Tell>
auto recorded(bool isToBe, Call call, Tell event) {
    if (!isToBe) {
        return call();
    }
    const Turn turn;
    const auto outcome = call();
    if (outcome >= 0) {
        turn.record(event(outcome));
    }
    return outcome;
}

template <typename Call>
int opened(const char* path, int flags, Call call) {
    const auto known = recordedPath(path);
    if (!known) {
        const int descriptor = call();
        watch.descriptors.erase(descriptor);
        return descriptor;
    }
    const Turn turn;
    const bool wasThere = access(path, F_OK) == 0;
    const int descriptor = call();
    if (descriptor >= 0) {
        watch.descriptors.insert(descriptor);
        if (!wasThere) {
            turn.record({Event::Kind::Make, 0, -1, 0, *known});
        }
        turn.record({Event::Kind::Open, 0, descriptor, 0, *known});
        if ((flags & O_TRUNC) != 0 && wasThere) {
            turn.record({Event::Kind::Resize, 0, descriptor});
        }
    }
    return descriptor;
}

template <typename Call>
ssize_t written(int descriptor, const void* bytes, std::int64_t position, Call call) {
    return recorded(isRecorded(descriptor), call, [&](ssize_t count) {
        return Event{Event::Kind::Write, 0,  descriptor,
                     position,           {}, std::string(static_cast<const char*>(bytes), static_cast<size_t>(count))};
    });
}

template <typename Call>
int resized(int descriptor, std::int64_t size, Call call) {
    return recorded(isRecorded(descriptor), call, [&](int) { return Event{Event::Kind::Resize, 0, descriptor, size}; });
}

template <typename Call>
int resized(const char* path, std::int64_t size, Call call) {
    const auto known = recordedPath(path);
    return recorded(known.has_value(), call, [&](int) { return Event{Event::Kind::Resize, 0, -1, size, *known}; });
}

template <typename Call>
int allotted(int descriptor, int mode, std::int64_t end, Call call) {
    if (isRecorded(descriptor) && (watch.space == Space::CanNotBeAllotted || (mode & ~FALLOC_FL_KEEP_SIZE) != 0)) {
        errno = EOPNOTSUPP;
        return -1;
    }
    const auto kind = mode == 0 ? Event::Kind::Allot : Event::Kind::Reserve;
    return recorded(isRecorded(descriptor), call, [&](int) { return Event{kind, 0, descriptor, end}; });
}

/// It returns its error.
template <typename Call>
int allottedByAnyMeans(int descriptor, std::int64_t end, Call call) {
    const int outcome = recorded(
        isRecorded(descriptor), [&] { return -call(); },
        [&](int) {
            return Event{Event::Kind::Allot, 0, descriptor, end};
        });
    return -outcome;
}

template <typename Call>
int synced(int descriptor, Call call) {
    return recorded(isRecorded(descriptor), call, [&](int) { return Event{Event::Kind::Sync, 0, descriptor}; });
}

template <typename Call>
int named(Event::Kind kind, const char* path, Call call) {
    const auto known = recordedPath(path);
    return recorded(known.has_value(), call, [&](int) { return Event{kind, 0, -1, 0, *known}; });
}

template <typename Call>
int renamed(const char* from, const char* to, Call call) {
    const auto known = recordedPath(from);
    return recorded(known.has_value(), call,
                    [&](int) { return Event{Event::Kind::Rename, 0, -1, 0, *known, recordedPath(to).value_or("")}; });
}

mode_t modeFrom(int flags, va_list arguments) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

Recording::Recording(const std::filesystem::path& folder, Space space) {
    sharedLog().begin();
    watch = {folder.string(), space, {}};
}

Recording::~Recording() {
    watch = {};
}

std::vector<Event> Recording::events() const {
    return sharedLog().all();
}

void note(std::int32_t what, std::int64_t number) {
    if (!watch.folder.empty()) {
        Turn().record({Event::Kind::Note, 0, what, number});
    }
}

}  // namespace support

// In front of the C library's, for SQLite too. Paths that begin at a folder's descriptor are nobody's here.
extern "C" {

#pragma GCC visibility push(default)
// The C library's own names of parameters are no words.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name)

using support::Event;

int open(const char* path, int flags, ...) {
    static auto* const call = support::itself<int(const char*, int, mode_t)>("open");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = support::modeFrom(flags, arguments);
    va_end(arguments);
    return support::opened(path, flags, [&] { return call(path, flags, mode); });
}

int open64(const char* path, int flags, ...) {
    static auto* const call = support::itself<int(const char*, int, mode_t)>("open64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = support::modeFrom(flags, arguments);
    va_end(arguments);
    return support::opened(path, flags, [&] { return call(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
    static auto* const call = support::itself<int(int, const char*, int, mode_t)>("openat");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = support::modeFrom(flags, arguments);
    va_end(arguments);
    return support::opened(path, flags, [&] { return call(folder, path, flags, mode); });
}

int openat64(int folder, const char* path, int flags, ...) {
    static auto* const call = support::itself<int(int, const char*, int, mode_t)>("openat64");
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = support::modeFrom(flags, arguments);
    va_end(arguments);
    return support::opened(path, flags, [&] { return call(folder, path, flags, mode); });
}

int close(int descriptor) {
    static auto* const call = support::itself<int(int)>("close");
    support::watch.descriptors.erase(descriptor);
    return call(descriptor);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    static auto* const call = support::itself<ssize_t(int, const void*, size_t)>("write");
    const std::int64_t position = support::isRecorded(descriptor) ? lseek64(descriptor, 0, SEEK_CUR) : 0;
    return support::written(descriptor, bytes, position, [&] { return call(descriptor, bytes, count); });
}

ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t position) {
    static auto* const call = support::itself<ssize_t(int, const void*, size_t, off_t)>("pwrite");
    return support::written(descriptor, bytes, position, [&] { return call(descriptor, bytes, count, position); });
}

ssize_t pwrite64(int descriptor, const void* bytes, size_t count, off64_t position) {
    static auto* const call = support::itself<ssize_t(int, const void*, size_t, off64_t)>("pwrite64");
    return support::written(descriptor, bytes, position, [&] { return call(descriptor, bytes, count, position); });
}

int ftruncate(int descriptor, off_t size) noexcept {
    static auto* const call = support::itself<int(int, off_t)>("ftruncate");
    return support::resized(descriptor, size, [&] { return call(descriptor, size); });
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    static auto* const call = support::itself<int(int, off64_t)>("ftruncate64");
    return support::resized(descriptor, size, [&] { return call(descriptor, size); });
}

int truncate(const char* path, off_t size) noexcept {
    static auto* const call = support::itself<int(const char*, off_t)>("truncate");
    return support::resized(path, size, [&] { return call(path, size); });
}

int truncate64(const char* path, off64_t size) noexcept {
    static auto* const call = support::itself<int(const char*, off64_t)>("truncate64");
    return support::resized(path, size, [&] { return call(path, size); });
}

int fallocate(int descriptor, int mode, off_t from, off_t count) {
    static auto* const call = support::itself<int(int, int, off_t, off_t)>("fallocate");
    return support::allotted(descriptor, mode, from + count, [&] { return call(descriptor, mode, from, count); });
}

int fallocate64(int descriptor, int mode, off64_t from, off64_t count) {
    static auto* const call = support::itself<int(int, int, off64_t, off64_t)>("fallocate64");
    return support::allotted(descriptor, mode, from + count, [&] { return call(descriptor, mode, from, count); });
}

int posix_fallocate(int descriptor, off_t from, off_t count) {
    static auto* const call = support::itself<int(int, off_t, off_t)>("posix_fallocate");
    return support::allottedByAnyMeans(descriptor, from + count, [&] { return call(descriptor, from, count); });
}

int posix_fallocate64(int descriptor, off64_t from, off64_t count) {
    static auto* const call = support::itself<int(int, off64_t, off64_t)>("posix_fallocate64");
    return support::allottedByAnyMeans(descriptor, from + count, [&] { return call(descriptor, from, count); });
}

int fsync(int descriptor) {
    static auto* const call = support::itself<int(int)>("fsync");
    return support::synced(descriptor, [&] { return call(descriptor); });
}

int fdatasync(int descriptor) {
    static auto* const call = support::itself<int(int)>("fdatasync");
    return support::synced(descriptor, [&] { return call(descriptor); });
}

int unlink(const char* path) noexcept {
    static auto* const call = support::itself<int(const char*)>("unlink");
    return support::named(Event::Kind::Remove, path, [&] { return call(path); });
}

int unlinkat(int folder, const char* path, int flags) noexcept {
    static auto* const call = support::itself<int(int, const char*, int)>("unlinkat");
    return support::named(Event::Kind::Remove, path, [&] { return call(folder, path, flags); });
}

int rmdir(const char* path) noexcept {
    static auto* const call = support::itself<int(const char*)>("rmdir");
    return support::named(Event::Kind::Remove, path, [&] { return call(path); });
}

int mkdir(const char* path, mode_t mode) noexcept {
    static auto* const call = support::itself<int(const char*, mode_t)>("mkdir");
    return support::named(Event::Kind::MakeFolder, path, [&] { return call(path, mode); });
}

int mkdirat(int folder, const char* path, mode_t mode) noexcept {
    static auto* const call = support::itself<int(int, const char*, mode_t)>("mkdirat");
    return support::named(Event::Kind::MakeFolder, path, [&] { return call(folder, path, mode); });
}

int rename(const char* from, const char* to) noexcept {
    static auto* const call = support::itself<int(const char*, const char*)>("rename");
    return support::renamed(from, to, [&] { return call(from, to); });
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept {
    static auto* const call = support::itself<int(int, const char*, int, const char*)>("renameat");
    return support::renamed(from, to, [&] { return call(fromFolder, from, toFolder, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags) noexcept {
    static auto* const call = support::itself<int(int, const char*, int, const char*, unsigned int)>("renameat2");
    return support::renamed(from, to, [&] { return call(fromFolder, from, toFolder, to, flags); });
}

// NOLINTEND(readability-inconsistent-declaration-parameter-name)
#pragma GCC visibility pop

}  // extern "C"

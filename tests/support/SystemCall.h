#pragma once

#include <sqlite3.h>

#include <initializer_list>
#include <stdexcept>

namespace support {

/// While it lasts, SQLite makes one of its system calls through a function of the test's own.
/// @tparam Function the call's type, structures as void*: SQLite's may be of another size than ours
template <typename Function>
class SystemCall {
public:
    /// @param names that the call has in SQLite, which depend on how it was built; the first one that is there counts
    SystemCall(std::initializer_list<const char*> names, Function* replacement) {
        for (const char* const candidate : names) {
            if (const auto found = files->xGetSystemCall(files, candidate)) {
                name = candidate;
                itself = reinterpret_cast<Function*>(found);
                files->xSetSystemCall(files, name, reinterpret_cast<sqlite3_syscall_ptr>(replacement));
                return;
            }
        }
        throw std::runtime_error("SQLite makes no such system call");
    }

    SystemCall(const SystemCall&) = delete;
    SystemCall& operator=(const SystemCall&) = delete;

    ~SystemCall() { files->xSetSystemCall(files, name, nullptr); }

    /// The call that was replaced.
    static inline Function* itself = nullptr;

private:
    sqlite3_vfs* const files = sqlite3_vfs_find(nullptr);
    const char* name = nullptr;
};

}  // namespace support

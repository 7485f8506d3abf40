#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

namespace tool {

/// Why something can't be done with a file.
struct Reason {
    int error;
};

/// @throws Reason what the last system call left
void require(bool succeeds);

/// An open file, until this ends.
class Descriptor {
public:
    /// @param opened by the system; what it could not open is thrown as Reason
    explicit Descriptor(int opened);
    Descriptor(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor();

    /// Gives it to somebody else to close.
    int release() { return std::exchange(number, -1); }

    operator int() const { return number; }  // NOLINT(google-explicit-constructor): it is one

private:
    int number;
};

/// Where a file is, or is to be: a folder that is open, so that nobody puts another in its place, and a name in it.
struct FilePlace {
    Descriptor folder;
    std::string name;
    std::optional<struct stat> found;
};

/// Follows links, but none that somebody else may have prepared.
/// @throws Reason; std::runtime_error for such a link
FilePlace placeOf(std::filesystem::path file);

/// What was found there, and nothing that somebody has put in its place meanwhile.
/// @param flags as of open
/// @throws Reason
Descriptor opened(const FilePlace& place, int flags);

}  // namespace tool

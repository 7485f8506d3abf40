#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// Records what changes the files in a folder: the system calls of this program, of all libraries it loads and of the
// processes that it forks, in the order in which the system carried them out. What is written through a memory map is
// not recorded. For programs that link recording.cpp.

namespace support {

/// A call that was carried out, or what the program says of itself between calls.
struct Event {
    enum class Kind : std::int32_t {
        Open,        ///< gives a file or folder its descriptor
        Make,        ///< an empty file
        MakeFolder,  ///< an empty one
        Write,       ///< bytes, at a position
        Resize,      ///< to a size, smaller or larger
        Allot,       ///< space up to a position, to which a smaller file grows
        Reserve,     ///< space up to a position, without growing
        Sync,
        Remove,  ///< a file, or an empty folder
        Rename,  ///< to what stands in the bytes
        Note,    ///< what the program says
    };

    Kind kind;
    std::int32_t process = 0;
    std::int32_t descriptor = -1;  ///< of the process; -1: the path counts. Of a note: what it says
    std::int64_t position = 0;     ///< or size. Of a note: of which number it says that
    std::string path{};            ///< below the folder, which is itself the empty path
    std::string bytes{};
};

/// Whether the file system of the folder can set space aside.
enum class Space { CanBeAllotted, CanNotBeAllotted };

/// Records for as long as it lasts. One at a time, made while nobody has a file in the folder open.
class Recording {
public:
    explicit Recording(const std::filesystem::path& folder, Space space = Space::CanBeAllotted);
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording();

    std::vector<Event> events() const;
};

/// Puts a note between the calls, if they are being recorded.
void note(std::int32_t what, std::int64_t number);

}  // namespace support

#pragma once

#include <filesystem>

namespace tool {

/// While it lasts, root works as the owner of a folder: whatever others prepared there, it leads root to no more than
/// they can reach themselves, and what is made there is theirs. For others, and where the owner is root, nothing
/// changes.
class OwnersRights {
public:
    /// What is done in the folder. Where anybody may make files, nothing is opened by SQLite, which trusts what stands
    /// beside a database.
    enum class Use { OfLogbooks, OfOneFileToRead };

    /// @param folder for one that isn't there yet, the nearest above counts
    /// @throws std::runtime_error where others could put another folder in its place meanwhile
    explicit OwnersRights(const std::filesystem::path& folder, Use use = Use::OfLogbooks);
    OwnersRights(const OwnersRights&) = delete;
    OwnersRights& operator=(const OwnersRights&) = delete;
    ~OwnersRights();

    /// The folder by a name that leads nowhere else, whatever others do.
    const std::filesystem::path& folder() const { return named; }

private:
    std::filesystem::path named;
};

/// While it lasts, the rights with which the program was started are back: for files that its caller names.
class CallersRights {
public:
    CallersRights();
    CallersRights(const CallersRights&) = delete;
    CallersRights& operator=(const CallersRights&) = delete;
    ~CallersRights();
};

}  // namespace tool

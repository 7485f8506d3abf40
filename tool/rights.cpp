#include "rights.h"

#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <exception>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace tool {

namespace fs = std::filesystem;

namespace {

struct Identity {
    uid_t user;
    gid_t group;
    std::vector<gid_t> groups;
};

constexpr uid_t root = 0;
constexpr gid_t groupOfNobody = 65534;

std::optional<Identity> caller;  // while it works as another
std::optional<Identity> owner;

std::vector<gid_t> ownGroups() {
    std::vector<gid_t> groups(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
    groups.resize(static_cast<std::size_t>(std::max(getgroups(static_cast<int>(groups.size()), groups.data()), 0)));
    return groups;
}

/// With all groups of the account; without an account, with none.
Identity identityOf(uid_t user) {
    const passwd* const account = getpwuid(user);
    if (account == nullptr) {
        return {user, groupOfNobody, {}};
    }
    int count = 0;
    getgrouplist(account->pw_name, account->pw_gid, nullptr, &count);
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    getgrouplist(account->pw_name, account->pw_gid, groups.data(), &count);
    groups.resize(static_cast<std::size_t>(count));
    return {user, account->pw_gid, groups};
}

/// Only root may choose groups: before it becomes another, and after it is root again.
bool become(const Identity& identity) {
    return seteuid(root) == 0 && setgroups(identity.groups.size(), identity.groups.data()) == 0 &&
           setegid(identity.group) == 0 && seteuid(identity.user) == 0;
}

/// What would go on with rights it must not have, ends.
void becomeOrEnd(const Identity& identity) {
    if (!become(identity)) {
        std::terminate();
    }
}

[[noreturn]] void refuseFolder(const fs::path& folder, int error) {
    throw std::runtime_error(folder.string() + ": " + std::generic_category().message(error));
}

/// As far as it exists without links, which others could let lead elsewhere.
fs::path withoutLinks(const fs::path& folder) {
    std::error_code error;
    const fs::path found = fs::weakly_canonical(fs::absolute(folder), error);
    if (error) {
        refuseFolder(folder, error.value());
    }
    return found.has_filename() ? found : found.parent_path();
}

/// The name that was given, where it tells the same without links.
fs::path lastingName(const fs::path& folder, const fs::path& real) {
    const bool goesBack = std::find(folder.begin(), folder.end(), "..") != folder.end();
    return !goesBack && fs::absolute(folder / "").lexically_normal() == real / "" ? folder : real;
}

fs::path nearestThatIsThere(fs::path folder) {
    std::error_code none;
    while (!fs::exists(folder, none) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

struct stat stateOf(const fs::path& folder) {
    struct stat found {};

    if (lstat(folder.c_str(), &found) != 0) {
        refuseFolder(folder, errno);
    }
    return found;
}

bool isAnybodys(const struct stat& folder) {
    return (folder.st_mode & S_IWOTH) != 0;
}

/// Whether others than root and the user give what is in it another name; in a sticky one only its owner does. A user's
/// own groups matter to that user alone, as whoever swaps a folder only leads to another that the user may use.
bool isChangedByOthers(const struct stat& folder, uid_t user) {
    const bool isAGroups = user == root && folder.st_gid != root && (folder.st_mode & S_IWGRP) != 0;
    const bool isSticky = (folder.st_mode & S_ISVTX) != 0;
    return (folder.st_uid != root && folder.st_uid != user) || ((isAnybodys(folder) || isAGroups) && !isSticky);
}

/// @param folder without links
void requireToStay(const fs::path& folder, uid_t user, OwnersRights::Use use) {
    if (user == root && use == OwnersRights::Use::OfLogbooks && isAnybodys(stateOf(folder))) {
        throw std::runtime_error(folder.string() +
                                 ": anybody may write to this folder of root's; root does not use it");
    }
    for (fs::path above = folder; above.has_relative_path();) {
        above = above.parent_path();
        if (isChangedByOthers(stateOf(above), user)) {
            throw std::runtime_error(folder.string() +
                                     ": root does not use a folder that others can replace, as they can in " +
                                     above.string());
        }
    }
}

}  // namespace

OwnersRights::OwnersRights(const fs::path& folder, Use use) : named(folder) {
    if (geteuid() != root) {
        return;
    }
    const fs::path real = withoutLinks(folder);
    named = lastingName(folder, real);
    const fs::path place = nearestThatIsThere(real);
    const uid_t user = stateOf(place).st_uid;
    requireToStay(place, user, use);
    if (user == root) {
        return;
    }
    caller = Identity{root, getegid(), ownGroups()};
    owner = identityOf(user);
    if (!become(*owner)) {
        const int reason = errno;
        becomeOrEnd(*caller);
        caller.reset();
        throw std::runtime_error(place.string() +
                                 ": root can't work as its owner: " + std::generic_category().message(reason));
    }
}

OwnersRights::~OwnersRights() {
    if (caller) {
        becomeOrEnd(*caller);
        caller.reset();
    }
}

CallersRights::CallersRights() {
    if (caller) {
        becomeOrEnd(*caller);
    }
}

CallersRights::~CallersRights() {
    if (caller) {
        becomeOrEnd(*owner);
    }
}

}  // namespace tool

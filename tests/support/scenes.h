#pragma once

#include "Check.h"
#include "TemporaryFolder.h"

#include <lgb/IDatabase.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace support {

using Texts = std::vector<std::string>;
using Folder = std::map<std::string, std::string>;  ///< contents of its files by name

/// How a folder may look when a process opens the customer's logbook in it.
struct Scene {
    const char* title;
    std::uint32_t capacity;
    std::size_t records;  ///< that an undisturbed process finds, at least
    bool isDamaged;       ///< so that something may be set aside
    Folder (*begin)();

    /// Whether it is healed in no time, if at all.
    bool isSmall() const { return !isDamaged || capacity <= 7; }
};

/// Whole ones, and one for each way to heal.
const std::vector<Scene>& scenes();

/// All records of a logbook, newest first.
Texts textsOf(lgb::IDatabase& database);

/// A record that somebody who was disturbed wanted to add.
struct Added {
    std::string text;
    bool isAcknowledged;
};

/// What was found after all that was done on a stage.
struct Aftermath {
    std::uint64_t lost = 0;        ///< acknowledged, or found by an undisturbed process
    std::uint64_t strange = 0;     ///< folders with records that nobody added
    std::uint64_t leftBehind = 0;  ///< folders with files that nobody needs
    std::uint64_t refused = 0;     ///< openings and adds
};

/// A scene that is begun again and again, for those who are disturbed in it.
class Stage {
public:
    /// Lets an undisturbed process find what the scene holds.
    explicit Stage(const Scene& ofThis);

    std::string title() const { return scene.title; }

    bool isDamaged() const { return scene.isDamaged; }

    const Texts& foundUndisturbed() const { return undisturbed; }

    std::filesystem::path place() const { return folder / "logbooks"; }

    std::filesystem::path database() const;

    std::unique_ptr<lgb::IDatabase> open() const;

    /// As the scene begins.
    void reset() const;

    /// Looks at what those who were disturbed left.
    /// @param what disturbed them
    /// @param added by them, oldest first
    /// @param mayLack whether less may be brought back, and fewer numbers given up, than an undisturbed process does
    void look(const std::string& what, const std::vector<Added>& added, Aftermath& aftermath, Failures& failures,
              bool mayLack = false) const;

private:
    void judge(const Texts& found, const std::vector<Added>& added, const std::string& where, Aftermath& aftermath,
               Failures& failures, bool mayLack) const;
    void judgeNumbers(const std::string& where, Failures& failures, bool mayLack) const;
    void judgeFolder(const std::string& where, Aftermath& aftermath, Failures& failures) const;

    const Scene& scene;
    TemporaryFolder folder;
    Folder begin;
    Texts undisturbed;
    std::int64_t nextNumber = 0;
};

}  // namespace support

#pragma once

#include "random.h"
#include "vfs.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// A disk that loses power. What it keeps then is drawn by lot:
/// - A file keeps what it held at its last sync. Of each write since, by sectors of 512 bytes, all, some or nothing
///   arrived, whatever became of the writes before it; where the file was to grow, its new size may have arrived
///   without the bytes, and what the disk held there before shows. A new size alone arrived or not; what it added
///   reads as zeros.
/// - A name in the folder stands for what it stood for at the folder's last sync or at any time since. The folder is
///   synced with the first sync of a journal that SQLite opened to be made when missing, and by a deletion that asks
///   for it: so SQLite's own layer for Unix does.
/// - Bytes beside those written stay as they are, as that layer promises.
/// - The shared memory beside a database is gone, or was left behind as it was.
class Medium : public Vfs {
public:
    /// @param ignores whether syncs are reported as done and nothing more
    explicit Medium(bool ignores) : ignoresSyncs(ignores) {}

    /// Power is lost in the middle of the call that comes after so many that change the disk; from then on all fail.
    void losePowerAfter(std::int64_t calls) { callsLeft = calls; }

    bool hasPower() const { return !callsLeft || *callsLeft >= 0; }

    /// Puts into the place of the files, which nobody may have open any more, what the disk kept, and gives power back.
    /// @return whether the files had been what the disk was told
    bool restore(Random& random);

    std::int64_t sectorsLost() const { return lostSectors; }

private:
    struct Change {
        bool isWrite;
        std::int64_t position;  // of the write, or the new size
        std::string bytes;
    };

    struct Content {
        std::string synced;
        std::vector<Change> since;
    };

    // The first is what the folder has for sure, the last what it was told; null: no such file.
    using Name = std::vector<std::shared_ptr<Content>>;

    Answer answer(Call call) override;
    void opened(const std::string& file) override;
    void removed(const std::string& file) override;
    void written(const std::string& file, std::int64_t offset, const std::string& bytes) override;
    void resized(const std::string& file, std::int64_t size) override;
    void synced(const std::string& file) override;
    void folderSynced() override;

    /// How likely a write arrives whole, and how likely a sector of one that does not.
    struct Luck {
        double whole;
        double sector;
    };

    static void apply(const Change& change, std::string& content);
    static std::string told(const Content& content);

    std::string kept(const Content& content, const Luck& luck, Random& random);
    void applySome(const Change& write, std::string& content, const Luck& luck, Random& random);

    bool ignoresSyncs;
    std::optional<std::int64_t> callsLeft;
    std::map<std::string, Name> names;
    std::int64_t lostSectors = 0;
};

}  // namespace support

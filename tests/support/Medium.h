#pragma once

#include "random.h"
#include "recording.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace support {

/// Folders and the contents of files, by their paths below a folder.
struct Tree {
    std::set<std::string> folders;
    std::map<std::string, std::string> files;

    static Tree of(const std::filesystem::path& folder);

    void writeTo(const std::filesystem::path& folder) const;
};

/// A disk to which recorded calls are made and that loses power. What it keeps then is drawn by lot:
/// - A file keeps what it held at its last sync. Of each write since, by sectors of 512 bytes, all, some or nothing
///   arrived, whatever became of the writes before it, or to other files. Where the file was to grow, its new size may
///   have arrived without the bytes: zeros are read there, or what the disk held there before, unless the space had
///   been set aside. A new size alone arrived or not.
/// - A folder keeps the names it had at its own last sync; that of a file makes no name certain. Each change of names
///   since arrived or not, whatever became of those before it; a rename arrived as a whole.
/// - Bytes beside those written stay as they are.
class Medium {
public:
    /// @param begin what it holds for sure
    /// @param ignores whether it takes syncs for done
    Medium(const Tree& begin, bool ignores);

    /// @param event must outlive this object
    void replay(const Event& event);

    /// What a program finds there.
    Tree told() const;

    /// What is there after a loss of power now. One after another may be drawn.
    Tree survivors(Random& random);

    std::int64_t sectorsLost() const { return lostSectors; }

private:
    struct Node;
    using Names = std::map<std::string, Node*>;

    /// A name stands for something from now on, and another, if there is one, for nothing; or it stands for nothing.
    struct NameChange {
        std::string name;
        Node* node;
        std::string former;

        void applyTo(Names& names) const;
    };

    /// A file or a folder.
    struct Node {
        bool isFolder;
        std::string synced;
        std::vector<const Event*> since;
        std::int64_t reserved = 0;  // so many bytes read as zeros until they are written
        Names names;
        Names syncedNames;
        std::vector<NameChange> changes;
    };

    struct Luck;

    Node& add(bool isFolder);
    Node& at(const std::string& path);
    Node& nodeOf(const Event& event);
    void change(const std::string& path, Node* node, const std::string& formerPath = {});
    void sync(Node& node) const;
    static std::string toldContent(const Node& file);
    std::string survivor(const Node& file, Random& random);
    void applySome(const Event& write, const Node& file, const Luck& luck, std::string& content, Random& random);
    std::string oldBytes(std::size_t count, Random& random) const;

    template <typename NamesOf, typename ContentOf>
    static void collect(const Node& folder, const std::string& path, Tree& tree, const NamesOf& namesOf,
                        const ContentOf& contentOf);

    bool ignoresSyncs;
    std::deque<Node> nodes;                                              // the first is the folder itself
    std::map<std::pair<std::int32_t, std::int32_t>, Node*> descriptors;  // by process
    std::int64_t lostSectors = 0;
};

}  // namespace support

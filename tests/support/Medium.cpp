#include "Medium.h"

#include "TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace support {

namespace {

constexpr std::size_t sectorBytes = 512;
constexpr std::size_t blockBytes = 4096;

bool happens(double share, Random& random) {
    return std::bernoulli_distribution(share)(random);
}

std::string parentOf(const std::string& path) {
    return std::filesystem::path(path).parent_path();
}

std::string nameOf(const std::string& path) {
    return std::filesystem::path(path).filename();
}

void put(const std::string& bytes, std::size_t position, std::string& content) {
    content.resize(std::max(content.size(), position + bytes.size()));
    content.replace(position, bytes.size(), bytes);
}

void apply(const Event& event, std::string& content) {
    const auto position = static_cast<std::size_t>(event.position);
    if (event.kind == Event::Kind::Write) {
        put(event.bytes, position, content);
    } else {
        content.resize(event.kind == Event::Kind::Resize ? position : std::max(position, content.size()));
    }
}

}  // namespace

Tree Tree::of(const std::filesystem::path& folder) {
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string path = entry.path().lexically_relative(folder);
        if (entry.is_directory()) {
            tree.folders.insert(path);
        } else {
            tree.files[path] = contentOf(entry.path());
        }
    }
    return tree;
}

void Tree::writeTo(const std::filesystem::path& folder) const {
    for (const std::string& path : folders) {
        std::filesystem::create_directory(folder / path);
    }
    for (const auto& [path, content] : files) {
        write(folder / path, content);
    }
}

/// How likely something arrives, and how likely a sector of a write that does not as a whole.
struct Medium::Luck {
    double whole;
    double sector;
    bool showsOldBytes;

    static Luck draw(Random& random) {
        constexpr std::array<double, 4> wholes = {0, 0.5, 0.9, 1};
        constexpr std::array<double, 3> sectors = {0, 0.5, 0.9};
        return {oneOf(wholes, random), oneOf(sectors, random), oneIn(random, 2)};
    }
};

Medium::Medium(const Tree& begin, bool ignores) : ignoresSyncs(ignores) {
    add(true);
    for (const std::string& path : begin.folders) {
        change(path, &add(true));
    }
    for (const auto& [path, content] : begin.files) {
        Node& file = add(false);
        file.synced = content;
        change(path, &file);
    }
    for (Node& node : nodes) {
        node.syncedNames = node.names;
        node.changes.clear();
    }
}

void Medium::replay(const Event& event) {
    switch (event.kind) {
        case Event::Kind::Open:
            descriptors[{event.process, event.descriptor}] = &at(event.path);
            break;
        case Event::Kind::Make:
        case Event::Kind::MakeFolder:
            change(event.path, &add(event.kind == Event::Kind::MakeFolder));
            break;
        case Event::Kind::Write:
        case Event::Kind::Resize:
        case Event::Kind::Allot:
            nodeOf(event).since.push_back(&event);
            break;
        case Event::Kind::Reserve:
            break;
        case Event::Kind::Sync:
            sync(nodeOf(event));
            break;
        case Event::Kind::Remove:
            change(event.path, nullptr);
            break;
        case Event::Kind::Rename:
            change(event.bytes, &at(event.path), event.path);
            break;
        case Event::Kind::Note:
            break;
    }
    if (event.kind == Event::Kind::Allot || event.kind == Event::Kind::Reserve) {
        Node& file = nodeOf(event);
        file.reserved = std::max(file.reserved, event.position);
    }
}

Tree Medium::told() const {
    Tree tree;
    collect(
        nodes.front(), "", tree, [](const Node& folder) { return folder.names; }, toldContent);
    return tree;
}

Tree Medium::survivors(Random& random) {
    Tree tree;
    const auto namesOf = [&](const Node& folder) {
        const double share = Luck::draw(random).whole;
        Names names = folder.syncedNames;
        for (const NameChange& change : folder.changes) {
            if (happens(share, random)) {
                change.applyTo(names);
            }
        }
        return names;
    };
    collect(nodes.front(), "", tree, namesOf, [&](const Node& file) { return survivor(file, random); });
    return tree;
}

void Medium::NameChange::applyTo(Names& names) const {
    if (!former.empty()) {  // wherever it was: a file has one name
        for (auto other = names.begin(); other != names.end();) {
            other = other->second == node ? names.erase(other) : std::next(other);
        }
    }
    if (node == nullptr) {
        names.erase(name);
    } else {
        names[name] = node;
    }
}

Medium::Node& Medium::add(bool isFolder) {
    return nodes.emplace_back(Node{isFolder, {}, {}, 0, {}, {}, {}});
}

Medium::Node& Medium::at(const std::string& path) {
    Node* node = &nodes.front();
    for (const std::filesystem::path& name : std::filesystem::path(path)) {
        node = node->names.at(name);
    }
    return *node;
}

Medium::Node& Medium::nodeOf(const Event& event) {
    return event.descriptor < 0 ? at(event.path) : *descriptors.at({event.process, event.descriptor});
}

void Medium::change(const std::string& path, Node* node, const std::string& formerPath) {
    if (!formerPath.empty() && parentOf(formerPath) != parentOf(path)) {
        throw std::runtime_error(formerPath + ": was moved to another folder");
    }
    Node& folder = at(parentOf(path));
    folder.changes.push_back({nameOf(path), node, nameOf(formerPath)});
    folder.changes.back().applyTo(folder.names);
}

void Medium::sync(Node& node) const {
    if (ignoresSyncs) {
        return;
    }
    if (node.isFolder) {
        node.syncedNames = node.names;
        node.changes.clear();
    } else {
        node.synced = toldContent(node);
        node.since.clear();
    }
}

std::string Medium::toldContent(const Node& file) {
    std::string all = file.synced;
    for (const Event* const event : file.since) {
        apply(*event, all);
    }
    return all;
}

std::string Medium::survivor(const Node& file, Random& random) {
    const Luck luck = Luck::draw(random);
    std::string content = file.synced;
    for (const Event* const event : file.since) {
        if (happens(luck.whole, random)) {
            apply(*event, content);
        } else if (event->kind == Event::Kind::Write) {
            applySome(*event, file, luck, content, random);
        }
    }
    return content;
}

void Medium::applySome(const Event& write, const Node& file, const Luck& luck, std::string& content, Random& random) {
    const auto begin = static_cast<std::size_t>(write.position);
    const std::size_t end = begin + write.bytes.size();
    for (std::size_t from = begin; from < end;) {
        const std::size_t to = std::min(end, (from / sectorBytes + 1) * sectorBytes);
        if (happens(luck.sector, random)) {
            put(write.bytes.substr(from - begin, to - from), from, content);
        } else {
            ++lostSectors;
            if (to > content.size() && oneIn(random, 4)) {
                const std::size_t blockBegins = std::max(content.size(), from / blockBytes * blockBytes);
                content.resize(to);
                if (luck.showsOldBytes && blockBegins >= static_cast<std::size_t>(file.reserved)) {
                    put(oldBytes(to - blockBegins, random), blockBegins, content);
                }
            }
        }
        from = to;
    }
}

/// Anything, or part of a file.
std::string Medium::oldBytes(std::size_t count, Random& random) const {
    const std::string& file = oneOf(nodes, random).synced;
    if (file.size() > count && oneIn(random, 2)) {
        const auto sectors = static_cast<std::int64_t>((file.size() - count) / sectorBytes);
        return file.substr(static_cast<std::size_t>(upTo(random, sectors)) * sectorBytes, count);
    }
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

template <typename NamesOf, typename ContentOf>
void Medium::collect(const Node& folder, const std::string& path, Tree& tree, const NamesOf& namesOf,
                     const ContentOf& contentOf) {
    for (const auto& [name, node] : namesOf(folder)) {
        const std::string below = (std::filesystem::path(path) / name).string();
        if (node->isFolder) {
            tree.folders.insert(below);
            collect(*node, below, tree, namesOf, contentOf);
        } else {
            tree.files[below] = contentOf(*node);
        }
    }
}

}  // namespace support

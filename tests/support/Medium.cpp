#include "Medium.h"

#include "TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace support {

namespace {

constexpr std::int64_t sectorBytes = 512;

bool happens(double share, Random& random) {
    return std::bernoulli_distribution(share)(random);
}

template <typename Choice>
const typename Choice::value_type& oneOf(const Choice& choice, Random& random) {
    return choice.at(static_cast<std::size_t>(upTo(random, static_cast<std::int64_t>(choice.size()) - 1)));
}

bool changesDisk(Call call) {
    constexpr std::array<Call, 6> changing = {Call::Open, Call::Delete,   Call::Write,
                                              Call::Grow, Call::Truncate, Call::Sync};
    return std::find(changing.begin(), changing.end(), call) != changing.end();
}

std::string someBytes(std::size_t count, Random& random) {
    std::string bytes(count, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

}  // namespace

Answer Medium::answer(Call call) {
    if (hasPower() && callsLeft && changesDisk(call)) {
        --*callsLeft;
    }
    return hasPower() ? Answer{} : Answer{SQLITE_IOERR, true};
}

void Medium::opened(const std::string& file) {
    Name& name = names[file];
    if (name.empty()) {
        name.push_back(nullptr);
    }
    if (name.back() == nullptr) {
        name.push_back(std::make_shared<Content>());
    }
}

void Medium::removed(const std::string& file) {
    names[file].push_back(nullptr);
}

void Medium::written(const std::string& file, std::int64_t offset, const std::string& bytes) {
    names[file].back()->since.push_back({true, offset, bytes});
}

void Medium::resized(const std::string& file, std::int64_t size) {
    names[file].back()->since.push_back({false, size, {}});
}

void Medium::synced(const std::string& file) {
    if (!ignoresSyncs) {
        Content& content = *names[file].back();
        for (const Change& change : content.since) {
            apply(change, content.synced);
        }
        content.since.clear();
    }
}

void Medium::folderSynced() {
    if (!ignoresSyncs) {
        for (auto& [file, name] : names) {
            name.erase(name.begin(), name.end() - 1);
        }
    }
}

bool Medium::restore(Random& random) {
    constexpr std::array<double, 4> wholes = {0, 0.5, 0.9, 1};
    constexpr std::array<double, 3> sectors = {0, 0.5, 0.9};
    const Luck luck{oneOf(wholes, random), oneOf(sectors, random)};
    bool isAsTold = true;
    for (auto& [file, name] : names) {
        const auto& last = name.back();
        isAsTold = isAsTold && (last ? contentOf(file) == told(*last) : !std::filesystem::exists(file));
        std::filesystem::remove(file);
        const auto stays = oneOf(name, random);
        name = {nullptr};
        if (stays) {
            name = {std::make_shared<Content>(Content{kept(*stays, luck, random), {}})};
            write(file, name.back()->synced);
        }
        if (oneIn(random, 2)) {
            std::filesystem::remove(file + "-shm");
        }
    }
    callsLeft.reset();
    return isAsTold;
}

void Medium::apply(const Change& change, std::string& content) {
    const auto position = static_cast<std::size_t>(change.position);
    if (!change.isWrite) {
        content.resize(position);
        return;
    }
    content.resize(std::max(content.size(), position + change.bytes.size()));
    content.replace(position, change.bytes.size(), change.bytes);
}

std::string Medium::told(const Content& content) {
    std::string all = content.synced;
    for (const Change& change : content.since) {
        apply(change, all);
    }
    return all;
}

std::string Medium::kept(const Content& content, const Luck& luck, Random& random) {
    std::string survived = content.synced;
    for (const Change& change : content.since) {
        if (happens(luck.whole, random)) {
            apply(change, survived);
        } else if (change.isWrite) {
            applySome(change, survived, luck, random);
        }
    }
    return survived;
}

void Medium::applySome(const Change& write, std::string& content, const Luck& luck, Random& random) {
    const std::int64_t end = write.position + static_cast<std::int64_t>(write.bytes.size());
    for (std::int64_t from = write.position; from < end;) {
        const std::int64_t to = std::min(end, (from / sectorBytes + 1) * sectorBytes);
        const auto count = static_cast<std::size_t>(to - from);
        if (happens(luck.sector, random)) {
            apply({true, from, write.bytes.substr(static_cast<std::size_t>(from - write.position), count)}, content);
        } else {
            ++lostSectors;
            if (to > static_cast<std::int64_t>(content.size()) && oneIn(random, 4)) {
                apply({true, from, someBytes(count, random)}, content);
            }
        }
        from = to;
    }
}

}  // namespace support

#pragma once

#include "SurvivingRows.h"
#include "random.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What happens to the files of a logbook.

namespace damages {

using support::Files;
using support::Random;

/// What damage is made from.
struct Sources {
    Files whole;
    Files older;    ///< of the same logbook, some records ago
    Files foreign;  ///< of another logbook that was made the same way
};

using Content = std::optional<std::string>;

inline std::size_t sizeOf(const Content& file) {
    return file ? file->size() : 0;
}

inline std::size_t below(Random& random, std::size_t end) {
    return static_cast<std::size_t>(support::upTo(random, static_cast<std::int64_t>(end) - 1));
}

struct Range {
    std::size_t at;
    std::size_t bytes;
};

/// A page; of a log each second one with the header of its frame.
inline Range pageOf(bool isOfLog, std::size_t number) {
    const std::size_t frame = support::logHeaderBytes + number * support::frameBytes;
    if (!isOfLog) {
        return {number * support::pageBytes, support::pageBytes};
    }
    return number % 2 == 0 ? Range{frame, support::frameBytes}
                           : Range{frame + support::frameHeaderBytes, support::pageBytes};
}

inline std::size_t pagesIn(const Content& file, bool isLog) {
    if (!isLog) {
        return sizeOf(file) / support::pageBytes;
    }
    return (std::max(sizeOf(file), support::logHeaderBytes) - support::logHeaderBytes) / support::frameBytes;
}

/// What a kind of damage is done to: a file, and where in it.
struct Target {
    Content& file;
    Range range;
    const Content& older;
    const Content& foreign;
    bool isLog;
};

inline void flipBit(const Target& target, Random& random) {
    char& byte = (*target.file)[target.range.at];
    byte = static_cast<char>(byte ^ (1 << support::upTo(random, 7)));
}

inline void overwrite(const Target& target, const std::string& bytes) {
    target.file->replace(target.range.at, target.range.bytes, bytes);
}

inline void fillWithZeros(const Target& target, Random&) {
    overwrite(target, std::string(target.range.bytes, '\0'));
}

inline void fillWithOnes(const Target& target, Random&) {
    overwrite(target, std::string(target.range.bytes, '\xff'));
}

inline void fillWithNoise(const Target& target, Random& random) {
    std::string noise(target.range.bytes, '\0');
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
    overwrite(target, noise);
}

inline void swapPages(const Target& target, Random& random) {
    const std::size_t distance = target.isLog ? support::frameBytes : support::pageBytes;
    const std::size_t bytes = target.range.bytes;
    const std::size_t places = (target.file->size() - bytes - target.range.at % distance) / distance + 1;
    const Range other{target.range.at % distance + below(random, places) * distance, bytes};
    const std::string kept = target.file->substr(target.range.at, bytes);
    target.file->replace(target.range.at, bytes, target.file->substr(other.at, bytes));
    target.file->replace(other.at, bytes, kept);
}

inline void takeFrom(const Content& source, const Target& target) {
    if (sizeOf(source) >= target.range.at + target.range.bytes) {
        overwrite(target, source->substr(target.range.at, target.range.bytes));
    }
}

inline void takeOlder(const Target& target, Random&) {
    takeFrom(target.older, target);
}

inline void takeForeign(const Target& target, Random&) {
    takeFrom(target.foreign, target);
}

inline void cut(const Target& target, Random&) {
    target.file->resize(target.range.at);
}

inline void remove(const Target& target, Random&) {
    target.file.reset();
}

struct Kind {
    const char* name;
    void (*apply)(const Target&, Random&);
};

inline constexpr Kind bitFlipped{"a bit flipped in byte", flipBit};
inline constexpr Kind shortened{"cut at", cut};
inline constexpr Kind deleted{"deleted", remove};

/// Those of whole pages.
inline constexpr std::array<Kind, 6> ofPages = {{
    {"zeros from", fillWithZeros},
    {"ones from", fillWithOnes},
    {"noise from", fillWithNoise},
    {"swapped with another page:", swapPages},
    {"an older page at", takeOlder},
    {"another logbook's page at", takeForeign},
}};

using File = Content Files::*;

struct Damage {
    const Kind* kind;
    File file;
    Range range;

    std::string text() const {
        const char* const name = file == &Files::log ? "log: " : file == &Files::index ? "index: " : "database: ";
        return std::string(name) + kind->name + ' ' + std::to_string(range.at);
    }

    /// Does it, unless an earlier one has left nothing to do it to.
    void apply(const Sources& sources, Random& random, Files& files) const {
        if (sizeOf(files.*file) >= range.at + range.bytes && files.*file) {
            kind->apply({files.*file, range, sources.older.*file, sources.foreign.*file, file == &Files::log}, random);
        }
    }
};

/// How thoroughly.
struct Density {
    std::size_t everyByte;
    std::size_t everyPage;
    std::size_t randomCuts;
};

/// All that may happen to one file.
inline std::vector<Damage> ofFile(File file, const Content& content, const Density& density, Random& random) {
    std::vector<Damage> all;
    const bool isLog = file == &Files::log;
    for (std::size_t byte = below(random, density.everyByte); byte < sizeOf(content); byte += density.everyByte) {
        all.push_back({&bitFlipped, file, {byte, 1}});
    }
    for (std::size_t page = below(random, density.everyPage); page < pagesIn(content, isLog);
         page += density.everyPage) {
        for (const Kind& kind : ofPages) {
            all.push_back({&kind, file, pageOf(isLog, page)});
        }
        all.push_back({&shortened, file, {pageOf(isLog, page).at, 0}});
    }
    for (std::size_t i = 0; i < density.randomCuts && sizeOf(content) > 1; ++i) {
        all.push_back({&shortened, file, {i < 2 ? i : below(random, sizeOf(content)), 0}});
    }
    return all;
}

}  // namespace damages

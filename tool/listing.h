#pragma once

#include "entries.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace tool {

/// How entries are to look.
struct Look {
    bool raw = false;       ///< with code and parameters, also what the logbook does not show
    bool utc = false;       ///< times in UTC, else as they were when the entry was made
    bool coloured = false;  ///< types in colour
    std::size_t width = 0;  ///< columns of the terminal; 0: no limit
    bool goesOn = false;    ///< whether entries of any type may follow those that are known
    bool isSeen = false;    ///< on a terminal, which texts must not steer
};

/// Writes entries to standard output.
class Listing {
public:
    Listing() = default;
    Listing(const Listing&) = delete;
    Listing& operator=(const Listing&) = delete;
    virtual ~Listing() = default;

    virtual void add(const ReadEntry& read) = 0;

    /// Writes what was only kept so far.
    virtual void flush() {}

    /// Writes what belongs behind the last entry.
    virtual void end() {}
};

/// The names of the forms a listing can take.
std::vector<std::string> listingFormats();

std::unique_ptr<Listing> createListing(const std::string& format, const Look& look);

}  // namespace tool

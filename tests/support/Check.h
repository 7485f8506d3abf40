#pragma once

#include <CLI/CLI.hpp>

#include <cstdint>
#include <iostream>
#include <string>
#include <utility>

namespace support {

/// How often a check is to do what it does, and from which random number on.
struct Extent {
    std::uint64_t rounds;
    std::uint32_t seed = 1;
};

/// Reads `--rounds` and `--seed`; ends the program for wrong use.
/// @param usual rounds of the short form
/// @param app knows what else the check takes
inline Extent extentOf(int argc, char** argv, std::uint64_t usual, CLI::App& app) {
    Extent extent{usual};
    app.add_option("--rounds", extent.rounds, "how often");
    app.add_option("--seed", extent.seed, "first random number");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        std::exit(app.exit(error));
    }
    return extent;
}

inline Extent extentOf(int argc, char** argv, std::uint64_t usual) {
    CLI::App app;
    return extentOf(argc, argv, usual, app);
}

/// What went wrong; the first of it is told at the end, as standard error may be part of what is checked.
class Failures {
public:
    void expect(bool holds, const std::string& what) {
        if (!holds && ++count <= told) {
            first += "FAILED: " + what + '\n';
        }
    }

    /// The exit code of the check, after one line of figures.
    int conclude(const std::string& figures) const {
        std::cout << first << figures << ", " << count << " failures\n";
        return count == 0 ? 0 : 1;
    }

private:
    static constexpr std::uint64_t told = 20;
    std::uint64_t count = 0;
    std::string first;
};

}  // namespace support

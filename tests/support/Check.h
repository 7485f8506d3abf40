#pragma once

#include <cstdint>
#include <initializer_list>
#include <iostream>
#include <string>
#include <variant>

namespace support {

/// How often a check is to do what it does, and from which random number on.
struct Extent {
    std::uint64_t rounds;
    std::uint32_t seed = 1;
};

/// Something else that a check takes.
struct Choice {
    const char* name;
    std::variant<bool*, std::uint64_t*, std::string*> value;
    const char* purpose;
};

/// Reads `--rounds`, `--seed` and the choices; ends the program for wrong use.
/// @param usual rounds of the short form
Extent extentOf(int argc, char** argv, std::uint64_t usual, std::initializer_list<Choice> choices = {});

/// The exit code of a check; 1 when it throws, with what it says on standard error.
int outcomeOf(int (*check)(int argc, char** argv), int argc, char** argv) noexcept;

/// What went wrong; the first of it is told at the end, as standard error may be part of what is checked.
class Failures {
public:
    void expect(bool holds, const std::string& what) {
        if (!holds && ++count <= told) {
            first += "FAILED: " + what + '\n';
        }
    }

    bool areNone() const { return count == 0; }

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

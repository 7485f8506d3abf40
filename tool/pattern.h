#pragma once

#include <CLI/CLI.hpp>

#include <memory>
#include <string>

namespace re2 {
class RE2;
}

namespace tool {

/// A regular expression to look for in texts, in upper or lower case.
class Pattern {
public:
    /// None: it is in every text.
    Pattern() = default;

    /// @throws std::invalid_argument saying what is wrong with it
    explicit Pattern(const std::string& text);

    bool isNone() const { return compiled == nullptr; }

    bool isIn(const std::string& text) const;

private:
    std::shared_ptr<const re2::RE2> compiled;
};

/// Declares --grep.
CLI::Option* declarePattern(CLI::App& command, Pattern& pattern, const std::string& help);

}  // namespace tool

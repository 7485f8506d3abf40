#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// Whether standard output is a terminal.
bool isTerminal();

/// Columns of the terminal that standard output is; 0 when it is none.
std::size_t terminalWidth();

/// Whether to colour standard output: a terminal without $NO_COLOR, unless "always" or "never" is asked for.
bool isColoured(const std::string& when);

/// A text as it may be shown: control characters would break its line, steer the terminal, turn what follows around or
/// hide, so they and bytes that are no UTF-8 are shown as \x1b and the like.
std::string printable(std::string_view text);

/// A JSON text of one line as it may be shown: what `printable` would show as bytes is escaped within its strings, so
/// that its value stays the same; but for bytes that are no UTF-8, which no JSON text has: they become U+FFFD.
std::string printableJson(std::string_view json);

/// The same text with U+FFFD for what is no UTF-8.
std::string validUtf8(std::string_view text);

bool isUtf8(std::string_view text);

/// Columns a printable text takes.
std::size_t widthOf(std::string_view text);

/// The beginning of a printable text that is wider than so many columns, with "..." behind it.
std::string shortened(const std::string& text, std::size_t width);

/// A printable text broken into lines at its blanks, and where there are none at any character.
/// @param width in columns; 0: one line
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

/// A start and a printable text behind it, broken into lines that are indented as far as the start is wide; each ends
/// with a line feed.
/// @param width of the lines in columns; 0, or no more than twice that of the start: the text is not broken
std::string hanging(const std::string& start, std::string_view text, std::size_t width);

/// While it lives, what goes to standard output is shown by $PAGER, or less, page by page; only on a terminal, and not
/// when $PAGER is empty or there is no less.
class Pager {
public:
    explicit Pager(bool wanted);

    Pager(const Pager&) = delete;
    Pager& operator=(const Pager&) = delete;
    ~Pager();

private:
    std::FILE* pipe = nullptr;
    int output = -1;
};

}  // namespace tool

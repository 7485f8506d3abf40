#include "terminal.h"

#include <standalone/printable.h>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utf8proc.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <iterator>

namespace tool {

namespace {

// Not every device has less.
constexpr const char* usualPager = "if command -v less >/dev/null; then exec less -R; else exec cat; fi";

std::string environment(const char* variable, const char* otherwise) {
    const char* const value = std::getenv(variable);
    return value == nullptr ? otherwise : value;
}

/// The character a text starts with.
struct Character {
    std::string_view bytes;
    utf8proc_int32_t code;  // negative: a byte that is no UTF-8
};

Character firstOf(std::string_view text) {
    Character character{text.substr(0, 1), -1};
    const auto* const bytes = reinterpret_cast<const utf8proc_uint8_t*>(text.data());
    const auto length = utf8proc_iterate(bytes, static_cast<utf8proc_ssize_t>(text.size()), &character.code);
    if (length > 0) {
        character.bytes = text.substr(0, static_cast<std::size_t>(length));
    }
    return character;
}

template <typename Consume>
void forEachCharacter(std::string_view text, Consume consume) {
    while (!text.empty()) {
        const Character character = firstOf(text);
        consume(character);
        text.remove_prefix(character.bytes.size());
    }
}

bool isShownAsItIs(const Character& character) {
    return standalone::isHarmless(static_cast<std::uint32_t>(character.code));
}

std::size_t widthOf(const Character& character) {
    return static_cast<std::size_t>(utf8proc_charwidth(character.code));
}

/// How many bytes of a text fit into so many columns; no less than one character.
std::size_t bytesThatFit(std::string_view text, std::size_t width) {
    std::size_t bytes = 0;
    std::size_t columns = 0;
    while (bytes < text.size()) {
        const Character character = firstOf(text.substr(bytes));
        columns += widthOf(character);
        if (columns > width && bytes > 0) {
            return bytes;
        }
        bytes += character.bytes.size();
    }
    return bytes;
}

}  // namespace

bool isTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

std::size_t terminalWidth() {
    winsize size{};
    return isTerminal() && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

bool isColoured(const std::string& when) {
    return when == "always" || (when == "auto" && isTerminal() && environment("NO_COLOR", "").empty());
}

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    forEachCharacter(text, [&](const Character& character) {
        if (isShownAsItIs(character)) {
            shown += character.bytes;
            return;
        }
        for (const char byte : character.bytes) {
            fmt::format_to(std::back_inserter(shown), "\\x{:02x}", static_cast<unsigned char>(byte));
        }
    });
    return shown;
}

std::string printableJson(std::string_view json) {
    std::string shown;
    shown.reserve(json.size());
    forEachCharacter(json, [&](const Character& character) {
        constexpr utf8proc_int32_t replacement = 0xfffd;
        if (isShownAsItIs(character)) {
            shown += character.bytes;
        } else {
            fmt::format_to(std::back_inserter(shown), "\\u{:04x}", character.code < 0 ? replacement : character.code);
        }
    });
    return shown;
}

std::string validUtf8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    forEachCharacter(text,
                     [&](const Character& character) { valid += character.code < 0 ? "\uFFFD" : character.bytes; });
    return valid;
}

bool isUtf8(std::string_view text) {
    bool valid = true;
    forEachCharacter(text, [&](const Character& character) { valid = valid && character.code >= 0; });
    return valid;
}

std::size_t widthOf(std::string_view text) {
    std::size_t width = 0;
    forEachCharacter(text, [&](const Character& character) { width += widthOf(character); });
    return width;
}

std::string shortened(const std::string& text, std::size_t width) {
    const std::string mark = "...";
    return widthOf(text) <= width ? text : text.substr(0, bytesThatFit(text, width - mark.size())) + mark;
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width) {
    std::vector<std::string> lines;
    while (width > 0) {
        const std::size_t most = bytesThatFit(text, width);
        if (most == text.size()) {
            break;
        }
        const std::size_t blank = text.rfind(' ', most);
        const std::size_t end = blank == std::string_view::npos || blank == 0 ? most : blank;
        lines.emplace_back(text.substr(0, end));
        const std::size_t next = text.find_first_not_of(' ', end);
        if (next == std::string_view::npos) {
            return lines;
        }
        text.remove_prefix(next);
    }
    lines.emplace_back(text);
    return lines;
}

std::string hanging(const std::string& start, std::string_view text, std::size_t width) {
    const std::size_t indent = widthOf(start);
    std::string lines;
    for (const std::string& line : wrapped(text, width > 2 * indent ? width - indent : 0)) {
        lines += lines.empty() ? start : std::string(indent, ' ');
        lines += line + '\n';
    }
    return lines;
}

Pager::Pager(bool wanted) {
    const std::string chosen = environment("PAGER", usualPager);
    if (!wanted || !isTerminal() || chosen.empty() || chosen == "cat") {
        return;
    }
    const std::string command = chosen + "\n[ $? -ne 127 ] || exec cat";  // what can't be started has read nothing
    setenv("LESS", "FRX", 0);  // a page that fits the screen is just shown; colours go through
    if (getuid() == 0) {
        setenv("LESSSECURE", "1", 1);  // or less runs commands
    }
    pipe = popen(command.c_str(), "w");
    std::signal(SIGPIPE, SIG_IGN);  // who has read enough ends the pager
    if (pipe != nullptr) {
        output = dup(STDOUT_FILENO);
        dup2(fileno(pipe), STDOUT_FILENO);
    }
}

Pager::~Pager() {
    if (pipe == nullptr) {
        return;
    }
    std::cout.flush();
    std::cout.clear();
    dup2(output, STDOUT_FILENO);
    close(output);
    pclose(pipe);
}

}  // namespace tool

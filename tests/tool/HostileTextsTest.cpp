// What reaches a terminal, whatever is stored, named or given: nothing that steers it, hides or turns texts around.

#include "ToolFixture.h"
#include "child.h"
#include "tool.h"

#include <fmt/format.h>
#include <pty.h>
#include <unistd.h>
#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace {

using testing::HasSubstr;
using testing::Not;

using namespace std::string_literals;

/// None holds a sequence that is the tool's own.
const std::vector<std::string> evilTexts{
    "\x1b[35m\x1b[2J\x1b[1;1Hcolour and place",
    "\x1b]0;title\x07 \x1bP$q\x1b\\ \x1b"
    "c",
    "\x1b]8;;http://example.com\x1b\\link\x1b]8;;\x1b\\",
    "\x1b]52;c;ZXZpbA==\x07 clipboard",
    "\u009b35m \u009d52;c;ZXZpbA==\u009c",
    "\x9b"
    "35m \x9d"
    "52;c;ZXZpbA==\x9c \x90",
    "\u202egnp.exe\u202c \u2066\u2069 \u200e\u200f\u061c",
    "\ufeff\u200b\u200c\u200d\u2060\u2063\u206f \u2028\u2029",
    "\xff \xc3( \xed\xa0\x80 \xc0\x9b \xe0\x82\x9b \xf4\x90\x80\x80 \xe2\x80",
    "bell \x07 \b\b\b \x0e \x7f \v\f\r line\nand line\ttab",
};

const std::string evilWithZero = "zero \0 byte \x1b]52;c;ZXZpbA==\x07"s;

/// Without a zero byte, for the command line.
std::string allEvil() {
    std::string all;
    for (const std::string& text : evilTexts) {
        all += text + ' ';
    }
    return all;
}

struct Codes {
    utf8proc_int32_t first;
    utf8proc_int32_t last;
};

constexpr Codes harmfulCodes[] = {{0x00, 0x08},     {0x0b, 0x0c},     {0x0e, 0x1f},     {0x7f, 0x9f},    {0x61c, 0x61c},
                                  {0x200b, 0x200f}, {0x2028, 0x202e}, {0x2060, 0x206f}, {0xfeff, 0xfeff}};

/// Colours, and the end of a line that told how far long work is.
constexpr std::string_view ownSequences[] = {"\x1b[0m", "\x1b[1m", "\x1b[31m", "\x1b[32m", "\x1b[33m", "\x1b[K"};

bool beginsWithOwnSequence(std::string_view text, std::size_t& size) {
    const auto* const found =
        std::find_if(std::begin(ownSequences), std::end(ownSequences),
                     [&](std::string_view sequence) { return text.substr(0, sequence.size()) == sequence; });
    size = found == std::end(ownSequences) ? 0 : found->size();
    return size != 0;
}

bool beginsHarmlessly(std::string_view text, std::size_t& size) {
    utf8proc_int32_t code = 0;
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &code);
    size = static_cast<std::size_t>(std::max<utf8proc_ssize_t>(length, 0));
    return length > 0 && std::none_of(std::begin(harmfulCodes), std::end(harmfulCodes),
                                      [&](const Codes& codes) { return code >= codes.first && code <= codes.last; });
}

/// Where a text does what a terminal must not be told to, as bytes; empty where it doesn't.
std::string harmIn(std::string_view text) {
    while (!text.empty()) {
        std::size_t size = 0;
        if (!beginsWithOwnSequence(text, size) && !beginsHarmlessly(text, size)) {
            std::string bytes;
            for (const char byte : text.substr(0, 12)) {
                bytes += fmt::format("{:02x} ", static_cast<unsigned char>(byte));
            }
            return bytes;
        }
        text.remove_prefix(size);
    }
    return "";
}

/// All that a shell command writes to a terminal of 80 columns.
std::string shownByTerminal(const std::string& command) {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 80;
    int terminal = -1;
    const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
    if (child == -1) {
        throw std::system_error(errno, std::generic_category(), "forkpty");
    }
    if (child == 0) {
        execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        _exit(127);
    }
    std::string shown;
    std::array<char, 65536> bytes{};
    ssize_t count = 0;
    while ((count = read(terminal, bytes.data(), bytes.size())) > 0) {
        shown.append(bytes.data(), static_cast<std::size_t>(count));
    }
    close(terminal);
    support::endOf(child);
    return shown;
}

class HostileTexts : public ToolFixture {
protected:
    void SetUp() override {
        int terminal = -1;
        const pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child == 0) {
            _exit(0);
        }
        if (child == -1) {
            GTEST_SKIP() << "there are no pseudo-terminals here, as in emulators";
        }
        support::endOf(child);
        close(terminal);
    }

    HostileTexts() {
        for (const char* const database : {"lgbCustomer", "lgbService"}) {
            store(database, hostileRecords());
        }
        change("UPDATE record SET seconds = 7 WHERE number IN (1, 2)");
    }

    /// What a terminal shows of the tool's output and errors, which is harmless.
    std::string shown(const std::string& arguments, const std::string& environment = "PAGER=cat") const {
        std::string text = shownByTerminal(command(arguments, environment));
        EXPECT_EQ(harmIn(text), "") << environment << ' ' << arguments;
        EXPECT_NE(text, "") << environment << ' ' << arguments;
        return text;
    }

    /// The same whatever shows it.
    void expectHarmless(const std::string& arguments) const {
        for (const char* const environment : {"PAGER=cat", "PAGER='sed -n p'", "PAGER= TQZEL_LOG_LEVEL=1"}) {
            shown(arguments, environment);
        }
    }

private:
    static std::vector<std::string> documentsWith(const std::string& evil) {
        Json::Value detail;
        detail["bus"] = 1;
        detail["module"] = 3;
        detail["service"] = evil;
        detail[evil] = evil;
        Json::Value kestrel;
        kestrel["code"] = 5;
        kestrel["type"] = "E";
        kestrel["description"] = "";
        kestrel["details"]["generation"] = "Kestrel";
        kestrel["details"]["unit"] = kestrel["details"]["device"] = -1;
        Json::Value words;
        words["typeProduct"] = "Wren";
        words["text"] = evil;
        using tqbase2::system::JsonUtility;
        kestrel["details"]["params"] = JsonUtility::toJsonString(words);
        return {freeText(evil),
                document("E", 15, JsonUtility::toJsonString(detail)),
                document("W", 999, JsonUtility::toJsonString(detail)),
                document("E", 14, evil, 1, 2, evil),
                JsonUtility::toJsonString(kestrel),
                evil,
                "{\"type\":\"" + evil + "\"}",
                "{\"type\":\"E\"," + evil};
    }

    static std::vector<lgb::DatabaseRecord> hostileRecords() {
        std::vector<std::string> texts = evilTexts;
        texts.push_back(evilWithZero);
        texts.push_back(allEvil() + std::string(20000, 'x') + "\x1b]0;title\x07");
        std::vector<lgb::DatabaseRecord> records;
        for (const std::string& text : texts) {
            for (const std::string& json : documentsWith(text)) {
                records.push_back({{evening, 0, text}, json});
            }
        }
        return records;
    }
};

TEST_F(HostileTexts, DoNotReachATerminalFromAnyListing) {
    for (const std::string logbook : {"customer", "service"}) {
        for (const std::string format : {"table", "csv", "json", "jsonl"}) {
            const std::string show = fmt::format("show {} --all --format {}", logbook, format);
            expectHarmless(show);
            expectHarmless(show + " --raw --color always");
        }
        EXPECT_THAT(shown("show " + logbook + " --all --raw --color always"), HasSubstr("\x1b[31mError"));
    }
    EXPECT_THAT(shown("show service --all --raw --format csv"), HasSubstr("\\x1b]52;c;"));
}

TEST_F(HostileTexts, DoNotReachATerminalThatFollowsALogbook) {
    for (const std::string format : {"table", "csv", "jsonl"}) {
        const std::string follow = command("show service --raw --follow --count 500 --format " + format);
        const std::string text = shownByTerminal("timeout 2 env " + follow);
        EXPECT_EQ(harmIn(text), "") << format;
        EXPECT_THAT(text, HasSubstr("clipboard")) << format;
    }
}

TEST_F(HostileTexts, DoNotReachATerminalFromWhatIsExportedOrSalvaged) {
    for (const std::string& write : {"export customer"s, "salvage --all '" + customerFile().string() + '\''}) {
        expectHarmless(write);
        expectHarmless(write + " --output /dev/stdout");
        expectHarmless(write + " --output /dev/tty");
        EXPECT_THAT(shown(write), HasSubstr("\\u202egnp.exe\\u202c"));
    }
}

TEST_F(HostileTexts, DoNotReachATerminalFromAnyOtherCommand) {
    for (const char* const arguments : {"check",
                                        "stats customer",
                                        "stats service",
                                        "report",
                                        "report --output /dev/tty",
                                        "messages",
                                        "messages --format json",
                                        "messages --format markdown",
                                        "explain I0",
                                        "explain E14",
                                        "man",
                                        "completion bash",
                                        "completion zsh",
                                        "help show",
                                        "--help",
                                        "--version",
                                        "clear customer </dev/null",
                                        "resize customer 3 </dev/null",
                                        "resize customer 3 --yes",
                                        "show customer --offset 1000"}) {
        expectHarmless(arguments);
    }
}

TEST_F(HostileTexts, DoNotReachATerminalFromWhatIsGiven) {
    const std::string evil = '\'' + allEvil() + '\'';
    support::write(folder / "lines", "{\"" + allEvil());
    for (const std::string& arguments : {evil,
                                         "--" + evil,
                                         "show " + evil,
                                         "show customer " + evil,
                                         "show customer --" + evil,
                                         "show customer --since " + evil,
                                         "show customer --grep '('" + evil,
                                         "show customer --count " + evil,
                                         "show customer --format " + evil,
                                         "explain " + evil,
                                         "explain E" + evil,
                                         "help " + evil,
                                         "completion " + evil,
                                         "messages --type " + evil,
                                         "add customer error " + evil,
                                         "add customer error 14 --bus " + evil,
                                         "salvage " + evil,
                                         "import customer " + evil,
                                         "import customer '" + (folder / "lines").string() + '\'',
                                         "export customer --output " + evil + "/lines",
                                         "check --folder " + evil,
                                         "show customer --folder " + evil,
                                         "report --output /dev/null --folder " + evil,
                                         "report --output /dev/null/" + evil}) {
        expectHarmless(arguments);
    }
    shown("add customer info 20 --folder '" + folder.path().string() + "/new '" + evil);
    shown("add service info 20 --folder '" + folder.path().string() + "/other'", "TQZEL_LOG_LEVEL=" + evil);
}

TEST_F(HostileTexts, DoNotReachATerminalFromTheFilesOfALogbook) {
    support::write(folder / "lgbService.db", allEvil());
    for (const char* const arguments :
         {"check", "show service", "salvage \"$TQZEL_LOGBOOK_DIR/lgbService.db\"", "report --output /dev/tty"}) {
        expectHarmless(arguments);
    }
    shown("add service info 20");
}

TEST_F(HostileTexts, KeepTheirValueOnATerminalInJson) {
    EXPECT_EQ(support::jsonLinesOf(shown("show service --all --raw --format jsonl")),
              support::jsonLinesOf(output("show service --all --raw --format jsonl")));
    EXPECT_EQ(support::jsonLinesOf(shown("salvage '" + customerFile().string() + "' 2>/dev/null")),
              support::jsonLinesOf(tool("salvage '" + customerFile().string() + '\'').output));
}

TEST_F(HostileTexts, AreWrittenAsTheyAreWhereNoTerminalShowsThem) {
    for (const char* const arguments :
         {"show service --all --raw --format json", "show service --all --raw --format jsonl",
          "show service --all --raw --format csv", "export service", "export service --output /dev/stdout"}) {
        EXPECT_THAT(output(arguments), HasSubstr("\u202egnp.exe\u202c \u2066\u2069 \u200e\u200f\u061c")) << arguments;
    }
    EXPECT_THAT(output("show service --all --raw --format csv"), HasSubstr("\x1b]52;c;ZXZpbA==\x07 clipboard"));
}

}  // namespace

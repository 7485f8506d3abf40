#include "terminal.h"

#include <standalone/printable.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

namespace {

using testing::ElementsAre;
using tool::wrapped;

TEST(Terminal, ShowsControlCharactersAndStrayBytesAsEscapes) {
    EXPECT_EQ(tool::printable("two\nlines \x1b[31mred\x7f"), "two\\x0alines \\x1b[31mred\\x7f");
    EXPECT_EQ(tool::printable(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(tool::printable("\u009b31m"), "\\xc2\\x9b31m");                        // steers terminals, too
    EXPECT_EQ(tool::printable("\u202e1\u202c"), "\\xe2\\x80\\xae1\\xe2\\x80\\xac");  // turns what follows around
    EXPECT_EQ(tool::printable("\xff \xc3( \xed\xa0\x80 \xe6\xbc"), "\\xff \\xc3( \\xed\\xa0\\x80 \\xe6\\xbc");
    EXPECT_EQ(tool::printable("\u6f22 \u00e9 \U0001f600"), "\u6f22 \u00e9 \U0001f600");
}

TEST(Terminal, ShowsWhatHasNoWidthOrTurnsTheDirectionAsEscapes) {
    EXPECT_EQ(tool::printable("\u200b\u200f \u061c"), "\\xe2\\x80\\x8b\\xe2\\x80\\x8f \\xd8\\x9c");
    EXPECT_EQ(tool::printable("\u2060\u206f \ufeff"), "\\xe2\\x81\\xa0\\xe2\\x81\\xaf \\xef\\xbb\\xbf");
    EXPECT_EQ(tool::printable("\u200a\u2010\u205f\u2070\u061b"), "\u200a\u2010\u205f\u2070\u061b");
}

TEST(Terminal, IsToldOfEachCharacterWhatALogLineHolds) {
    for (std::uint32_t code = 0; code <= 0x1fffff; ++code) {
        const auto byte = [&](std::uint32_t lead, unsigned int shift) {
            return static_cast<char>(lead | (code >> shift & (shift == 0 || lead == 0x80 ? 0x3fU : 0x1fU)));
        };
        const std::string two{byte(0xc0, 6), byte(0x80, 0)};
        const std::string three{static_cast<char>(0xe0 | (code >> 12 & 0xf)), byte(0x80, 6), byte(0x80, 0)};
        const std::string four{static_cast<char>(0xf0 | (code >> 18 & 7)), byte(0x80, 12), byte(0x80, 6),
                               byte(0x80, 0)};
        for (const std::string& text : {two, three, four}) {
            ASSERT_EQ(standalone::printable(text), tool::printable(text)) << code;
        }
    }
}

TEST(Terminal, EscapesWithinJsonWhatItEscapes) {
    EXPECT_EQ(tool::printableJson("{\"\u009b\":\"\x7f\u202e\u202c\u061c\ufeff\u00e9\"}"),
              R"({"\u009b":"\u007f\u202e\u202c\u061c\ufeff)"
              "\u00e9\"}");
    EXPECT_EQ(tool::printableJson("[\"\xff\"]"), R"(["\ufffd"])");
}

TEST(Terminal, ShortensWhatIsTooWide) {
    EXPECT_EQ(tool::shortened("abcdefgh", 8), "abcdefgh");
    EXPECT_EQ(tool::shortened("abcdefghi", 8), "abcde...");
    EXPECT_EQ(tool::shortened("\u6f22\u5b57\u6f22\u5b57\u6f22", 8), "\u6f22\u5b57...");
}

TEST(Terminal, ReplacesWhatIsNoUtf8) {
    EXPECT_EQ(tool::validUtf8("a\xff\u6f22\n"), "a\uFFFD\u6f22\n");
    EXPECT_TRUE(tool::isUtf8("\u6f22"));
    EXPECT_FALSE(tool::isUtf8("\xc0\x80"));
}

TEST(Terminal, MeasuresColumns) {
    EXPECT_EQ(tool::widthOf("amp"), 3U);
    EXPECT_EQ(tool::widthOf("\u6f22\u5b57"), 4U);
    EXPECT_EQ(tool::widthOf("e\u0301"), 1U);
    EXPECT_EQ(tool::widthOf(""), 0U);
}

TEST(Terminal, WrapsAtBlanksAndWithoutThemAnywhere) {
    EXPECT_THAT(wrapped("Too low driver current", 10), ElementsAre("Too low", "driver", "current"));
    EXPECT_THAT(wrapped("Too low", 7), ElementsAre("Too low"));
    EXPECT_THAT(wrapped("abcdefgh ij", 3), ElementsAre("abc", "def", "gh", "ij"));
    EXPECT_THAT(wrapped("a  b", 1), ElementsAre("a", "b"));
    EXPECT_THAT(wrapped("any width", 0), ElementsAre("any width"));
    EXPECT_THAT(wrapped("", 5), ElementsAre(""));
}

TEST(Terminal, WrapsWideCharactersByTheirColumns) {
    EXPECT_THAT(wrapped("\u6f22\u5b57\u6f22", 5), ElementsAre("\u6f22\u5b57", "\u6f22"));
    EXPECT_THAT(wrapped("\u6f22\u5b57", 1), ElementsAre("\u6f22", "\u5b57"));
}

TEST(Terminal, MakesNoLineOfBlanksAtTheEnd) {
    EXPECT_THAT(wrapped("abc   ", 3), ElementsAre("abc"));
}

TEST(Terminal, LetsATextHangBehindItsStart) {
    EXPECT_EQ(tool::hanging("E14   ", "one two three", 13), "E14   one two\n      three\n");
    EXPECT_EQ(tool::hanging("E14   ", "one two three", 12), "E14   one two three\n");
    EXPECT_EQ(tool::hanging("E14   ", "one two three", 0), "E14   one two three\n");
}

TEST(Terminal, WrapsALongText) {
    EXPECT_EQ(wrapped(std::string(1000000, 'a'), 2).size(), 500000U);
}

}  // namespace

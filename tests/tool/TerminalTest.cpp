#include "terminal.h"

#include <gmock/gmock.h>

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

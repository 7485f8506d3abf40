// What stands in a log line, whatever was stored.

#include <standalone/printable.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace {

using standalone::printable;
using standalone::printableExtract;

TEST(LoggedText, KeepsWhatIsHarmless) {
    for (const std::string text : {"", "E14 ~ {}\\", "\u00a0\u00e9", "\u061b\u061d", "\u200a\u2010", "\u2027\u202f",
                                   "\u205f\u2070", "\ud7ff\ue000", "\ufefe\uff00", "\U00010000\U0010ffff"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(LoggedText, ShowsControlCharactersAsTheirBytes) {
    EXPECT_EQ(printable(std::string("\0\t\n\r\x1b[2J\x1f\x7f", 10)), "\\x00\\x09\\x0a\\x0d\\x1b[2J\\x1f\\x7f");
    EXPECT_EQ(printable("\u0080\u009b31m\u009f"), "\\xc2\\x80\\xc2\\x9b31m\\xc2\\x9f");
}

TEST(LoggedText, ShowsWhatHidesOrTurnsTheDirectionAsItsBytes) {
    EXPECT_EQ(printable("\u061c"), "\\xd8\\x9c");
    EXPECT_EQ(printable("\u200b\u200f"), "\\xe2\\x80\\x8b\\xe2\\x80\\x8f");
    EXPECT_EQ(printable("\u2028\u202e\u202c"), "\\xe2\\x80\\xa8\\xe2\\x80\\xae\\xe2\\x80\\xac");
    EXPECT_EQ(printable("\u2060\u206f"), "\\xe2\\x81\\xa0\\xe2\\x81\\xaf");
    EXPECT_EQ(printable("\ufeff"), "\\xef\\xbb\\xbf");
}

TEST(LoggedText, ShowsWhatIsNoUtf8AsItsBytes) {
    EXPECT_EQ(printable("\x80 \xbf \xff"), "\\x80 \\xbf \\xff");
    EXPECT_EQ(printable("\xc1\xbf \xe0\x9f\xbf \xf0\x8f\xbf\xbf"),  // longer than need be
              "\\xc1\\xbf \\xe0\\x9f\\xbf \\xf0\\x8f\\xbf\\xbf");
    EXPECT_EQ(printable("\xed\xa0\x80 \xed\xbf\xbf"), "\\xed\\xa0\\x80 \\xed\\xbf\\xbf");  // surrogates
    EXPECT_EQ(printable("\xf4\x90\x80\x80 \xf7\xbf\xbf\xbf \xf8\x90\x80\x80"),             // beyond the last character
              "\\xf4\\x90\\x80\\x80 \\xf7\\xbf\\xbf\\xbf \\xf8\\x90\\x80\\x80");
    EXPECT_EQ(printable("\xc3( \xe6\xbc(\xf0\x9f\x98"), "\\xc3( \\xe6\\xbc(\\xf0\\x9f\\x98");  // cut off
}

TEST(LoggedText, OfAKilobyteIsWhole) {
    EXPECT_EQ(printableExtract(std::string(1024, 'x')), std::string(1024, 'x'));
}

TEST(LoggedText, ThatIsLongerLosesItsMiddleAndSaysHowMuch) {
    EXPECT_EQ(printableExtract("from" + std::string(5242880, 'x') + "to"),
              "from" + std::string(764, 'x') + "... and 5241862 more bytes ..." + std::string(254, 'x') + "to");
}

TEST(LoggedText, IsCutBetweenCharacters) {
    const auto characters = [](std::size_t count) {
        std::string text;
        for (; count > 0; --count) {
            text += "\U0001f600";
        }
        return text;
    };
    EXPECT_EQ(printableExtract('x' + characters(300)),
              'x' + characters(191) + "... and 180 more bytes ..." + characters(64));
    EXPECT_EQ(printableExtract(characters(300) + 'x'),
              characters(192) + "... and 176 more bytes ..." + characters(64) + 'x');
}

TEST(LoggedText, IsCutWithinBytesThatAreNoCharacters) {
    const std::string shown = printableExtract(std::string(2000, '\x80'));
    EXPECT_EQ(shown.size(), std::string("\\x80").size() * (765 + 259) + 26);
    EXPECT_EQ(shown.substr(std::string("\\x80").size() * 765, 26), "... and 976 more bytes ...");
}

}  // namespace

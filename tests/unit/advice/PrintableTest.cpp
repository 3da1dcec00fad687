#include "advice/Printable.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

TEST(Printable, LeavesTextAloneInAnyAlphabet) {
    EXPECT_EQ(printable("/dev/ttyUSB0 ~ Größe 画像"), "/dev/ttyUSB0 ~ Größe 画像");
    EXPECT_EQ(printable(""), "");
}

TEST(Printable, TakesControlCharactersOut) {
    EXPECT_EQ(printable("a\x1b[31mb\nc\rd\x7F"), "a?[31mb?c?d?");
    EXPECT_EQ(printable(std::string_view("\0x", 2)), "?x");
}

TEST(Printable, TakesLineEndsOfEveryAlphabetOut) {
    EXPECT_EQ(printable("a\u2028b\u2029c\u0085d"), "a?b?c?d");
    EXPECT_EQ(printable("\u2028\u2028"), "??");
}

TEST(Printable, TakesChangesOfDirectionOut) {
    EXPECT_EQ(printable("\u202A\u202B\u202C\u202D\u202E"), "?????");
    EXPECT_EQ(printable("\u2066\u2067\u2068\u2069"), "????");
    EXPECT_EQ(printable("image\u202Enib.exe"), "image?nib.exe");
}

// Their neighbours, and what only begins or ends with the same bytes.
TEST(Printable, LeavesWhatIsNearThemAlone) {
    for (const char* text : {"\u2027", "\u202F", "\u2065", "\u206A", "\u00A0", "\u00C5", "…",
                             "\U0001F4BE", "\U000E0080", "עברית", "العربية"}) {
        EXPECT_EQ(printable(text), text);
    }
}

// A terminal obeys these like those that begin with ESC.
TEST(Printable, TakesTheOtherControlCharactersOut) {
    EXPECT_EQ(printable("a\u009B31mb\u0090c\u0080d"), "a?31mb?c?d");
}

TEST(Printable, TakesBytesOutThatAreNoCharacters) {
    EXPECT_EQ(printable("a\xFF\xFE"
                        "b\x9B"
                        "c\x85"),
              "a??b?c?");
    EXPECT_EQ(printable("Gr\xF6\xDF"
                        "e"),
              "Gr??e");
    EXPECT_EQ(printable("\xE2\x80"), "??") << "a character that is cut off";
    EXPECT_EQ(printable("\xC0\xAF\xED\xA0\x80"), "?????") << "forms that stand for nothing";
}

} // namespace
} // namespace flashwriter

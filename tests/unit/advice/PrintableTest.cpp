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

} // namespace
} // namespace flashwriter

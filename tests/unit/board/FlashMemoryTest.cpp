#include "board/FlashMemory.h"

#include <stdexcept>

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

TEST(FlashMemory, SizesThatNoBoardHasAreRefused) {
    EXPECT_THROW(FlashMemory({.codeKib = 15}), std::invalid_argument);
    EXPECT_THROW(FlashMemory({.codeKib = 257}), std::invalid_argument);
    EXPECT_THROW(FlashMemory({.dataKib = 17}), std::invalid_argument);
    EXPECT_THROW(FlashMemory({.codeKib = 16, .codeContents = Bytes(16385)}), std::invalid_argument);
}

TEST(FlashMemory, EndAddressesFollowTheSizes) {
    const FlashMemory flash({.codeKib = 128, .dataKib = 8});
    EXPECT_EQ(flash.codeEndAddress(), 0x1FFFFU);
    EXPECT_EQ(flash.dataEndAddress(), 0xF2FFFU);
    EXPECT_EQ(FlashMemory({.dataKib = 0}).dataEndAddress(), 0U);
}

TEST(FlashMemory, SeededContentsAreTheSameEveryTime) {
    const FlashMemory one({.seed = 5});
    const FlashMemory same({.seed = 5});
    const FlashMemory other({.seed = 6});
    EXPECT_EQ(one.code(), same.code());
    EXPECT_NE(one.code(), other.code());
    EXPECT_FALSE(one.isBlank(0, 0x3FF));
}

TEST(FlashMemory, ProgramsEachCellOnce) {
    FlashMemory flash({});
    EXPECT_TRUE(flash.program(0x3FF, Bytes{0x12, 0x34}));
    EXPECT_TRUE(flash.holds(0x3FF, Bytes{0x12, 0x34}));
    EXPECT_FALSE(flash.program(0x3FF, Bytes{0x12}));
    flash.eraseBlock(0);
    EXPECT_TRUE(flash.isBlank(0, 0x3FF));
    EXPECT_FALSE(flash.isBlank(0x400, 0x7FF));
    EXPECT_TRUE(flash.program(0x3FF, Bytes{0x12}));
}

TEST(FlashMemory, ChecksumOfAnErasedBlock) {
    EXPECT_EQ(FlashMemory({}).checksum(0, 0x3FF), 0x0400); // minus 0x3FC00, 16 bits of it
}

} // namespace
} // namespace flashwriter::board

#include "FrameSupport.h"

#include <random>

namespace flashwriter {
namespace {

TEST(GetCheckSum, IsTheComplementOfTheSum) {
    const Bytes bytes{0x01, 0x03, 0x9A, 0x02, 0x21};
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 1, 4), 0x40);
}

TEST(GetCheckSum, OfNothingIsZero) {
    const Bytes bytes{0x11, 0x22};
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 1, 0), 0);
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 1, -1), 0);
    EXPECT_EQ(NSCommandProcessor::getCheckSum(nullptr, 0, INT32_MIN), 0);
}

TEST(GetCheckSum, OfBytesThatAddUpToZeroIsZero) {
    const Bytes bytes{0x80, 0x7F, 0x01};
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 0, 3), 0);
}

TEST(GetCheckSum, StartsAtTheIndexAndStopsAfterTheCount) {
    const Bytes bytes{0x10, 0x01, 0x02, 0x10};
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 1, 2), 0xFD);
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 0, 3), 0xED);
    EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), 3, 1), 0xF0);
}

TEST(GetCheckSum, AgreesWithPlainAdditionForAnyBytes) {
    std::mt19937 random(20); // the same bytes in every run
    Bytes bytes(257);
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    for (int start = 0; start <= 257; ++start) {
        const Bytes part(bytes.begin() + start, bytes.end());
        EXPECT_EQ(NSCommandProcessor::getCheckSum(bytes.data(), start, 257 - start),
                  complementOf(part))
            << "from " << start;
    }
}

} // namespace
} // namespace flashwriter

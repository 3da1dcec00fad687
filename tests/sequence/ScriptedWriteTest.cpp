// Whole writes whose target gives the checksum that the test wants: a board tells the truth.
#include "tests/sequence/BoardFixture.h"
#include "tests/support/ScriptedTarget.h"

#include <algorithm>
#include <numeric>

namespace flashwriter {
namespace {

using testing::ImageFile;
using testing::patternImage;
using testing::ScriptedTarget;
using testing::targetFrame;

Bytes twoFrames(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

class ScriptedWrite : public ::testing::Test {
protected:
    ScriptedWrite() {
        setDiagnosticSink([](const char*) {});
    }
    ~ScriptedWrite() override { setDiagnosticSink(nullptr); }

    // Writes the image to a blank target that takes everything.
    static ResultCode write(const Bytes& image, std::uint8_t ck1, std::uint8_t ck2) {
        const Bytes accepted = targetFrame({0x06});
        const Bytes taken = targetFrame({0x06, 0x06});
        Bytes signature(22, 0x20);
        std::ranges::copy(Bytes{0xFF, 0xFF, 0x00}, signature.begin() + 13); // end of code flash

        ScriptedTarget target;
        target.answer(accepted); // Baud Rate Set
        target.answer(accepted); // Reset
        target.answer(twoFrames(accepted, targetFrame(signature)));
        target.answer(accepted); // Block Blank Check
        target.answer(accepted); // Programming
        for (int frame = 0; frame < 3; ++frame) {
            target.answer(taken);
        }
        target.answer(twoFrames(taken, accepted));
        target.answer(twoFrames(accepted, targetFrame({ck1, ck2})));
        const ImageFile file("image.bin", image);
        return runDriver(target.portPath(), 0, file.path()).returned;
    }

    const Bytes m_image = patternImage(1024);
    const std::uint32_t m_checksum =
        0U - std::accumulate(m_image.begin(), m_image.end(), std::uint32_t{0});
    const std::uint8_t m_ck1 = static_cast<std::uint8_t>(m_checksum);
    const std::uint8_t m_ck2 = static_cast<std::uint8_t>(m_checksum >> 8);
};

TEST_F(ScriptedWrite, ComparesTheLowTwoBytesOfTheChecksumAndNoOthers) {
    ASSERT_NE(m_checksum >> 16, 0U);
    ASSERT_NE(m_checksum >> 16, 0xFFFFU) << "the sum itself has more than two bytes";
    EXPECT_EQ(write(m_image, m_ck1, m_ck2), RESULT_OK);
}

TEST_F(ScriptedWrite, ComparesTheFirstByteOfTheChecksum) {
    EXPECT_EQ(write(m_image, m_ck1 ^ 0x01, m_ck2), RESULT_CHECKSUM_MISMATCH);
}

TEST_F(ScriptedWrite, ComparesTheSecondByteOfTheChecksum) {
    EXPECT_EQ(write(m_image, m_ck1, m_ck2 ^ 0x80), RESULT_CHECKSUM_MISMATCH);
}

} // namespace
} // namespace flashwriter

// Programming transfers: the data frames that are due, and what the flash makes of them.

#include "TargetDriver.h"

#include <memory>

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

const Bytes kFirstBlock{0x01, 0x07, 0x40, 0, 0, 0, 0xFF, 0x03, 0, 0xB7, 0x03};
const Bytes kVerifyError{0x02, 0x01, 0x0F, 0xF0, 0x03};

Bytes dataRefused(std::uint8_t status) {
    return {0x02, 0x02, status, status, static_cast<std::uint8_t>(0xFE - 2 * status), 0x03};
}

// A target that waits for the four data frames of the first block.
class TargetProgramming : public testing::Test {
protected:
    void begin(const TargetOptions& options = {}) {
        m_driver = std::make_unique<TargetDriver>(options);
        m_driver->connect();
        ASSERT_EQ(m_driver->send(kFirstBlock), Replies{kAcknowledged});
        ASSERT_EQ(m_driver->mode(), TargetMode::receiving);
    }

    // The first three frames, and what the last one is answered.
    Replies fill(std::uint8_t byte) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(m_driver->send(dataFrame(Bytes(256, byte), false)),
                      Replies{kDataAcknowledged});
        }
        return m_driver->send(dataFrame(Bytes(256, byte), true));
    }

    std::unique_ptr<TargetDriver> m_driver;
};

TEST_F(TargetProgramming, WritesAndVerifiesABlock) {
    begin();
    EXPECT_EQ(fill(0x5A), (Replies{kDataAcknowledged, kAcknowledged}));
    EXPECT_EQ(m_driver->mode(), TargetMode::ready);
    const Bytes& code = m_driver->target().flash().code();
    EXPECT_EQ(Bytes(code.begin(), code.begin() + 1024), Bytes(1024, 0x5A));
    EXPECT_EQ(code[1024], 0xFF);
    EXPECT_EQ(m_driver->violations(), 0);
}

TEST_F(TargetProgramming, CanAnswerWithOneStatusByte) {
    TargetOptions options;
    options.shortDataStatus = true;
    begin(options);
    EXPECT_EQ(m_driver->send(dataFrame(Bytes(256, 1), false)), Replies{kAcknowledged});
}

TEST_F(TargetProgramming, CellsThatAreNotErasedFailTheVerify) {
    TargetOptions options;
    options.flash.codeContents = {0x0F};
    begin(options);
    EXPECT_EQ(fill(0x3C), (Replies{kDataAcknowledged, kVerifyError}));
    EXPECT_EQ(m_driver->target().flash().code()[0], 0x0C); // only bits that were 1 can stay 1
    EXPECT_EQ(m_driver->target().flash().code()[1], 0x3C);
    EXPECT_EQ(m_driver->violations(), 1); // it has to be erased first
}

TEST_F(TargetProgramming, WritingTheSameAgainIsNoCleanWriteEither) {
    TargetOptions options;
    options.flash.fill = 0x3C;
    begin(options);
    EXPECT_EQ(fill(0x3C), (Replies{kDataAcknowledged, kVerifyError}));
}

TEST_F(TargetProgramming, AStuckCellFailsTheVerifyAndIsNotTheHostsFault) {
    TargetOptions options;
    options.flash.stuckAddress = 0x200;
    begin(options);
    EXPECT_EQ(fill(0x3C), (Replies{kDataAcknowledged, kVerifyError}));
    EXPECT_EQ(m_driver->target().flash().code()[0x200], 0xFF);
    EXPECT_EQ(m_driver->target().flash().code()[0x201], 0x3C);
    EXPECT_EQ(m_driver->violations(), 0);
}

TEST_F(TargetProgramming, TheLastFrameHasToBeCalledSo) {
    begin();
    for (int i = 0; i < 3; ++i) {
        m_driver->send(dataFrame(Bytes(256, 0), false));
    }
    EXPECT_EQ(m_driver->send(dataFrame(Bytes(256, 0), false)), Replies{dataRefused(0x15)});
    EXPECT_EQ(m_driver->mode(), TargetMode::ready);
    EXPECT_EQ(m_driver->violations(), 1);
}

TEST_F(TargetProgramming, NoOtherFrameMayBeCalledTheLast) {
    begin();
    EXPECT_EQ(m_driver->send(dataFrame(Bytes(256, 0), true)), Replies{dataRefused(0x15)});
    EXPECT_EQ(m_driver->violations(), 1);
}

TEST_F(TargetProgramming, EveryFrameIsFull) {
    begin();
    EXPECT_EQ(m_driver->send(dataFrame(Bytes(255, 0), false)), Replies{dataRefused(0x05)});
    EXPECT_EQ(m_driver->violations(), 1);
    EXPECT_EQ(m_driver->target().flash().code()[0], 0xFF);
}

TEST_F(TargetProgramming, AWrongChecksumWritesNothing) {
    begin();
    Bytes frame = dataFrame(Bytes(256, 0), false);
    frame[258] ^= 1U;
    EXPECT_EQ(m_driver->send(frame), Replies{dataRefused(0x07)});
    EXPECT_EQ(m_driver->target().flash().code()[0], 0xFF);
    EXPECT_EQ(m_driver->violations(), 1);
}

TEST_F(TargetProgramming, TheCommandMayBeRepeatedBeforeTheFirstFrameOnly) {
    begin();
    EXPECT_EQ(m_driver->send(kFirstBlock), Replies{kAcknowledged});
    EXPECT_EQ(m_driver->violations(), 0);
    m_driver->send(dataFrame(Bytes(256, 0), false));
    EXPECT_EQ(m_driver->send(kFirstBlock), Replies{statusFrame(0x04)});
    EXPECT_EQ(m_driver->violations(), 1);
}

TEST_F(TargetProgramming, AFrameBehindTheLastIsNotDue) {
    begin();
    fill(0x11);
    EXPECT_EQ(m_driver->send(dataFrame(Bytes(256, 0x11), true)), Replies{statusFrame(0x15)});
    EXPECT_EQ(m_driver->violations(), 1);
}

TEST_F(TargetProgramming, ResetGivesTheTransferUp) {
    begin();
    m_driver->send(dataFrame(Bytes(256, 0x11), false));
    m_driver->connect();
    EXPECT_EQ(m_driver->mode(), TargetMode::ready);
    EXPECT_EQ(m_driver->target().flash().code()[0], 0x11); // what was written stays
    EXPECT_EQ(m_driver->target().flash().code()[256], 0xFF);
}

} // namespace
} // namespace flashwriter::board

// A codec without its buffers answers every operation with a failure.
#include "FrameSupport.h"

namespace flashwriter {
namespace {

class Uninitialized : public ::testing::Test {
protected:
    void expectRefused(ResultCode result) {
        EXPECT_EQ(result, RESULT_INIT_FAILED);
        EXPECT_EQ(length, 0U);
        length = 0xEEEE;
    }

    NSCommandProcessor codec;
    std::uint64_t length = 0xEEEE;
};

TEST_F(Uninitialized, HasNoBuffers) {
    EXPECT_EQ(codec.GetCommandFrames(), nullptr);
    EXPECT_EQ(codec.GetDataFrames(), nullptr);
}

TEST_F(Uninitialized, BuildsNothing) {
    const Bytes data{0x10};
    expectRefused(codec.MakeResetCommand(length));
    expectRefused(codec.MakeBaudRateCommand(0, 0x21, length));
    expectRefused(codec.MakeBlockEraseCommand(0, 0, 0, length));
    expectRefused(codec.MakeSecurityGetCommand(length));
    expectRefused(codec.MakeSiliconSignatureCommand(length));
    expectRefused(codec.MakeBlockBlankCheckCommand(0, 0, 0, 0, 0, 0, 0, length));
    expectRefused(codec.makeAddressRangeCommand(0x40, 0, 0, 0, 0, 0, 0, length));
    expectRefused(codec.MakeProgrammingCommand(0, 0, 0, 0, 0, 0, length));
    expectRefused(codec.MakeChecksumCommand(0, 0, 0, 0, 0, 0, length));
    expectRefused(codec.makeDataFrame(data.data(), 1, true, length));
    expectRefused(codec.MakeProgrammingDataFrame(data.data(), 1, true, length));
}

TEST_F(Uninitialized, ChecksNothing) {
    std::uint8_t a = 0xEE;
    std::uint8_t b = 0xEE;
    std::uint8_t c = 0xEE;
    Bytes name(12, 0xEE);
    EXPECT_EQ(codec.checkStatus(a), RESULT_INIT_FAILED);
    EXPECT_EQ(codec.checkDataFrame(a, b), RESULT_INIT_FAILED);
    EXPECT_EQ(codec.CheckBaudRateStatus(a, b, c), RESULT_INIT_FAILED);
    EXPECT_EQ(codec.CheckSecurityGetDataFrame(a, b, c, a, b, c), RESULT_INIT_FAILED);
    EXPECT_EQ(codec.CheckSiliconSignatureDataFrames(name.data(), name.data(), name.data(),
                                                    name.data(), name.data()),
              RESULT_INIT_FAILED);
    EXPECT_EQ(codec.CheckChecksumDataFrams(a, b), RESULT_INIT_FAILED);
    EXPECT_EQ(Bytes({a, b, c}), Bytes(3, 0xEE));
    EXPECT_EQ(name, Bytes(12, 0xEE));
}

} // namespace
} // namespace flashwriter

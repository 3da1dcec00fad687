// The target's result frames: what they carry, each fault, and which of two faults is reported.
#include "FrameSupport.h"

#include "sequence/context/ContextInfo.h"

#include <cstring>
#include <string>

namespace flashwriter {
namespace {

// One kind of result frame. check gathers whatever the operation writes in one list of bytes.
struct ResultFrame {
    const char* name;
    std::uint8_t dataBytes;
    Bytes (*check)(const NSCommandProcessor&, ResultCode&);
};

void PrintTo(const ResultFrame& frame, std::ostream* out) {
    *out << frame.name;
}

Bytes checkSecurityGet(const NSCommandProcessor& codec, ResultCode& result) {
    Bytes out(6, 0xEE);
    result = codec.CheckSecurityGetDataFrame(out[0], out[1], out[2], out[3], out[4], out[5]);
    return out;
}

// Code, name with the byte behind it, and the three others, each apart from the rest.
Bytes checkSignature(const NSCommandProcessor& codec, ResultCode& result) {
    Bytes out(3 + 12 + 3 + 3 + 3, 0xEE);
    result =
        codec.CheckSiliconSignatureDataFrames(out.data(), &out[3], &out[15], &out[18], &out[21]);
    return out;
}

Bytes checkChecksum(const NSCommandProcessor& codec, ResultCode& result) {
    Bytes out(2, 0xEE);
    result = codec.CheckChecksumDataFrams(out[0], out[1]);
    return out;
}

class ResultFrameCheck : public Codec, public ::testing::WithParamInterface<ResultFrame> {
protected:
    static Bytes numbers(std::size_t count) {
        Bytes data(count);
        std::iota(data.begin(), data.end(), std::uint8_t{0x41});
        return data;
    }

    static Bytes rightFrame() { return dataFrame(numbers(GetParam().dataBytes)); }

    void expectFailure(const Bytes& frame, ResultCode expected, std::uint8_t stale = 0xEE) {
        receive(frame, stale);
        ResultCode result = RESULT_OK;
        const Bytes outputs = GetParam().check(codec, result);
        EXPECT_EQ(result, expected);
        EXPECT_EQ(outputs, Bytes(outputs.size(), 0xEE));
    }
};

TEST_P(ResultFrameCheck, TakesARightFrame) {
    receive(rightFrame());
    ResultCode result = RESULT_SUM_ERROR;
    GetParam().check(codec, result);
    EXPECT_EQ(result, RESULT_OK);
}

TEST_P(ResultFrameCheck, RefusesEachFault) {
    Bytes frame = rightFrame();
    frame[0] = 0x01;
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
    frame = rightFrame();
    frame.back() = 0x17;
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
    frame = rightFrame();
    ++frame[frame.size() - 2];
    expectFailure(frame, RESULT_SUM_ERROR);
    frame = rightFrame();
    ++frame[2]; // the data instead of the SUM
    expectFailure(frame, RESULT_SUM_ERROR);
}

TEST_P(ResultFrameCheck, RefusesARightFrameOfAnotherLength) {
    for (const std::size_t count : std::initializer_list<std::size_t>{0, 1, 3, 7, 9, 21, 23, 255}) {
        expectFailure(dataFrame(numbers(count)), RESULT_FRAME_FORMAT_ERROR);
    }
}

TEST_P(ResultFrameCheck, TestsTheStartByteBeforeTheSum) {
    Bytes frame = rightFrame();
    frame[0] = 0x01;
    ++frame[2];
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(ResultFrameCheck, TestsTheEndByteBeforeTheSum) {
    Bytes frame = rightFrame();
    frame.back() = 0x17;
    ++frame[2];
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(ResultFrameCheck, TestsTheSumBeforeTheLength) {
    for (const std::size_t count : std::initializer_list<std::size_t>{1, 3, 9, 21, 255}) {
        Bytes frame = dataFrame(numbers(count));
        ++frame[2];
        expectFailure(frame, RESULT_SUM_ERROR);
    }
}

TEST_P(ResultFrameCheck, LooksForTheEndByteWhereTheLengthPutsIt) {
    // LEN says one byte more than came: the end byte is looked for behind the frame.
    Bytes frame = rightFrame();
    ++frame[1];
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
    expectFailure(frame, RESULT_SUM_ERROR, 0x03);
}

TEST_P(ResultFrameCheck, StaysInsideTheBufferForTheLongestLength) {
    Bytes frame = dataFrame(numbers(255));
    ASSERT_EQ(frame.size(), 259U);
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR); // all in order, up to the length
    ++frame[257];
    expectFailure(frame, RESULT_SUM_ERROR);
    frame[258] = 0x04;
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0xFF}, RESULT_FRAME_FORMAT_ERROR, 0xFF);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ResultFrameCheck,
                         ::testing::Values(ResultFrame{"SecurityGet", 8, checkSecurityGet},
                                           ResultFrame{"SiliconSignature", 22, checkSignature},
                                           ResultFrame{"Checksum", 2, checkChecksum}),
                         [](const auto& frame) { return std::string(frame.param.name); });

using ResultFrameContent = Codec;

TEST_F(ResultFrameContent, SecurityGetKeepsTheFirstSixBytes) {
    receive({0x02, 0x08, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x54, 0x03});
    ResultCode result = RESULT_SUM_ERROR;
    EXPECT_EQ(checkSecurityGet(codec, result), Bytes({0x11, 0x12, 0x13, 0x14, 0x15, 0x16}));
    EXPECT_EQ(result, RESULT_OK);
}

TEST_F(ResultFrameContent, SecurityGetRefusesAFrameOfNineBytesInGoodOrder) {
    receive({0x02, 0x09, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0xEE, 0x03});
    ResultCode result = RESULT_OK;
    EXPECT_EQ(checkSecurityGet(codec, result), Bytes(6, 0xEE));
    EXPECT_EQ(result, RESULT_FRAME_FORMAT_ERROR);
}

TEST_F(ResultFrameContent, ChecksumGivesItsTwoBytes) {
    receive({0x02, 0x02, 0x34, 0x12, 0xB8, 0x03});
    ResultCode result = RESULT_SUM_ERROR;
    EXPECT_EQ(checkChecksum(codec, result), Bytes({0x34, 0x12}));
    EXPECT_EQ(result, RESULT_OK);
}

// A signature with a ten-character name and bytes that tell every field apart; they add up, LEN
// included, to 0x16 + 0x06 + 0x20D + 0x201 + 0x12D + 0x06 = 0x55D.
const Bytes SIGNATURE{0x02, 0x16, 0x01, 0x02, 0x03, 0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37,
                      0x38, 0x39, 0xFF, 0xFF, 0x03, 0xFF, 0x1F, 0x0F, 0x01, 0x02, 0x03, 0xA3, 0x03};

TEST_F(ResultFrameContent, SignatureFillsItsRecord) {
    receive(SIGNATURE);
    _SILICONSIGNATURE signature{};
    EXPECT_EQ(codec.CheckSiliconSignatureDataFrames(signature.DevCode, signature.DevName,
                                                    signature.CodeEndAddress,
                                                    signature.DataEndAddress, signature.FVer),
              RESULT_OK);
    EXPECT_EQ(Bytes(signature.DevCode, signature.DevCode + 3), Bytes({0x01, 0x02, 0x03}));
    EXPECT_EQ(std::memcmp(signature.DevName, "0123456789\0", 11), 0);
    EXPECT_EQ(Bytes(signature.CodeEndAddress, signature.CodeEndAddress + 3),
              Bytes({0xFF, 0xFF, 0x03})); // the name's stray zero is gone
    EXPECT_EQ(Bytes(signature.DataEndAddress, signature.DataEndAddress + 3),
              Bytes({0xFF, 0x1F, 0x0F}));
    EXPECT_EQ(Bytes(signature.FVer, signature.FVer + 3), Bytes({0x01, 0x02, 0x03}));
}

TEST_F(ResultFrameContent, SignatureLeavesTheNamesLastByteAndClearsTheOneBehindIt) {
    receive(SIGNATURE);
    ResultCode result = RESULT_SUM_ERROR;
    const Bytes out = checkSignature(codec, result);
    EXPECT_EQ(result, RESULT_OK);
    EXPECT_EQ(out, Bytes({0x01, 0x02, 0x03,                                           // code
                          0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, // name
                          0xEE, 0x00,          // untouched, 0
                          0xFF, 0xFF, 0x03,    // code end
                          0xFF, 0x1F, 0x0F,    // data end
                          0x01, 0x02, 0x03})); // version
}

TEST_F(ResultFrameContent, ASignatureWithAWrongSumLeavesTheRecord) {
    Bytes frame = SIGNATURE;
    ++frame[24];
    receive(frame);
    _SILICONSIGNATURE signature;
    std::memset(&signature, 0xEE, sizeof signature);
    const _SILICONSIGNATURE before = signature;
    EXPECT_EQ(codec.CheckSiliconSignatureDataFrames(signature.DevCode, signature.DevName,
                                                    signature.CodeEndAddress,
                                                    signature.DataEndAddress, signature.FVer),
              RESULT_SUM_ERROR);
    EXPECT_EQ(std::memcmp(&signature, &before, sizeof signature), 0);
}

} // namespace
} // namespace flashwriter

// Status frames: each fault by itself, and which of two faults is reported.
#include "FrameSupport.h"

#include <string>

namespace flashwriter {
namespace {

struct StatusOperation {
    const char* name;
    ResultCode (NSCommandProcessor::*check)(std::uint8_t&) const;
};

void PrintTo(const StatusOperation& operation, std::ostream* out) {
    *out << operation.name;
}

class StatusCheck : public Codec, public ::testing::WithParamInterface<StatusOperation> {
protected:
    void expectStatus(const Bytes& frame, std::uint8_t expected) {
        receive(frame);
        std::uint8_t ST1 = 0xEE;
        EXPECT_EQ((codec.*GetParam().check)(ST1), RESULT_OK);
        EXPECT_EQ(ST1, expected);
    }

    void expectFailure(const Bytes& frame, ResultCode expected) {
        receive(frame);
        std::uint8_t ST1 = 0xEE;
        EXPECT_EQ((codec.*GetParam().check)(ST1), expected);
        EXPECT_EQ(ST1, 0xEE);
    }
};

TEST_P(StatusCheck, TakesARightFrame) {
    expectStatus({0x02, 0x01, 0x06, 0xF9, 0x03}, 0x06);
}

TEST_P(StatusCheck, HandsOutAnyStatusUnjudged) {
    expectStatus({0x02, 0x01, 0x1B, 0xE4, 0x03}, 0x1B);
    expectStatus({0x02, 0x01, 0x00, 0xFF, 0x03}, 0x00);
    expectStatus({0x02, 0x01, 0xFF, 0x00, 0x03}, 0xFF);
}

TEST_P(StatusCheck, RefusesAWrongSum) {
    expectFailure({0x02, 0x01, 0x06, 0xF8, 0x03}, RESULT_SUM_ERROR);
}

TEST_P(StatusCheck, RefusesAWrongStartByte) {
    expectFailure({0x01, 0x01, 0x06, 0xF9, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(StatusCheck, RefusesAWrongEndByte) {
    expectFailure({0x02, 0x01, 0x06, 0xF9, 0x17}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(StatusCheck, TestsTheLengthBeforeTheSum) {
    expectFailure({0x02, 0x02, 0x06, 0xF8, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x02, 0x06, 0x55, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x00, 0x06, 0x00, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(StatusCheck, TestsTheStartByteBeforeTheSum) {
    expectFailure({0x03, 0x01, 0x06, 0x55, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(StatusCheck, TestsTheEndByteBeforeTheSum) {
    expectFailure({0x02, 0x01, 0x06, 0x55, 0x02}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_P(StatusCheck, SurvivesTheLongestLength) {
    expectFailure({0x02, 0xFF, 0x06, 0xF9, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

INSTANTIATE_TEST_SUITE_P(
    Exchanges, StatusCheck,
    ::testing::Values(
        StatusOperation{"checkStatus", &NSCommandProcessor::checkStatus},
        StatusOperation{"CheckStatus", &NSCommandProcessor::CheckStatus},
        StatusOperation{"CheckResetStatus", &NSCommandProcessor::CheckResetStatus},
        StatusOperation{"CheckBlockEraseStatus", &NSCommandProcessor::CheckBlockEraseStatus},
        StatusOperation{"CheckBlockBlankCheckStatus",
                        &NSCommandProcessor::CheckBlockBlankCheckStatus},
        StatusOperation{"CheckSecurityGetCommand", &NSCommandProcessor::CheckSecurityGetCommand},
        StatusOperation{"CheckSiliconSignatureStatus",
                        &NSCommandProcessor::CheckSiliconSignatureStatus},
        StatusOperation{"CheckProgrammingStatus", &NSCommandProcessor::CheckProgrammingStatus},
        StatusOperation{"CheckProgrammingDataFrameStatus",
                        &NSCommandProcessor::CheckProgrammingDataFrameStatus},
        StatusOperation{"CheckVerifyStatus", &NSCommandProcessor::CheckVerifyStatus},
        StatusOperation{"CheckChecksumStatus", &NSCommandProcessor::CheckChecksumStatus}),
    [](const auto& operation) { return std::string(operation.param.name); });

// The two-byte status, through both of its names.
class DataFrameStatus : public Codec {
protected:
    void expectOutcome(const Bytes& frame, ResultCode expected, const Bytes& outputs) {
        receive(frame);
        Bytes plain(2, 0xEE);
        Bytes programming(2, 0xEE);
        EXPECT_EQ(codec.checkDataFrame(plain[0], plain[1]), expected);
        EXPECT_EQ(codec.CheckProgrammingDataFrameStatus(programming[0], programming[1]), expected);
        EXPECT_EQ(plain, outputs);
        EXPECT_EQ(programming, outputs);
    }

    void expectFailure(const Bytes& frame, ResultCode expected) {
        expectOutcome(frame, expected, {0xEE, 0xEE});
    }
};

TEST_F(DataFrameStatus, TakesARightFrame) {
    expectOutcome({0x02, 0x02, 0x06, 0x07, 0xF1, 0x03}, RESULT_OK, {0x06, 0x07});
}

TEST_F(DataFrameStatus, RefusesAWrongSum) {
    expectFailure({0x02, 0x02, 0x06, 0x07, 0xF0, 0x03}, RESULT_SUM_ERROR);
}

TEST_F(DataFrameStatus, RefusesEachWrongFormatByte) {
    expectFailure({0x01, 0x02, 0x06, 0x07, 0xF1, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x01, 0x06, 0x07, 0xF2, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x02, 0x06, 0x07, 0xF1, 0x17}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_F(DataFrameStatus, TestsTheFormatBeforeTheSum) {
    expectFailure({0x01, 0x02, 0x06, 0x07, 0x55, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x03, 0x06, 0x07, 0x55, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x02, 0x06, 0x07, 0x55, 0x17}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_F(DataFrameStatus, SurvivesTheLongestLength) {
    expectFailure({0x02, 0xFF, 0x06, 0x07, 0xF1, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

// The seven-byte status: here the SUM comes first.
class BaudRateStatus : public Codec {
protected:
    void expectOutcome(ResultCode expected, const Bytes& expectedOutputs) {
        Bytes outputs(3, 0xEE);
        EXPECT_EQ(codec.CheckBaudRateStatus(outputs[0], outputs[1], outputs[2]), expected);
        EXPECT_EQ(outputs, expectedOutputs);
    }

    void expectFailure(const Bytes& frame, ResultCode expected) {
        receive(frame);
        expectOutcome(expected, {0xEE, 0xEE, 0xEE});
    }
};

TEST_F(BaudRateStatus, TakesARightFrame) {
    receive({0x02, 0x03, 0x06, 0x02, 0x21, 0xD4, 0x03});
    expectOutcome(RESULT_OK, {0x06, 0x02, 0x21});
}

TEST_F(BaudRateStatus, RefusesAWrongSum) {
    expectFailure({0x02, 0x03, 0x06, 0x02, 0x21, 0xD5, 0x03}, RESULT_SUM_ERROR);
}

TEST_F(BaudRateStatus, RefusesAWrongStartOrEndByte) {
    expectFailure({0x01, 0x03, 0x06, 0x02, 0x21, 0xD4, 0x03}, RESULT_FRAME_FORMAT_ERROR);
    expectFailure({0x02, 0x03, 0x06, 0x02, 0x21, 0xD4, 0x17}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_F(BaudRateStatus, TestsTheSumBeforeTheStartByte) {
    expectFailure({0x01, 0x03, 0x06, 0x02, 0x21, 0xD5, 0x03}, RESULT_SUM_ERROR);
}

TEST_F(BaudRateStatus, TestsTheSumBeforeTheEndByte) {
    expectFailure({0x02, 0x03, 0x06, 0x02, 0x21, 0xD5, 0x17}, RESULT_SUM_ERROR);
}

TEST_F(BaudRateStatus, SumsAsManyBytesAsTheLengthSays) {
    // LEN 2: the sum ends before D02. What fits the true length is a wrong sum, what fits the lie
    // is a wrong format.
    expectFailure({0x02, 0x02, 0x06, 0x02, 0x21, 0xD5, 0x03}, RESULT_SUM_ERROR);
    expectFailure({0x02, 0x02, 0x06, 0x02, 0x21, 0xF6, 0x03}, RESULT_FRAME_FORMAT_ERROR);
}

TEST_F(BaudRateStatus, SurvivesTheLongestLength) {
    Bytes frame(260, 0x00);
    frame[0] = 0x02;
    frame[1] = 0xFF;
    frame[5] = 0x40; // lies within the bytes summed
    frame[6] = 0x03;
    frame[256] = 0x7E; // the last one summed: 0xFF + 0x40 + 0x03 + 0x7E = 0x1C0
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
    frame[256] = 0x7F;
    expectFailure(frame, RESULT_SUM_ERROR);
    frame[256] = 0x7E;
    frame[257] = 0x01; // not summed any more
    expectFailure(frame, RESULT_FRAME_FORMAT_ERROR);
}

} // namespace
} // namespace flashwriter

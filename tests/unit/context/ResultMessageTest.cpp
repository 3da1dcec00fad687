#include "sequence/context/ResultMessage.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

TEST(ResultMessage, SuccessIgnoresTheCommandInformation) {
    const _RESULTINFO result{RESULT_OK, {0xB0, 0x06, 0x06, 0x06, 2}};
    EXPECT_EQ(resultMessage(result), "The writing processing succeeded. ");
}

TEST(ResultMessage, FailureShowsCodeCommandAndStatusBytes) {
    const _RESULTINFO result{RESULT_RECEIVE_TIMEOUT, {0x9A, 0x06, 0x0B, 0x1C, 0}};
    EXPECT_EQ(resultMessage(result), "The writing processing failed\r\n"
                                     "ERROR:0x00002005\r\n"
                                     "COM = 0x9A, Retry = 0\r\n"
                                     "ST1 = 0x06, DST1 = 0x0B, DST2 = 0x1C\r\n");
}

TEST(ResultMessage, ARetryIsShownAsTheNumberOfAttempts) {
    const _RESULTINFO result{RESULT_SUM_ERROR, {0x40, 0, 0, 0, 2}};
    EXPECT_EQ(resultMessage(result), "The writing processing failed\r\n"
                                     "ERROR:0x00002003\r\n"
                                     "COM = 0x40, Retry = 3\r\n"
                                     "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\r\n");
}

TEST(ResultMessage, TheLargestValuesFit) {
    const _RESULTINFO result{UINT64_MAX, {0xFF, 0xFF, 0xFF, 0xFF, UINT64_MAX - 1}};
    EXPECT_EQ(resultMessage(result), "The writing processing failed\r\n"
                                     "ERROR:0xFFFFFFFFFFFFFFFF\r\n"
                                     "COM = 0xFF, Retry = 18446744073709551615\r\n"
                                     "ST1 = 0xFF, DST1 = 0xFF, DST2 = 0xFF\r\n");
}

} // namespace
} // namespace flashwriter

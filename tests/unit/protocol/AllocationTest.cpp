// What Initialize does when memory runs short at its first or second buffer.
#include "protocol/NSCommandProcessor.h"
#include "tests/support/FailingAllocation.h"

#include <gtest/gtest.h>

namespace flashwriter {
namespace {

using testing::failingAllocation;

class Allocation : public ::testing::Test {
protected:
    ResultCode initializeWith(int allocations) {
        failingAllocation = {260, allocations, 0};
        const ResultCode result = codec.Initialize();
        failingAllocation.size = 0;
        return result;
    }

    void expectNoBuffers() {
        EXPECT_EQ(codec.GetCommandFrames(), nullptr);
        EXPECT_EQ(codec.GetDataFrames(), nullptr);
    }

    NSCommandProcessor codec;
};

TEST_F(Allocation, HappensInInitializeOnly) {
    failingAllocation = {};
    const NSCommandProcessor fresh;
    EXPECT_EQ(failingAllocation.asked, 0);
    EXPECT_EQ(fresh.GetCommandFrames(), nullptr);
    EXPECT_EQ(fresh.GetDataFrames(), nullptr);
    EXPECT_EQ(initializeWith(2), RESULT_OK);
    EXPECT_EQ(failingAllocation.asked, 2);
    EXPECT_NE(codec.GetCommandFrames(), nullptr);
    EXPECT_NE(codec.GetDataFrames(), nullptr);
}

TEST_F(Allocation, FailingAtTheFirstBufferLeavesNone) {
    EXPECT_EQ(initializeWith(0), RESULT_INIT_FAILED);
    expectNoBuffers();
}

TEST_F(Allocation, FailingAtTheSecondBufferLeavesNone) {
    EXPECT_EQ(initializeWith(1), RESULT_INIT_FAILED);
    expectNoBuffers();
}

TEST_F(Allocation, FailingLaterTakesTheEarlierBuffersAway) {
    ASSERT_EQ(codec.Initialize(), RESULT_OK);
    EXPECT_EQ(initializeWith(1), RESULT_INIT_FAILED);
    expectNoBuffers();
}

TEST_F(Allocation, MayBeTriedAgain) {
    ASSERT_EQ(initializeWith(1), RESULT_INIT_FAILED);
    ASSERT_EQ(codec.Initialize(), RESULT_OK);
    std::uint64_t length = 0;
    EXPECT_EQ(codec.MakeResetCommand(length), RESULT_OK);
    EXPECT_EQ(length, 5U);
}

TEST_F(Allocation, GivesTwoBuffersOf260BytesEach) {
    ASSERT_EQ(codec.Initialize(), RESULT_OK);
    EXPECT_NE(codec.GetCommandFrames(), codec.GetDataFrames());
    codec.GetCommandFrames()[259] = 1; // outside, this would stop the address sanitizer's build
    codec.GetDataFrames()[259] = 2;
    EXPECT_EQ(codec.GetCommandFrames()[259], 1);
}

} // namespace
} // namespace flashwriter

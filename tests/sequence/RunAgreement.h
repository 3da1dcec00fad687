#pragma once

#include "tests/sequence/DriverRun.h"
#include "tests/sequence/LogLines.h"

#include <gtest/gtest.h>

namespace flashwriter {

// What every run owes, whatever its result.
inline void expectAgreement(const RunRecord& record) {
    EXPECT_EQ(record.outcome.Result, record.returned);
    ASSERT_EQ(record.window->results.size(), 1U);
    EXPECT_EQ(record.window->outcomeWhenSet.Result, record.returned);
    EXPECT_EQ(record.window->closingsWhenSet, 0);
    EXPECT_EQ(record.window->closings, 1);
    ASSERT_FALSE(record.log.empty());
    EXPECT_EQ(record.log.back(), record.returned == RESULT_OK ? COMPLETE : FAILED);
    ASSERT_FALSE(record.window->progress.empty());
    EXPECT_EQ(record.window->progress.front(), std::make_pair(101, 0));
}

} // namespace flashwriter

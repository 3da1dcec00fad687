#include "sequence/context/StageName.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace flashwriter {
namespace {

TEST(StageName, NamesTheStages) {
    EXPECT_STREQ(stageName(100), "Reading file.");
    EXPECT_STREQ(stageName(101), "Changing to programming mode.");
    EXPECT_STREQ(stageName(102), "Erasing block data.");
    EXPECT_STREQ(stageName(103), "Writing data.");
}

TEST(StageName, IsEmptyForEveryOtherNumber) {
    for (const std::int32_t step : {INT32_MIN, -1, 0, 99, 104, INT32_MAX}) {
        EXPECT_STREQ(stageName(step), "") << step;
    }
}

} // namespace
} // namespace flashwriter

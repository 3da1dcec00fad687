#include "console/ProgressBar.h"

#include <gtest/gtest.h>

#include <string>

namespace flashwriter {
namespace {

TEST(ProgressBar, ShowsStagePercentageAndBar) {
    EXPECT_EQ(progressBar(103, 45, 79),
              "Writing data. (45 %) [" + std::string(18, '#') + std::string(22, ' ') + "]");
    EXPECT_EQ(progressBar(103, 0, 79), "Writing data. (0 %) [" + std::string(40, ' ') + "]");
    EXPECT_EQ(progressBar(103, 100, 79), "Writing data. (100 %) [" + std::string(40, '#') + "]");
}

TEST(ProgressBar, NeverGetsWiderThanAsked) {
    for (std::size_t columns = 0; columns < 100; ++columns) {
        for (const std::int32_t step : {100, 101, 102, 103, 0}) {
            for (const std::int32_t percentage : {-1, 0, 5, 99, 100, 1000}) {
                EXPECT_LE(progressBar(step, percentage, columns).size(), columns);
            }
        }
    }
}

TEST(ProgressBar, GivesUpTheBarFirstAndThenTheName) {
    EXPECT_EQ(progressBar(103, 45, 28), "Writing data. (45 %) [##   ]");
    EXPECT_EQ(progressBar(103, 45, 27), "Writing data. (45 %)");
    EXPECT_EQ(progressBar(103, 45, 20), "Writing data. (45 %)");
    EXPECT_EQ(progressBar(103, 45, 19), "45 %");
    EXPECT_EQ(progressBar(103, 45, 4), "45 %");
    EXPECT_EQ(progressBar(103, 45, 3), "");
}

TEST(ProgressBar, FillsNoMoreThanThereIs) {
    EXPECT_EQ(progressBar(103, 250, 79), "Writing data. (250 %) [" + std::string(40, '#') + "]");
    EXPECT_EQ(progressBar(103, -5, 79), "Writing data. (-5 %) [" + std::string(40, ' ') + "]");
}

} // namespace
} // namespace flashwriter

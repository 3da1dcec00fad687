// What it buys to ask the driver not to hold short packets back.
#include "tests/kernel/runs/KernelFixture.h"

#include "board/Transcript.h"

#include <algorithm>
#include <iostream>

namespace flashwriter::kernel {
namespace {

using testing::ImageFile;
using testing::patternImage;

class Latency : public KernelFixture {
protected:
    // Milliseconds from a data frame's answer to the next data frame, of half of them at most.
    double overheadOfAWrite(const std::vector<std::string>& environment) {
        plugIn();
        const auto program = flashwrite("500000", m_file.path(), environment);
        EXPECT_EQ(program->wait(), 0) << story();
        std::vector<std::int64_t> overheads = board::hostOverheads(adapter().transcript());
        m_timer = adapter().latencyTimer();
        unplug();
        if (overheads.empty()) {
            return 0;
        }
        const auto middle = overheads.begin() + static_cast<std::ptrdiff_t>(overheads.size() / 2);
        std::ranges::nth_element(overheads, middle);
        return static_cast<double>(*middle) / 1000;
    }

    std::chrono::milliseconds m_timer{};
    const ImageFile m_file{"image.bin", patternImage(10000)};
};

TEST_F(Latency, IsAskedForAndWorthIt) {
    const double asked = overheadOfAWrite({});
    EXPECT_EQ(m_timer, std::chrono::milliseconds(1));
    const double refused = overheadOfAWrite(
        {std::string("LD_PRELOAD=") + PORT_CALLS, "PORT_CALLS=refuse-low-latency"});
    EXPECT_EQ(m_timer, std::chrono::milliseconds(16));
    std::cout << "between two data frames the host takes " << asked << " ms with low latency, "
              << refused << " ms without\n";
    EXPECT_GT(refused, 1.5 * asked);
}

} // namespace
} // namespace flashwriter::kernel

// What it buys to ask the driver not to hold short packets back.
#include "tests/kernel/runs/KernelFixture.h"

#include "board/Transcript.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

namespace flashwriter::kernel {
namespace {

using testing::ImageFile;
using testing::patternImage;

class Latency : public KernelFixture {
protected:
    // Milliseconds from a data frame's answer to the next data frame, as in the quickest tenth of
    // them: what else the machine does lengthens some of the others.
    double overheadOfAWrite(const std::vector<std::string>& environment) {
        plugIn();
        untilNotHeldUp(
            0, [&] { return flashwrite("500000", m_file.path(), environment)->wait() == 0; });
        std::vector<std::int64_t> overheads = board::hostOverheads(adapter().transcript());
        m_timer = adapter().latencyTimer();
        if (overheads.size() < 20) {
            throw std::runtime_error("the write failed: " + story());
        }
        unplug();
        std::ranges::sort(overheads);
        return static_cast<double>(overheads.at(overheads.size() / 10)) / 1000;
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

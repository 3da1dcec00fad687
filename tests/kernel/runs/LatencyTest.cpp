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

// Microseconds from a command's answer to the next command: what driver, system and program take.
// The wire takes next to nothing of these short frames, so a held packet shows in full.
std::vector<std::int64_t> pauses(const board::Transcript& transcript) {
    std::vector<std::int64_t> result;
    std::int64_t answered = 0;
    for (const board::TranscriptRecord& record : transcript) {
        if (record.kind == board::TranscriptRecord::Kind::reply) {
            answered = record.due;
        } else if (record.kind == board::TranscriptRecord::Kind::hostFrame) {
            constexpr std::uint8_t SOH = 0x01;
            if (record.bytes.front() == SOH && answered != 0) {
                result.push_back(record.begin - answered);
            }
            answered = 0;
        }
    }
    return result;
}

class Latency : public KernelFixture {
protected:
    // Half of a write's pauses are no longer than so many milliseconds.
    double pauseOfAWrite(const std::vector<std::string>& environment) {
        plugIn();
        writeAndReadBack("500000", m_file.path(), m_image, environment);
        std::vector<std::int64_t> all = pauses(adapter().transcript());
        m_timer = adapter().latencyTimer();
        if (all.size() < 20) {
            throw std::runtime_error("too few commands: " + story());
        }
        unplug();
        std::ranges::sort(all);
        return static_cast<double>(all.at(all.size() / 2)) / 1000;
    }

    std::chrono::milliseconds m_timer{};
    const std::vector<std::uint8_t> m_image = patternImage(20000);
    const ImageFile m_file{"image.bin", m_image};
};

TEST_F(Latency, IsAskedForAndWorthIt) {
    const double asked = pauseOfAWrite({});
    EXPECT_EQ(m_timer, std::chrono::milliseconds(1));
    const double refused =
        pauseOfAWrite({std::string("LD_PRELOAD=") + PORT_CALLS, "PORT_CALLS=refuse-low-latency"});
    EXPECT_EQ(m_timer, std::chrono::milliseconds(16));
    std::cout << "between an answer and the next command pass " << asked << " ms with low latency, "
              << refused << " ms without\n";
    EXPECT_GT(refused, 2 * asked);
}

} // namespace
} // namespace flashwriter::kernel

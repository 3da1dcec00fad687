#pragma once

#include "sequence/context/DiagnosticLog.h"
#include "tests/sequence/LogLines.h"
#include "tests/simulation/SimulatedWrite.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <chrono>

namespace flashwriter::simulation {

// All attempts of all exchanges, each with the longest time-out and pause, twice for mode entry.
inline constexpr auto LONGEST_RUN = std::chrono::seconds(30);

// One dirty block on a board behind a paced wire: eleven frames to it, fourteen from it.
class SimulationFixture : public ::testing::Test {
protected:
    SimulationFixture() {
        m_board.target.flash.codeKib = 16;
        m_board.target.flash.fill = 0x5A;
        setDiagnosticSink([](const char*) {});
    }
    ~SimulationFixture() override { setDiagnosticSink(nullptr); }

    SimulatedWrite write() {
        SimulatedWrite write = simulateWrite(m_board, m_clock, m_file.path(), 2);
        EXPECT_EQ(write.openings, 1U);
        EXPECT_EQ(write.closings, 1U);
        EXPECT_EQ(write.strayCalls, 0U);
        EXPECT_EQ(write.record.outcome.Result, write.record.returned);
        return write;
    }
    // A success has to be one.
    void expectTruth(const SimulatedWrite& write) {
        if (write.record.returned == RESULT_OK) {
            EXPECT_EQ(write.codeAfter, testing::flashAfter(m_image, write.codeBefore))
                << write.transcript;
            EXPECT_EQ(write.record.log, SUCCESS_LOG);
        }
    }

    board::BoardOptions m_board;
    ClockOptions m_clock;
    std::vector<std::uint8_t> m_image = testing::patternImage(1000);
    testing::ImageFile m_file{"image.bin", m_image};
};

} // namespace flashwriter::simulation

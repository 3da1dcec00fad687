#include "tests/random/Verdict.h"

#include "tests/random/RecordVerdict.h"
#include "tests/support/ImageFile.h"

#include <algorithm>
#include <chrono>
#include <sstream>

namespace flashwriter::random {

namespace {

using simulation::SimulatedWrite;
using simulation::VirtualTime;

// Any single time-out of these images, which have 64 blocks at the most. A clock that goes back
// within a wait makes it last so much longer, which is no longer than it has lasted.
constexpr auto LONGEST_WAIT = std::chrono::milliseconds(300);

// The longest answer takes 2.3 ms on the slower wire, and a pause of a millisecond may take nearly
// two.
constexpr auto LONGEST_REST = std::chrono::microseconds(2300 + 2000);

WriteFacts factsOf(const Scenario& scenario, const SimulatedWrite& write) {
    return {.portIsThere = !write.unpluggedBefore,
            .read = scenario.file.read,
            .imageSize = scenario.file.image.size(),
            .hasData = scenario.file.hasData,
            .codeFlashSize = std::size_t{scenario.board.target.flash.codeKib} * 1024,
            .longestLook = scenario.clock.step + scenario.clock.variation};
}

// Whether the image needs another value than the erased one in a cell that takes none.
bool meetsStuckCell(const Scenario& scenario) {
    const auto cell = scenario.board.target.flash.stuckAddress;
    return cell && *cell < scenario.file.image.size() && scenario.file.image[*cell] != 0xFF;
}

// When a line of the board's transcript was written, in seconds.
VirtualTime timeOf(const std::string& line) {
    return std::chrono::round<VirtualTime>(std::chrono::duration<double>(std::stod(line)));
}

// The longest time from an answer of the board to the next frame that it heard.
VirtualTime longestRest(const std::string& transcript) {
    std::istringstream lines(transcript);
    constexpr auto NONE = VirtualTime::max();
    VirtualTime answer = NONE;
    VirtualTime longest{};
    for (std::string line; std::getline(lines, line);) {
        if (line.find(" < [02 ") != std::string::npos) {
            answer = timeOf(line);
        } else if (answer != NONE && line.find(" > [") != std::string::npos) {
            longest = std::max(longest, timeOf(line) - answer);
            answer = NONE;
        } else if (line.ends_with("- port closed")) {
            answer = NONE; // the next write is not a rest of this one
        }
    }
    return longest;
}

class Court {
public:
    Court(const Scenario& scenario, const SimulatedWrite& write)
        : m_scenario(scenario), m_write(write), m_facts(factsOf(scenario, write)),
          m_result(write.record.returned) {}

    std::vector<std::string> complaints() {
        m_complaints = recordComplaints(m_write, allowedEndings(m_facts),
                                        LONGEST_WAIT * m_scenario.clock.jumps.size());
        judgeFlash();
        if (m_scenario.undisturbed()) {
            judgeUndisturbed();
        }
        return m_complaints;
    }

private:
    void demand(bool holds, const char* complaint) {
        if (!holds) {
            m_complaints.emplace_back(complaint);
        }
    }

    void judgeFlash() {
        const board::Bytes& before = m_write.codeBefore;
        const board::Bytes& after = m_write.codeAfter;
        demand(m_write.dataAfter == m_write.dataBefore, "data flash changed");
        const bool written = resultBeforeWriting(m_facts) == RESULT_OK;
        const std::size_t end = written ? (m_facts.imageSize + 1023) / 1024 * 1024 : 0;
        demand(std::equal(before.begin() + static_cast<std::ptrdiff_t>(end), before.end(),
                          after.begin() + static_cast<std::ptrdiff_t>(end), after.end()),
               "flash changed where no image belongs");
        if (m_result == RESULT_OK) {
            demand(written && after == testing::flashAfter(m_scenario.file.image, before),
                   "a success that is none: the flash does not hold the image");
        }
    }

    void judgeUndisturbed() {
        const ResultCode before = resultBeforeWriting(m_facts);
        const bool stuck = before == RESULT_OK && meetsStuckCell(m_scenario);
        demand(m_result == (stuck ? RESULT_DATA_FRAME_ABORT : before),
               "it failed without a reason");
        demand(m_write.violations == 0, "it broke the protocol");
        demand(longestRest(m_write.transcript) <= LONGEST_REST + 3 * m_facts.longestLook,
               "it dawdled");
    }

    const Scenario& m_scenario;
    const SimulatedWrite& m_write;
    WriteFacts m_facts;
    ResultCode m_result;
    std::vector<std::string> m_complaints;
};

} // namespace

std::vector<std::string> complaints(const Scenario& scenario, const SimulatedWrite& write) {
    return Court(scenario, write).complaints();
}

} // namespace flashwriter::random

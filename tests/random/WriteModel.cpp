#include "tests/random/WriteModel.h"

#include "tests/sequence/LogLines.h"

namespace flashwriter::random {

namespace {

using Codes = std::vector<ResultCode>;

constexpr std::size_t FLASH_BLOCK = 1024;

// What any exchange of frames may come to.
const Codes EXCHANGE{RESULT_FRAME_FORMAT_ERROR, RESULT_SUM_ERROR, RESULT_SEND_FAILED,
                     RESULT_RECEIVE_TIMEOUT};

Codes with(Codes codes, const Codes& more) {
    codes.insert(codes.end(), more.begin(), more.end());
    return codes;
}

// Goes through a write stage by stage, noting on the way where it may end.
class Course {
public:
    explicit Course(const Scenario& scenario)
        : m_scenario(scenario),
          m_blocks((scenario.file.image.size() + FLASH_BLOCK - 1) / FLASH_BLOCK) {}

    std::vector<Ending> endings() {
        enterMode();
        if (readFile() && checkSizes()) {
            erase();
            program();
            compare();
        }
        return m_endings;
    }

private:
    void mayEnd(const std::string& stage, const Codes& codes, bool logged = false) {
        m_endings.push_back({stage, codes, m_log, logged, m_progress});
    }
    void show(int stage, int percent) { m_progress.emplace_back(stage, percent); }
    // So many units of work out of all, when all are worth so many percent.
    int share(std::size_t units, double all) const {
        return static_cast<int>(static_cast<double>(units) * (all / static_cast<double>(m_blocks)));
    }

    void enterMode() {
        show(101, 0);
        m_log.push_back(MODE_LINE);
        show(101, 5);
        mayEnd("mode entry", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT, RESULT_MODE_ENTRY_TIMEOUT,
                                             RESULT_BAUD_RATE_CHANGE_FAILED}));
        show(100, 5);
        show(100, 10);
    }

    bool readFile() {
        if (m_scenario.file.read != RESULT_OK) {
            mayEnd("file", {m_scenario.file.read});
        }
        return m_scenario.file.read == RESULT_OK;
    }

    bool checkSizes() {
        show(102, 10);
        const ResultCode result = undisturbedResult(m_scenario);
        if (result != RESULT_OK) {
            mayEnd("sizes", {result});
        }
        return result == RESULT_OK;
    }

    void erase() {
        m_log.push_back(ERASE_LINE);
        for (std::size_t block = 1; block <= m_blocks; ++block) {
            show(102, 10 + share(block, 10.0));
            mayEnd("erase " + std::to_string(block), with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT}),
                   true);
        }
        m_log.push_back(OK_TEXT);
    }

    void program() {
        const int before = m_progress.back().second;
        show(103, before);
        m_log.push_back(PROGRAM_LINE);
        mayEnd("announcement", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT}), true);
        for (std::size_t block = 1; block <= m_blocks; ++block) {
            show(103, before + share(block, 80.0));
            mayEnd("data " + std::to_string(block), with(EXCHANGE, {RESULT_DATA_FRAME_ABORT}),
                   true);
        }
        m_log.push_back(OK_TEXT);
    }

    void compare() {
        mayEnd("checksum", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT, RESULT_CHECKSUM_MISMATCH}));
        mayEnd("success", {RESULT_OK});
    }

    const Scenario& m_scenario;
    std::size_t m_blocks;
    std::vector<std::string> m_log;
    ProgressCalls m_progress;
    std::vector<Ending> m_endings;
};

} // namespace

std::vector<Ending> allowedEndings(const Scenario& scenario) {
    return Course(scenario).endings();
}

ResultCode undisturbedResult(const Scenario& scenario) {
    const RandomFile& file = scenario.file;
    if (file.read != RESULT_OK) {
        return file.read;
    }
    if (file.image.size() > std::size_t{scenario.board.target.flash.codeKib} * 1024) {
        return RESULT_CODE_FLASH_SIZE_ERROR;
    }
    return file.hasData ? RESULT_DATA_FLASH_SIZE_ERROR : RESULT_OK;
}

// The time-outs in milliseconds are those of a board at 32 MHz: 200 for Baud Rate Set, 100 for what
// is quick, 258 for an erase, 176 for a data frame, 100 and 1.2 for each block for the verify.
simulation::VirtualTime longestDuration(const Scenario& scenario) {
    using std::chrono::milliseconds;
    const auto blocks =
        static_cast<std::int64_t>((scenario.file.image.size() + FLASH_BLOCK - 1) / FLASH_BLOCK);
    // Each wait passes its time by up to a millisecond and a look at the clock.
    const simulation::VirtualTime over =
        milliseconds(1) + scenario.clock.step + scenario.clock.variation;
    const simulation::VirtualTime verify = milliseconds(101 + blocks * 6 / 5) + over;
    const auto attempts = [over](std::int64_t timeout) {
        return 5 * (milliseconds(1 + timeout + 100) + 3 * over);
    };
    const simulation::VirtualTime entry =
        3 * (milliseconds(1) + over) + attempts(200) + 2 * attempts(100) + milliseconds(100) + over;
    const simulation::VirtualTime block =
        milliseconds(101) + 2 * over + attempts(258) + 4 * attempts(176);
    simulation::VirtualTime longest = 2 * entry + blocks * block + 5 * verify + // last frame
                                      2 * attempts(100) + milliseconds(100) + over;
    // A clock that goes back within a wait makes it last so much longer, which is no longer than it
    // has lasted.
    longest += static_cast<std::int64_t>(scenario.clock.jumps.size()) *
               (std::max(verify, simulation::VirtualTime(milliseconds(258))) + over);
    return longest;
}

} // namespace flashwriter::random

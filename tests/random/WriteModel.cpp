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

// Goes through a write stage by stage, noting on the way where it may end, and how late. The
// time-outs are those of a board at 32 MHz, in milliseconds.
class Course {
public:
    explicit Course(const WriteFacts& facts)
        : m_facts(facts), m_blocks((facts.imageSize + FLASH_BLOCK - 1) / FLASH_BLOCK) {}

    std::vector<Ending> endings() {
        show(101, 0);
        if (!m_facts.portIsThere) {
            mayEnd("port", {RESULT_PORT_OPEN_ERROR});
            return m_endings;
        }
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
        m_endings.push_back({stage, codes, m_log, logged, m_progress, m_longest});
    }
    void show(int stage, int percent) { m_progress.emplace_back(stage, percent); }
    // So many units of work out of all, when all are worth so many percent.
    int share(std::size_t units, double all) const {
        return static_cast<int>(static_cast<double>(units) * (all / static_cast<double>(m_blocks)));
    }
    // Each wait passes its time by up to a millisecond and a look at the clock.
    void wait(std::size_t time) {
        m_longest += std::chrono::milliseconds(time + 1) + m_facts.longestLook;
    }
    void tryFiveTimes(std::size_t timeout) {
        for (int attempt = 0; attempt < 5; ++attempt) {
            wait(1);
            wait(timeout);
            wait(100);
        }
    }

    // One attempt at each sense of DTR; the first leads to the second by its Baud Rate Set alone.
    void enterMode() {
        m_log.push_back(MODE_LINE);
        show(101, 5);
        for (int sense = 0; sense < 2; ++sense) {
            for (int line = 0; line < 3; ++line) {
                wait(1);
            }
            tryFiveTimes(200); // Baud Rate Set
        }
        tryFiveTimes(100); // Reset
        tryFiveTimes(100); // Silicon Signature
        wait(100);
        mayEnd("mode entry", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT, RESULT_MODE_ENTRY_TIMEOUT,
                                             RESULT_BAUD_RATE_CHANGE_FAILED}));
        show(100, 5);
        show(100, 10);
    }

    bool readFile() {
        if (m_facts.read != RESULT_OK) {
            mayEnd("file", {m_facts.read});
        }
        return m_facts.read == RESULT_OK;
    }

    bool checkSizes() {
        show(102, 10);
        const ResultCode result = resultBeforeWriting(m_facts);
        if (result != RESULT_OK) {
            mayEnd("sizes", {result});
        }
        return result == RESULT_OK;
    }

    void erase() {
        m_log.push_back(ERASE_LINE);
        for (std::size_t block = 1; block <= m_blocks; ++block) {
            show(102, 10 + share(block, 10.0));
            wait(1);
            wait(100); // the blank check, once
            tryFiveTimes(258);
            mayEnd("erase " + std::to_string(block), with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT}),
                   true);
        }
        m_log.push_back(OK_TEXT);
    }

    void program() {
        const int before = m_progress.back().second;
        show(103, before);
        m_log.push_back(PROGRAM_LINE);
        tryFiveTimes(100);
        mayEnd("announcement", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT}), true);
        for (std::size_t block = 1; block <= m_blocks; ++block) {
            show(103, before + share(block, 80.0));
            programBlock(block == m_blocks);
            mayEnd("data " + std::to_string(block), with(EXCHANGE, {RESULT_DATA_FRAME_ABORT}),
                   true);
        }
        m_log.push_back(OK_TEXT);
    }

    void programBlock(bool last) {
        for (int frame = 0; frame < 4; ++frame) {
            tryFiveTimes(176);
        }
        for (int attempt = 0; last && attempt < 5; ++attempt) {
            wait(101 + m_blocks * 6 / 5); // the board's verify, behind each attempt
        }
    }

    void compare() {
        tryFiveTimes(100);
        wait(100);
        mayEnd("checksum", with(EXCHANGE, {RESULT_COMMAND_FRAME_ABORT, RESULT_CHECKSUM_MISMATCH}));
        mayEnd("success", {RESULT_OK});
    }

    const WriteFacts& m_facts;
    std::size_t m_blocks;
    std::vector<std::string> m_log;
    ProgressCalls m_progress;
    simulation::VirtualTime m_longest{};
    std::vector<Ending> m_endings;
};

} // namespace

std::vector<Ending> allowedEndings(const WriteFacts& facts) {
    return Course(facts).endings();
}

ResultCode resultBeforeWriting(const WriteFacts& facts) {
    if (facts.read != RESULT_OK) {
        return facts.read;
    }
    if (facts.imageSize > facts.codeFlashSize) {
        return RESULT_CODE_FLASH_SIZE_ERROR;
    }
    return facts.hasData ? RESULT_DATA_FLASH_SIZE_ERROR : RESULT_OK;
}

} // namespace flashwriter::random

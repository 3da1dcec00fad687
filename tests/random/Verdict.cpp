#include "tests/random/Verdict.h"

#include "sequence/context/ResultText.h"
#include "tests/random/WriteModel.h"
#include "tests/sequence/LogLines.h"
#include "tests/support/ImageFile.h"

#include <algorithm>

namespace flashwriter::random {

namespace {

using simulation::SimulatedWrite;

class Court {
public:
    Court(const Scenario& scenario, const SimulatedWrite& write)
        : m_scenario(scenario), m_write(write), m_result(write.record.returned) {}

    std::vector<std::string> complaints() {
        judgeEnd();
        judgeOutcome();
        judgeFlash();
        judgeWhatWasShown();
        judgeUndisturbed();
        return m_complaints;
    }

private:
    void demand(bool holds, const char* complaint) {
        if (!holds) {
            m_complaints.emplace_back(complaint);
        }
    }

    void judgeEnd() {
        demand(m_write.duration <= longestDuration(m_scenario), "it took too long");
        demand(m_write.openings == 1 && m_write.closings == 1,
               "the device was not closed, or twice");
        demand(m_write.strayCalls == 0, "a descriptor was used that was not open");
    }

    void judgeOutcome() {
        const RecordingWindow& window = *m_write.record.window;
        demand(m_write.record.outcome.Result == m_result, "the outcome is another than the result");
        demand(window.results.size() == 1, "the window was not told once");
        demand(window.outcomeWhenSet.Result == m_result, "the window was told another result");
        demand(window.closingsWhenSet == 0, "the window closed before it was told");
        demand(window.closings == 1, "the window was not closed once");
    }

    void judgeFlash() {
        const board::Bytes& before = m_write.codeBefore;
        const board::Bytes& after = m_write.codeAfter;
        demand(m_write.dataAfter == m_write.dataBefore, "data flash changed");
        const bool written = undisturbedResult(m_scenario) == RESULT_OK;
        const std::size_t end = written ? (m_scenario.file.image.size() + 1023) / 1024 * 1024 : 0;
        demand(std::equal(before.begin() + static_cast<std::ptrdiff_t>(end), before.end(),
                          after.begin() + static_cast<std::ptrdiff_t>(end), after.end()),
               "flash changed where no image belongs");
        if (m_result == RESULT_OK) {
            demand(written && after == testing::flashAfter(m_scenario.file.image, before),
                   "a success that is none: the flash does not hold the image");
        }
    }

    // The code, the log and the progress tell the same story, and one that the scenario allows.
    void judgeWhatWasShown() {
        const std::vector<Ending> endings = allowedEndings(m_scenario);
        demand(
            std::ranges::any_of(endings, [this](const Ending& ending) { return matches(ending); }),
            "result, log and progress do not fit each other or the file");
    }

    bool matches(const Ending& ending) const {
        std::vector<std::string> log = ending.log;
        if (ending.resultIsLogged) {
            log.push_back(getResultText(static_cast<std::int64_t>(m_result)));
        }
        log.push_back(m_result == RESULT_OK ? COMPLETE : FAILED);
        return std::ranges::find(ending.codes, m_result) != ending.codes.end() &&
               log == m_write.record.log && ending.progress == m_write.record.window->progress;
    }

    void judgeUndisturbed() {
        if (m_scenario.undisturbed()) {
            demand(m_result == undisturbedResult(m_scenario), "it failed without a reason");
            demand(m_write.violations == 0, "it broke the protocol");
        }
    }

    const Scenario& m_scenario;
    const SimulatedWrite& m_write;
    ResultCode m_result;
    std::vector<std::string> m_complaints;
};

} // namespace

std::vector<std::string> complaints(const Scenario& scenario, const SimulatedWrite& write) {
    return Court(scenario, write).complaints();
}

} // namespace flashwriter::random

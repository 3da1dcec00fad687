#include "tests/random/RecordVerdict.h"

#include "sequence/context/ResultText.h"
#include "tests/sequence/LogLines.h"

#include <algorithm>

namespace flashwriter::random {

namespace {

bool shows(const RunRecord& record, const Ending& ending) {
    std::vector<std::string> log = ending.log;
    if (ending.resultIsLogged) {
        log.push_back(getResultText(static_cast<std::int64_t>(record.returned)));
    }
    log.push_back(record.returned == RESULT_OK ? COMPLETE : FAILED);
    return std::ranges::find(ending.codes, record.returned) != ending.codes.end() &&
           log == record.log && ending.progress == record.window->progress;
}

} // namespace

std::vector<std::string> recordComplaints(const simulation::PortWrite& write,
                                          const std::vector<Ending>& allowed,
                                          simulation::VirtualTime slack) {
    std::vector<std::string> complaints;
    const auto demand = [&complaints](bool holds, const char* complaint) {
        if (!holds) {
            complaints.emplace_back(complaint);
        }
    };
    const RunRecord& record = write.record;
    const RecordingWindow& window = *record.window;
    demand(record.outcome.Result == record.returned, "the outcome is another than the result");
    demand(window.results.size() == 1, "the window was not told once");
    demand(window.outcomeWhenSet.Result == record.returned, "the window was told another result");
    demand(window.closingsWhenSet == 0, "the window closed before it was told");
    demand(window.closings == 1, "the window was not closed once");
    demand(write.openings == (record.returned == RESULT_PORT_OPEN_ERROR ? 0U : 1U),
           "the device was not opened once");
    demand(write.closings == write.openings, "the device was not closed, or twice");
    demand(write.strayCalls == 0, "a descriptor was used that was not open");
    const auto ending = std::ranges::find_if(
        allowed, [&record](const Ending& candidate) { return shows(record, candidate); });
    demand(ending != allowed.end(), "result, log and progress do not fit each other or the file");
    demand(ending == allowed.end() || write.duration <= ending->longest + slack,
           "it took too long");
    return complaints;
}

} // namespace flashwriter::random

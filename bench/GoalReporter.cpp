#include "bench/GoalReporter.h"

#include <algorithm>
#include <cstdio>

namespace flashwriter {

void GoalReporter::ReportRuns(const std::vector<Run>& reports) {
    ConsoleReporter::ReportRuns(reports);
    for (const Run& run : reports) {
        m_hasFailed = m_hasFailed || run.error_occurred;
        const auto speed = run.counters.find(speedCounter);
        if (run.aggregate_name == "median" && speed != run.counters.end()) {
            m_medians.push_back({run.run_name.function_name, speed->second});
        }
    }
}

bool GoalReporter::printVerdict(const std::string& reader, double required) const {
    const auto own =
        std::find_if(m_medians.begin(), m_medians.end(),
                     [&reader](const Median& median) { return median.name == reader; });
    if (own == m_medians.end()) {
        std::printf("\n%s was not measured\n", reader.c_str());
        return false;
    }
    std::printf("\n%s: %.0f MB of text per second\n", own->name.c_str(), own->speed);
    for (const Median& other : m_medians) {
        if (other.name != reader) {
            std::printf("  %.2f times %s (%.0f MB/s)\n", own->speed / other.speed,
                        other.name.c_str(), other.speed);
        }
    }
    const bool isReached = own->speed >= required;
    if (required > 0) {
        std::printf("required: %.0f MB/s, %s\n", required, isReached ? "reached" : "NOT reached");
    }
    return !m_hasFailed && isReached;
}

} // namespace flashwriter

// Google Benchmark's table, and behind it the medians compared.
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace flashwriter {

// The counter by which the benchmarks tell their speed: megabytes (10^6 bytes) of text per second.
inline constexpr const char* speedCounter = "MB/s";

class GoalReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& reports) override;

    // Prints the median speed of the benchmark called reader beside that of the others. False when
    // it was not measured, any benchmark failed, or its median is below required (MB/s).
    bool printVerdict(const std::string& reader, double required) const;

private:
    struct Median {
        std::string name;
        double speed;
    };
    std::vector<Median> m_medians;
    bool m_hasFailed = false;
};

} // namespace flashwriter

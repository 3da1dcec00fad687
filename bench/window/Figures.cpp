#include "bench/window/Figures.h"

#include "bench/WriteFigures.h"

#include <cstdint>

namespace flashwriter::bench {

Spread spreadOf(const Durations& durations) {
    std::vector<std::int64_t> values;
    values.reserve(durations.size());
    for (const std::chrono::microseconds duration : durations) {
        values.push_back(duration.count());
    }
    const auto milliseconds = [&values](unsigned percent) {
        return static_cast<double>(percentile(values, percent)) / 1000.0;
    };
    return {milliseconds(50), milliseconds(99), milliseconds(100)};
}

} // namespace flashwriter::bench

#include "console/ProgressBar.h"

#include "sequence/context/StageName.h"

#include <algorithm>

namespace flashwriter {

namespace {

constexpr std::size_t WIDEST_BAR = 40;
constexpr std::size_t NARROWEST_BAR = 5;
constexpr std::size_t FRAME = 3; // a blank and two brackets

std::string bar(std::int32_t percentage, std::size_t cells) {
    const auto percent = static_cast<std::size_t>(std::clamp(percentage, 0, 100));
    const std::size_t full = cells * percent / 100;
    return " [" + std::string(full, '#') + std::string(cells - full, ' ') + "]";
}

} // namespace

std::string progressBar(std::int32_t step, std::int32_t percentage, std::size_t columns) {
    const std::string number = std::to_string(percentage) + " %";
    std::string label = std::string(stageName(step)) + " (" + number + ")";
    if (label.size() + FRAME + NARROWEST_BAR <= columns) {
        const std::size_t room = columns - label.size() - FRAME;
        return label + bar(percentage, std::min(room, WIDEST_BAR));
    }
    if (label.size() <= columns) {
        return label;
    }
    return number.size() <= columns ? number : "";
}

} // namespace flashwriter

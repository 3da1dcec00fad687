#include "advice/MonitorSpeed.h"

#include <charconv>

namespace flashwriter {

std::optional<std::uint64_t> monitorSpeed(const std::string& text) {
    std::uint64_t speed = 0;
    const char* end = text.data() + text.size();
    // It takes digits only. A text without any, and a number too large for it, leave the 0.
    const bool isNumber = std::from_chars(text.data(), end, speed).ptr == end;
    return isNumber && speed >= SLOWEST_MONITOR_SPEED && speed <= FASTEST_MONITOR_SPEED
               ? std::optional(speed)
               : std::nullopt;
}

} // namespace flashwriter

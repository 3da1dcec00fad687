#include "advice/MonitorSpeed.h"

#include <charconv>

namespace flashwriter {

std::optional<std::uint64_t> monitorSpeed(const std::string& text) {
    std::uint64_t speed = 0;
    const char* end = text.data() + text.size();
    // Of a number without a sign it takes digits only, and a number too large for it is an error.
    const auto parsed = std::from_chars(text.data(), end, speed);
    const bool isNumber = parsed.ec == std::errc() && parsed.ptr == end;
    return isNumber && speed >= SLOWEST_MONITOR_SPEED && speed <= FASTEST_MONITOR_SPEED
               ? std::optional(speed)
               : std::nullopt;
}

} // namespace flashwriter

#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace flashwriter {

// The speeds that the serial monitor can be opened at, in bits per second. A port need not know all
// of them.
inline constexpr std::uint64_t SLOWEST_MONITOR_SPEED = 110;
inline constexpr std::uint64_t FASTEST_MONITOR_SPEED = 921600;

// The speed that a typed text stands for: digits 0 to 9 and nothing else, of a number within the
// limits above. Nothing for every other text, the empty one included.
std::optional<std::uint64_t> monitorSpeed(const std::string& text);

} // namespace flashwriter

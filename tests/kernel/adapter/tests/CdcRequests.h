// What a host asks of a CDC-ACM device: request type and request, as the two bytes of a setup
// packet.
#pragma once

#include <cstdint>

namespace flashwriter::kernel {

inline constexpr std::uint8_t kCdcOut = 0x01; // the endpoint that takes the host's bytes
inline constexpr std::uint16_t kSetLineCoding = 0x2120;
inline constexpr std::uint16_t kGetLineCoding = 0xA121;
inline constexpr std::uint16_t kLineState = 0x2122;
inline constexpr std::uint16_t kBreak = 0x2123;

} // namespace flashwriter::kernel

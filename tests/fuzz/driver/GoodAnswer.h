#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace flashwriter::fuzz {

// What a board answers to a frame of the program when all goes well and its flash is blank: all
// that is due for it, status and data. flash is what it holds after the write, for its checksum.
std::vector<std::uint8_t> goodAnswer(std::span<const std::uint8_t> frame,
                                     std::span<const std::uint8_t> flash);

// The board's checksum of these bytes.
std::uint16_t flashChecksum(std::span<const std::uint8_t> flash);

} // namespace flashwriter::fuzz

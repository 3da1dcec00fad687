#pragma once

#include <cstdint>

namespace flashwriter {

// The target's flash, in bytes and addresses.
inline constexpr std::uint64_t BLOCK_SIZE = 1024; // what one erase takes
inline constexpr std::uint64_t CODE_FLASH_START = 0;
inline constexpr std::uint64_t DATA_FLASH_START = 0xF1000;
inline constexpr std::uint8_t ERASED = 0xFF; // the value of an erased byte

// Blocks that so many bytes from the start of a block on reach into.
constexpr std::uint64_t blocksOf(std::uint64_t size) {
    return size / BLOCK_SIZE + (size % BLOCK_SIZE != 0 ? 1 : 0);
}

} // namespace flashwriter

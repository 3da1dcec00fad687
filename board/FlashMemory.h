#pragma once

#include "board/Protocol.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace flashwriter::board {

// How the target's flash is made and what it holds at first.
struct FlashOptions {
    std::uint32_t codeKib = 64;                  // code flash from address 0, 16 to 256 KiB
    std::uint32_t dataKib = 4;                   // data flash from 0xF1000, 0 (none) to 16 KiB
    std::uint8_t fill = 0xFF;                    // what every cell holds at first; 0xFF is erased
    std::optional<std::uint32_t> seed{};         // instead of fill: bytes drawn from this seed
    Bytes codeContents{};                        // laid over the start of code flash
    std::optional<std::uint32_t> stuckAddress{}; // a cell that erases but cannot be written
};

// Real flash: cells are erased to 0xFF by whole blocks, and a write can only clear bits.
// Not synchronised: it belongs to whoever runs the target.
class FlashMemory {
public:
    static constexpr std::uint32_t kBlockSize = 1024;
    static constexpr std::uint32_t kDataStartAddress = 0xF1000;
    static constexpr std::uint8_t kErased = 0xFF;

    // Throws std::invalid_argument for sizes that no board has.
    explicit FlashMemory(const FlashOptions& options);

    // Whether first to last (inclusive) are whole blocks that lie in one of the two areas.
    bool holdsBlocks(std::uint32_t first, std::uint32_t last) const;

    // The operations below take ranges that holdsBlocks() accepts, or parts of one.
    bool isBlank(std::uint32_t first, std::uint32_t last) const;
    void eraseBlock(std::uint32_t first);

    // Writes the bytes from the address on. False when a cell was not erased or did not take its
    // byte; such a cell then holds old AND new, or what it held.
    bool program(std::uint32_t address, std::span<const std::uint8_t> bytes);

    // Whether the flash holds these bytes from the address on.
    bool holds(std::uint32_t address, std::span<const std::uint8_t> bytes) const;

    // Two's complement of the byte sum of the range, 16 bits wide.
    std::uint16_t checksum(std::uint32_t first, std::uint32_t last) const;

    // The last address of each area; no data flash gives 0.
    std::uint32_t codeEndAddress() const;
    std::uint32_t dataEndAddress() const;

    const Bytes& code() const { return m_code; }
    const Bytes& data() const { return m_data; }

private:
    std::span<const std::uint8_t> cells(std::uint32_t first, std::size_t count) const;
    std::uint8_t& cell(std::uint32_t address);

    Bytes m_code;
    Bytes m_data;
    std::optional<std::uint32_t> m_stuckAddress;
};

} // namespace flashwriter::board

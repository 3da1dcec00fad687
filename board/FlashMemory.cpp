#include "board/FlashMemory.h"

#include <algorithm>
#include <random>
#include <stdexcept>

namespace flashwriter::board {

namespace {

Bytes makeArea(const FlashOptions& options, std::uint32_t kib, std::uint32_t salt) {
    Bytes area(std::size_t{kib} * FlashMemory::kBlockSize, options.fill);
    if (options.seed) {
        std::mt19937 random(*options.seed + salt);
        std::generate(area.begin(), area.end(),
                      [&random] { return static_cast<std::uint8_t>(random() & 0xFFU); });
    }
    return area;
}

} // namespace

FlashMemory::FlashMemory(const FlashOptions& options) : m_stuckAddress(options.stuckAddress) {
    if (options.codeKib < 16 || options.codeKib > 256 || options.dataKib > 16) {
        throw std::invalid_argument("code flash is 16 to 256 KiB, data flash 0 to 16 KiB");
    }
    m_code = makeArea(options, options.codeKib, 0);
    m_data = makeArea(options, options.dataKib, 1);
    if (options.codeContents.size() > m_code.size()) {
        throw std::invalid_argument("the initial contents do not fit the code flash");
    }
    std::copy(options.codeContents.begin(), options.codeContents.end(), m_code.begin());
}

bool FlashMemory::holdsBlocks(std::uint32_t first, std::uint32_t last) const {
    const bool wholeBlocks =
        first % kBlockSize == 0 && last % kBlockSize == kBlockSize - 1 && first < last;
    const bool inCode = last < m_code.size();
    const bool inData = first >= kDataStartAddress && last - kDataStartAddress < m_data.size();
    return wholeBlocks && (inCode || inData);
}

bool FlashMemory::isBlank(std::uint32_t first, std::uint32_t last) const {
    const auto range = cells(first, std::size_t{last} - first + 1);
    return std::all_of(range.begin(), range.end(),
                       [](std::uint8_t byte) { return byte == kErased; });
}

void FlashMemory::eraseBlock(std::uint32_t first) {
    for (std::uint32_t address = first; address < first + kBlockSize; ++address) {
        cell(address) = kErased;
    }
}

bool FlashMemory::program(std::uint32_t address, std::span<const std::uint8_t> bytes) {
    bool clean = true;
    for (const std::uint8_t byte : bytes) {
        std::uint8_t& target = cell(address);
        clean = clean && target == kErased;
        if (address != m_stuckAddress) {
            target = static_cast<std::uint8_t>(target & byte);
        }
        clean = clean && target == byte;
        ++address;
    }
    return clean;
}

bool FlashMemory::holds(std::uint32_t address, std::span<const std::uint8_t> bytes) const {
    const auto range = cells(address, bytes.size());
    return std::equal(range.begin(), range.end(), bytes.begin(), bytes.end());
}

std::uint16_t FlashMemory::checksum(std::uint32_t first, std::uint32_t last) const {
    std::uint32_t sum = 0;
    for (const std::uint8_t byte : cells(first, std::size_t{last} - first + 1)) {
        sum += byte;
    }
    return static_cast<std::uint16_t>((0x10000U - (sum & 0xFFFFU)) & 0xFFFFU);
}

std::uint32_t FlashMemory::codeEndAddress() const {
    return static_cast<std::uint32_t>(m_code.size() - 1);
}

std::uint32_t FlashMemory::dataEndAddress() const {
    return m_data.empty() ? 0 : kDataStartAddress + static_cast<std::uint32_t>(m_data.size() - 1);
}

std::span<const std::uint8_t> FlashMemory::cells(std::uint32_t first, std::size_t count) const {
    return first < m_code.size() ? std::span(m_code).subspan(first, count)
                                 : std::span(m_data).subspan(first - kDataStartAddress, count);
}

std::uint8_t& FlashMemory::cell(std::uint32_t address) {
    return address < m_code.size() ? m_code[address] : m_data[address - kDataStartAddress];
}

} // namespace flashwriter::board

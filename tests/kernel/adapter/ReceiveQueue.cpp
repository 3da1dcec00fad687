#include "tests/kernel/adapter/ReceiveQueue.h"

#include <algorithm>

namespace flashwriter::kernel {

namespace {

constexpr std::size_t kCapacity = 512; // bytes, as the larger chips have; more are lost

} // namespace

std::size_t ReceiveQueue::push(std::span<const std::uint8_t> bytes) {
    const std::size_t count = std::min(bytes.size(), kCapacity - m_bytes.size());
    const auto fitting = bytes.first(count);
    m_bytes.insert(m_bytes.end(), fitting.begin(), fitting.end());
    return count;
}

void ReceiveQueue::moveTo(Bytes& bytes, std::size_t count) {
    const auto end = m_bytes.begin() + static_cast<std::ptrdiff_t>(std::min(count, m_bytes.size()));
    bytes.insert(bytes.end(), m_bytes.begin(), end);
    m_taken += static_cast<std::size_t>(end - m_bytes.begin());
    m_bytes.erase(m_bytes.begin(), end);
}

std::optional<Bytes> PlainQueue::take(std::size_t length, BoardTime) {
    if (size() == 0) {
        return std::nullopt;
    }
    Bytes bytes;
    moveTo(bytes, length);
    return bytes;
}

} // namespace flashwriter::kernel

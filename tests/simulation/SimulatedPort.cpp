#include "tests/simulation/SimulatedPort.h"

#include <algorithm>

namespace flashwriter::simulation {

std::size_t SimulatedPort::take(std::uint8_t* bytes, std::size_t size) {
    const std::size_t count = std::min(size, m_arrived.size());
    const auto end = m_arrived.begin() + static_cast<std::ptrdiff_t>(count);
    std::copy(m_arrived.begin(), end, bytes);
    m_arrived.erase(m_arrived.begin(), end);
    return count;
}

void SimulatedPort::discard(VirtualTime now) {
    m_arrived.clear();
    discardOutput(now);
}

void SimulatedPort::arrive(std::span<const std::uint8_t> bytes) {
    m_arrived.insert(m_arrived.end(), bytes.begin(), bytes.end());
}

} // namespace flashwriter::simulation

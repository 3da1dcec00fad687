#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace flashwriter::random {

// Numbers from a seed, the same with every standard library: its engines are prescribed, its
// distributions are not.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : m_engine(seed) {}

    // 0 to below - 1.
    std::uint32_t below(std::uint32_t below) {
        return static_cast<std::uint32_t>(m_engine()) % below;
    }
    // first to last.
    std::uint32_t between(std::uint32_t first, std::uint32_t last) {
        return first + below(last - first + 1);
    }
    // What happens once in so many times.
    bool once(std::uint32_t inSoMany) { return below(inSoMany) == 0; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }
    template <class Choices>
    auto pick(const Choices& choices) {
        return choices[below(static_cast<std::uint32_t>(std::size(choices)))];
    }

private:
    std::mt19937 m_engine;
};

} // namespace flashwriter::random

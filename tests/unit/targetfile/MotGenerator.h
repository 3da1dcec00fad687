// Random S-record files: good ones, and ones that are wrong in every way a file can be.
#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace flashwriter {

class MotGenerator {
public:
    explicit MotGenerator(std::uint32_t seed) : m_random(seed) {}

    // A file's contents, of up to some thousand bytes.
    std::string file();

    // A number from 0 to below - 1.
    std::uint32_t number(std::uint32_t below);

private:
    // Whether a thing happens that happens once in so many times.
    bool once(std::uint32_t inSoMany) { return number(inSoMany) == 0; }
    std::string line();
    std::string record();
    std::uint32_t address(int type);
    void spoil(std::string& text);

    std::mt19937 m_random;
    std::uint32_t m_rarity = 1; // of what is wrong in this file: higher is seldomer
};

} // namespace flashwriter

#include "bench/PlainMotLoop.h"

#include <filesystem>
#include <fstream>

namespace flashwriter {

namespace {

std::string readFile(const std::string& path) {
    std::string text(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary)
        .read(text.data(), static_cast<std::streamsize>(text.size()));
    return text;
}

std::uint32_t digit(char character) {
    if (character >= '0' && character <= '9') {
        return static_cast<std::uint32_t>(character - '0');
    }
    if (character >= 'A' && character <= 'F') {
        return static_cast<std::uint32_t>(character - 'A' + 10);
    }
    return 0;
}

std::uint32_t hex(const char* text, int digits) {
    std::uint32_t value = 0;
    for (int i = 0; i < digits; ++i) {
        value = value * 16 + digit(text[i]);
    }
    return value;
}

} // namespace

std::uint64_t plainMotLoop(const std::string& path, std::vector<std::uint8_t>& image) {
    const std::string text = readFile(path);
    std::uint64_t stored = 0;
    std::size_t begin = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos;
         begin = end + 1, end = text.find('\n', begin)) {
        const char* const line = text.data() + begin;
        if (end - begin < 14 || line[0] != 'S' || line[1] != '3') {
            continue;
        }
        const std::size_t size = hex(line + 2, 2) - 5;
        const std::size_t address = hex(line + 4, 8);
        if (address + size > image.size() || end - begin < 12 + 2 * size) {
            continue;
        }
        for (std::size_t i = 0; i < size; ++i) {
            image[address + i] = static_cast<std::uint8_t>(hex(line + 12 + 2 * i, 2));
        }
        stored += size;
    }
    return stored;
}

} // namespace flashwriter

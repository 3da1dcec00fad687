#include "tests/support/ImageFile.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace flashwriter::testing {

ImageFile::ImageFile(const std::string& name, const std::string& content) {
    std::string pattern = std::filesystem::temp_directory_path() / "flash-writer-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary directory");
    }
    m_directory = pattern;
    m_path = m_directory + "/" + name;
    std::ofstream(m_path, std::ios::binary) << content;
}

ImageFile::ImageFile(const std::string& name, const std::vector<std::uint8_t>& content)
    : ImageFile(name, std::string(content.begin(), content.end())) {}

ImageFile::~ImageFile() {
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

std::vector<std::uint8_t> patternImage(std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    std::uint32_t state = 12345;
    for (std::uint8_t& byte : bytes) {
        state = state * 1664525U + 1013904223U;
        byte = static_cast<std::uint8_t>(state >> 24);
    }
    return bytes;
}

std::string motText(const std::vector<std::uint8_t>& image) {
    constexpr std::size_t RECORD = 32;
    std::string text = "S00600004844521B\n";
    std::array<char, 32> field{};
    for (std::size_t address = 0; address < image.size(); address += RECORD) {
        const std::size_t count = std::min(RECORD, image.size() - address);
        std::snprintf(field.data(), field.size(), "S3%02zX%08zX", count + 5, address);
        text += field.data();
        for (std::size_t i = 0; i < count; ++i) {
            std::snprintf(field.data(), field.size(), "%02X", image[address + i]);
            text += field.data();
        }
        text += "00\n"; // a sum that nobody checks
    }
    return text + "S70500000000FA\n";
}

std::vector<std::uint8_t> flashAfter(const std::vector<std::uint8_t>& image,
                                     std::vector<std::uint8_t> before) {
    const std::size_t end = (image.size() + 1023) / 1024 * 1024;
    std::fill_n(before.begin(), end, std::uint8_t{0xFF});
    std::copy(image.begin(), image.end(), before.begin());
    return before;
}

} // namespace flashwriter::testing

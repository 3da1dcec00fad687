#include "bench/MotSample.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace flashwriter {

namespace {

constexpr std::uint32_t extent = 0x1000000;
constexpr std::uint32_t dataFlash = 0xF1000;
constexpr std::uint32_t recordBytes = 32;

class Line {
public:
    explicit Line(std::uint32_t address) {
        m_text = "S3";
        append(recordBytes + 5);
        for (int shift = 24; shift >= 0; shift -= 8) {
            append(static_cast<std::uint8_t>(address >> static_cast<unsigned>(shift)));
        }
        for (std::uint32_t i = 0; i < recordBytes; ++i) {
            append(static_cast<std::uint8_t>(((address + i) * 2654435761U) >> 24U));
        }
        append(static_cast<std::uint8_t>(~m_sum));
        m_text += '\n';
    }
    const std::string& text() const { return m_text; }

private:
    void append(std::uint8_t byte) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        m_text += digits[byte >> 4U];
        m_text += digits[byte & 0xFU];
        m_sum += byte;
    }

    std::string m_text;
    std::uint32_t m_sum = 0;
};

std::string makeDirectory() {
    std::string path = (std::filesystem::temp_directory_path() / "mot-read-bench-XXXXXX").string();
    if (::mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), path);
    }
    return path;
}

} // namespace

MotSample::MotSample() : m_directory(makeDirectory()), m_path(pathBeside("sample.mot")) {
    std::ofstream file(m_path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    for (std::uint32_t address = 0; address < extent; address += recordBytes) {
        if (address + recordBytes != dataFlash) {
            const Line line(address);
            file << line.text();
            m_textSize += line.text().size();
        }
    }
    file << "S70500000000FA\n";
    file.close();
}

MotSample::~MotSample() {
    std::error_code ignored;
    std::filesystem::remove_all(m_directory, ignored);
}

} // namespace flashwriter

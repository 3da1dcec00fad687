#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::testing {

// A file in a directory of its own, both gone at the end.
class ImageFile {
public:
    // name: with the extension that the test wants.
    ImageFile(const std::string& name, const std::string& content);
    ImageFile(const std::string& name, const std::vector<std::uint8_t>& content);
    ~ImageFile();
    ImageFile(const ImageFile&) = delete;
    ImageFile& operator=(const ImageFile&) = delete;

    const std::string& path() const { return m_path; }

private:
    std::string m_directory;
    std::string m_path;
};

// Bytes without a pattern that a mix-up of blocks or frames would leave unchanged.
std::vector<std::uint8_t> patternImage(std::size_t size);

// The image as S3 records of 32 bytes.
std::string motText(const std::vector<std::uint8_t>& image);

// What code flash holds after the image has been written over it: the image, filled up with 0xFF to
// whole blocks of 1024, and beyond them what was there.
std::vector<std::uint8_t> flashAfter(const std::vector<std::uint8_t>& image,
                                     std::vector<std::uint8_t> before);

} // namespace flashwriter::testing

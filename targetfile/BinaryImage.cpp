#include "targetfile/BinaryImage.h"

#include "targetfile/FileReader.h"

#include <cstring>
#include <new>

namespace flashwriter {

ResultCode readBinaryImage(const std::string& path, std::unique_ptr<std::uint8_t[]>& image,
                           std::uint64_t& size) {
    // One byte more than is allowed tells a file that is too long, however long it is, and does not
    // rely on the size that the file had at some other moment.
    constexpr std::uint64_t enough = longestBinaryImage + 1;
    const FileReader file(path);
    const std::unique_ptr<std::uint8_t[]> contents(new (std::nothrow) std::uint8_t[enough]);
    if (!contents) {
        return RESULT_FILE_READ_FAILED;
    }
    const std::int64_t length = file.readAt(0, contents.get(), enough);
    if (length < 0) {
        return RESULT_FILE_READ_FAILED;
    }
    const auto bytes = static_cast<std::uint64_t>(length);
    if (bytes == 0 || bytes > longestBinaryImage) {
        return RESULT_FILE_SIZE_ERROR;
    }
    std::unique_ptr<std::uint8_t[]> exact(new (std::nothrow) std::uint8_t[bytes]);
    if (!exact) {
        return RESULT_FILE_READ_FAILED;
    }
    std::memcpy(exact.get(), contents.get(), bytes);
    image = std::move(exact);
    size = bytes;
    return RESULT_OK;
}

} // namespace flashwriter

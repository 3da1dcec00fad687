// Raw image files, as both target files read them.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstdint>
#include <memory>
#include <string>

namespace flashwriter {

// The longest raw image, in bytes: 256 KiB of code flash.
inline constexpr std::uint64_t longestBinaryImage = 0x40000;

// Reads the whole file at path (UTF-8) into a new buffer of exactly its length: image becomes its
// owner and size its length in bytes. Both stay untouched unless the result is RESULT_OK.
// RESULT_FILE_READ_FAILED: not a readable regular file, or no memory.
// RESULT_FILE_SIZE_ERROR: empty, or longer than longestBinaryImage.
ResultCode readBinaryImage(const std::string& path, std::unique_ptr<std::uint8_t[]>& image,
                           std::uint64_t& size);

} // namespace flashwriter

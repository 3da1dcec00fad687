// The two passes over an S-record file: how large the images must be, then what is in them.
#pragma once

#include "sequence/context/ResultCode.h"
#include "targetfile/MotLineReader.h"
#include "targetfile/MotRecord.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter {

// Where data flash begins; records that end beyond it belong there.
inline constexpr std::uint32_t dataFlashAddress = 0xF1000;

// One past the highest address that any record writes, 0 when none does. That of the data flash
// counts from address 0 too, not from where data flash begins.
struct MotExtents {
    std::uint64_t program = 0;
    std::uint64_t data = 0;
};

// How many bytes of a data image are kept, its first ones: no more than 16 MiB, which is as far as
// the protocol's 24-bit addresses go. A record may lie anywhere in 32 bits, and its address must
// not cost the machine its memory. A code image is never as large as that.
constexpr std::uint64_t keptOfDataImage(std::uint64_t dataSize) {
    return std::min<std::uint64_t>(dataSize, 0x1000000);
}

// The images to fill, borrowed, and their sizes in bytes. Byte i of program is address i, byte i of
// data is address dataFlashAddress + i; behind data are the keptOfDataImage(dataSize) bytes.
struct MotImages {
    std::uint8_t* program = nullptr;
    std::uint64_t programSize = 0;
    std::uint8_t* data = nullptr;
    std::uint64_t dataSize = 0;
};

// First pass: takes the extents of the records in the file at path (UTF-8), reading step bytes at
// once. extents stay untouched when the file cannot be read, and cover the records in front of the
// line that ended the scan otherwise.
// RESULT_FILE_READ_FAILED, RESULT_UNSUPPORTED_FORMAT: as MotRecordReader::finish().
ResultCode measureMotFile(const std::string& path, MotExtents& extents,
                          std::size_t step = MotLineReader::usualStep);

// Second pass: stores the bytes of the file's records into the images, reading step bytes at once.
// The file may have become another one since it was measured. After a failure the images are
// partly filled.
// RESULT_FILE_READ_FAILED, RESULT_UNSUPPORTED_FORMAT: as MotRecordReader::finish(), or as
// storeMotRecord(), of which RESULT_DATA_FLASH_SIZE_ERROR is another; an unreadable file outweighs
// a bad record.
ResultCode fillMotImages(const std::string& path, const MotImages& images,
                         std::size_t step = MotLineReader::usualStep);

// Stores one record's bytes into the image that its end address chooses, as far as the image is
// kept. Never writes outside it.
// RESULT_DATA_FLASH_SIZE_ERROR: the record begins in code flash and ends beyond that image, or ends
// too far beyond the data flash.
// RESULT_UNSUPPORTED_FORMAT: its byte count or address wraps, so that its bytes do not lie inside
// the image.
ResultCode storeMotRecord(const MotRecord& record, const MotImages& images);

} // namespace flashwriter

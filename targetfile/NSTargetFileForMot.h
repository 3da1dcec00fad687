// S-record files.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace flashwriter {

// The images of an S-record file (extension "mot", which nobody here checks): code flash from
// address 0, data flash from address 0xF1000. Owns its buffers and lends them out until the next
// ReadFile, readFromBinFile or releaseData, or the object's end. Paths are UTF-8. No operation
// throws, and none needs more memory than the images and a fixed buffer. Not for use by two threads
// at once.
//
// Checksums, the order of records, and byte counts against the lines' lengths are not checked;
// digits that a line lacks read as 0.
class NSTargetFileForMot {
public:
    NSTargetFileForMot() = default;
    ~NSTargetFileForMot() = default;
    NSTargetFileForMot(const NSTargetFileForMot&) = delete;
    NSTargetFileForMot& operator=(const NSTargetFileForMot&) = delete;

    // Loads the file at path in place of any earlier images. What no record writes reads 0xFF.
    // RESULT_FILE_READ_FAILED: not a readable regular file, not UTF-8, or no memory for the images;
    // the object is empty.
    // RESULT_UNSUPPORTED_FORMAT: as MotFileSize, there are no images then; or a record whose
    // address or byte count wraps, so that its bytes lie outside its image.
    // RESULT_DATA_FLASH_SIZE_ERROR: a record that begins below data flash and ends in it, or one
    // that ends far beyond the data flash measured before. After these two the images are partly
    // filled.
    ResultCode ReadFile(const std::string& path);

    // Measures the file at path: sets both extents, and only them, so that images loaded earlier no
    // longer have the sizes that the getters tell.
    // RESULT_FILE_READ_FAILED: not a readable regular file, not UTF-8; the extents stay.
    // RESULT_UNSUPPORTED_FORMAT: a line longer than 9 characters that does not begin with "S",
    // which ends the scan, or no record with an end above 0.
    ResultCode MotFileSize(const std::string& path);

    // The value of the hexadecimal digits in line (UTF-8) that begin at character startIndex, at
    // most Length of them and up to the first character that is none. 0 when there is none, and
    // where the position or the length is negative or lies outside the line; 0xFFFFFFFF when
    // 32 bits do not hold the value.
    static std::uint32_t ascii2hex(std::string_view line, std::int32_t startIndex,
                                   std::int32_t Length);

    // Loads a raw binary file as the code-flash image, as NSTargetFile::readFromBinFile.
    ResultCode readFromBinFile(const std::string& path);

    // Frees both images; both sizes become 0.
    void releaseData();

    // Always 0: S-record files have no type of their own.
    std::uint32_t GetFileType() const { return m_EInputFile; }

    // The code-flash image, borrowed, and its extent in bytes. After a ReadFile that failed on the
    // format there may be an extent without an image (nullptr); ask only after a success.
    const std::uint8_t* GetProgramMemory() const { return m_pbProgram.get(); }
    std::uint64_t GetProgramMemorySize() const { return m_dwProgramSize; }

    // The data-flash image, borrowed, whose byte i is address 0xF1000 + i, and the data flash's end
    // as an absolute address, up to 0xFFFFFFFF. The buffer has as many bytes as that address says,
    // and 16 MiB at most: what lies beyond them is checked and not kept.
    const std::uint8_t* GetDataFlash() const { return m_pbData.get(); }
    std::uint64_t GetDataSize() const { return m_dwDataSize; }

private:
    bool allocateImages();

    std::unique_ptr<std::uint8_t[]> m_pbProgram;
    std::uint64_t m_dwProgramSize = 0;
    std::unique_ptr<std::uint8_t[]> m_pbData;
    std::uint64_t m_dwDataSize = 0;
    std::uint32_t m_EInputFile = 0;
};

} // namespace flashwriter

// Raw binary image files.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstdint>
#include <memory>
#include <string>

namespace flashwriter {

// The image of a raw binary file (extension "bin"): the whole file is code flash, byte for byte
// from the first address on, without padding. Owns its buffers and lends them out until the next
// ReadFile, readFromBinFile or releaseData, or the object's end. Paths are UTF-8. No operation
// throws. Not for use by two threads at once.
class NSTargetFile {
public:
    NSTargetFile() = default;
    ~NSTargetFile() = default;
    NSTargetFile(const NSTargetFile&) = delete;
    NSTargetFile& operator=(const NSTargetFile&) = delete;

    // Loads the file at path in place of any earlier image.
    // RESULT_FILE_NOT_FOUND: nothing there, or a directory; an earlier image stays.
    // RESULT_UNSUPPORTED_FORMAT: the extension is not "bin" in any case; an earlier image stays.
    // Otherwise as readFromBinFile.
    ResultCode ReadFile(const std::string& path);

    // As ReadFile, without looking at the extension. Every failure leaves the object empty.
    // RESULT_FILE_READ_FAILED: not a readable regular file, or no memory for the image.
    // RESULT_FILE_SIZE_ERROR: empty, or longer than 262144 bytes.
    ResultCode readFromBinFile(const std::string& path);

    // Frees both images; both sizes become 0. The file type stays.
    void releaseData();

    // 1 once a file's extension has been accepted, 0 before that and when one was refused.
    std::uint32_t GetFileType() const { return m_EInputFile; }

    // The code-flash image, borrowed; nullptr when empty. Its size is in bytes.
    const std::uint8_t* GetProgramMemory() const { return m_pbProgram.get(); }
    std::uint64_t GetProgramMemorySize() const { return m_dwProgramSize; }

    // The data-flash image: a raw binary file has none, so always nullptr and 0.
    const std::uint8_t* GetDataFlash() const { return m_pbData.get(); }
    std::uint64_t GetDataSize() const { return m_dwDataSize; }

private:
    std::unique_ptr<std::uint8_t[]> m_pbProgram;
    std::uint64_t m_dwProgramSize = 0;
    std::unique_ptr<std::uint8_t[]> m_pbData;
    std::uint64_t m_dwDataSize = 0;
    std::uint32_t m_EInputFile = 0;
};

} // namespace flashwriter

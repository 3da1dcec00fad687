#include "targetfile/NSTargetFile.h"

#include "targetfile/BinaryImage.h"
#include "targetfile/PathExtension.h"

#include <sys/stat.h>
#include <utility>

namespace flashwriter {

namespace {

// Whether something that is not a directory stands at path. It need not be readable: that it is
// there and cannot be read is another failure than that it is not there.
bool fileExists(const std::string& path) {
    struct stat status {};
    return path.find('\0') == std::string::npos && ::stat(path.c_str(), &status) == 0 &&
           !S_ISDIR(status.st_mode);
}

} // namespace

ResultCode NSTargetFile::ReadFile(const std::string& path) {
    if (!fileExists(path)) {
        return RESULT_FILE_NOT_FOUND;
    }
    if (!hasPathExtension(path, "bin")) {
        m_EInputFile = 0;
        return RESULT_UNSUPPORTED_FORMAT;
    }
    m_EInputFile = 1;
    return readFromBinFile(path);
}

ResultCode NSTargetFile::readFromBinFile(const std::string& path) {
    std::unique_ptr<std::uint8_t[]> image;
    std::uint64_t size = 0;
    const ResultCode result = readBinaryImage(path, image, size);
    releaseData();
    m_pbProgram = std::move(image);
    m_dwProgramSize = size;
    return result;
}

void NSTargetFile::releaseData() {
    m_pbProgram.reset();
    m_pbData.reset();
    m_dwProgramSize = 0;
    m_dwDataSize = 0;
}

} // namespace flashwriter

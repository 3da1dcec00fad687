#include "targetfile/NSTargetFileForMot.h"

#include "sequence/context/DiagnosticLog.h"
#include "targetfile/BinaryImage.h"
#include "targetfile/MotLine.h"
#include "targetfile/MotPasses.h"
#include "targetfile/Utf8.h"

#include <cstring>
#include <new>
#include <utility>

namespace flashwriter {

namespace {

constexpr int erasedFlash = 0xFF;

std::unique_ptr<std::uint8_t[]> allocateErased(std::uint64_t size) {
    std::unique_ptr<std::uint8_t[]> image(new (std::nothrow) std::uint8_t[size]);
    if (image) {
        std::memset(image.get(), erasedFlash, size);
    }
    return image;
}

} // namespace

ResultCode NSTargetFileForMot::ReadFile(const std::string& path) {
    releaseData();
    const ResultCode measured = MotFileSize(path);
    if (measured != RESULT_OK) {
        return measured;
    }
    if (!allocateImages()) {
        releaseData();
        return RESULT_FILE_READ_FAILED;
    }
    const ResultCode filled =
        fillMotImages(path, {m_pbProgram.get(), m_dwProgramSize, m_pbData.get(), m_dwDataSize});
    if (filled == RESULT_FILE_READ_FAILED) {
        releaseData();
    }
    return filled;
}

ResultCode NSTargetFileForMot::MotFileSize(const std::string& path) {
    MotExtents extents;
    const ResultCode result = measureMotFile(path, extents);
    if (result == RESULT_FILE_READ_FAILED) {
        return result;
    }
    m_dwProgramSize = extents.program;
    m_dwDataSize = extents.data;
    diagnosticLog("%lu,%lu", static_cast<unsigned long>(m_dwProgramSize),
                  static_cast<unsigned long>(m_dwDataSize));
    const bool hasData = m_dwProgramSize != 0 || m_dwDataSize != 0;
    return hasData ? result : RESULT_UNSUPPORTED_FORMAT;
}

std::uint32_t NSTargetFileForMot::ascii2hex(std::string_view line, std::int32_t startIndex,
                                            std::int32_t Length) {
    if (startIndex < 0 || Length < 0) {
        return 0;
    }
    const auto* text = reinterpret_cast<const std::uint8_t*>(line.data());
    return MotLine(text, line.size(), isAscii(text, line.size()))
        .hex(static_cast<std::size_t>(startIndex), static_cast<std::size_t>(Length));
}

ResultCode NSTargetFileForMot::readFromBinFile(const std::string& path) {
    std::unique_ptr<std::uint8_t[]> image;
    std::uint64_t size = 0;
    const ResultCode result = readBinaryImage(path, image, size);
    releaseData();
    m_pbProgram = std::move(image);
    m_dwProgramSize = size;
    return result;
}

void NSTargetFileForMot::releaseData() {
    m_pbProgram.reset();
    m_pbData.reset();
    m_dwProgramSize = 0;
    m_dwDataSize = 0;
}

// Both images are there or none, also when one of them is empty.
bool NSTargetFileForMot::allocateImages() {
    m_pbProgram = allocateErased(m_dwProgramSize);
    m_pbData = allocateErased(keptOfDataImage(m_dwDataSize));
    return m_pbProgram != nullptr && m_pbData != nullptr;
}

} // namespace flashwriter

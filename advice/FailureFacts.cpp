#include "advice/FailureFacts.h"

#include "serial/PortList.h"
#include "targetfile/NSTargetFileForMot.h"

namespace flashwriter {

namespace {

std::uint64_t codeFlashSize(const _SILICONSIGNATURE& signature) {
    const auto& end = signature.CodeEndAddress;
    const std::uint64_t last =
        std::uint64_t{end[0]} | (std::uint64_t{end[1]} << 8U) | (std::uint64_t{end[2]} << 16U);
    return last == 0 ? 0 : last + 1;
}

// An S-record file has to be read for it, which only a failure that needs the number is worth.
std::uint64_t codeSize(const std::string& path, const FileFacts& file, ResultCode result) {
    if (result != RESULT_CODE_FLASH_SIZE_ERROR || file.state != FileState::Readable) {
        return 0;
    }
    if (file.kind != ImageKind::Mot) {
        return file.size;
    }
    NSTargetFileForMot image;
    return image.MotFileSize(path) == RESULT_OK ? image.GetProgramMemorySize() : 0;
}

// Likewise.
int readErrorOf(const std::string& path, const FileFacts& file, ResultCode result) {
    const bool isNeeded = result == RESULT_FILE_READ_FAILED && file.state == FileState::Readable;
    return isNeeded ? readError(path) : 0;
}

} // namespace

FailureFacts failureFacts(const _CONTEXTINFO& context) {
    FailureFacts facts = portFailureFacts(context.PortName);
    facts.speedIndex = context.BaudRate;
    facts.filePath = context.TargetFileInfo.FilePath;
    facts.file = fileFacts(facts.filePath);
    const ResultCode result = context.pResultInfo->Result;
    facts.readError = readErrorOf(facts.filePath, facts.file, result);
    facts.codeSize = codeSize(facts.filePath, facts.file, result);
    facts.codeFlashSize = codeFlashSize(context.SiliconSignature);
    return facts;
}

FailureFacts portFailureFacts(const std::string& portPath) {
    FailureFacts facts;
    facts.portPath = portPath;
    facts.port = portFacts(portPath);
    facts.ports = portList();
    return facts;
}

} // namespace flashwriter

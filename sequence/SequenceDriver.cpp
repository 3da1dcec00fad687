#include "sequence/SequenceDriver.h"

#include "sequence/FlashGeometry.h"
#include "sequence/NSSequenceProcessor.h"
#include "sequence/NSSequenceProcessorForMot.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/ResultText.h"
#include "sequence/context/Shelter.h"

#include <chrono>
#include <cstring>
#include <thread>
#include <utility>

namespace flashwriter {

namespace {

constexpr std::uint64_t READING_FILE = 100;
constexpr std::uint64_t ENTERING_MODE = 101;
constexpr std::uint64_t ERASING = 102;
constexpr std::uint64_t WRITING = 103;

constexpr std::uint8_t VOLTAGE = 0x21;
constexpr bool CODE_FLASH = true;

constexpr int CLOSING_ATTEMPTS = 50;
constexpr std::chrono::milliseconds CLOSING_PAUSE{100};

std::uint64_t addressOf(const std::uint8_t (&bytes)[3]) {
    return DeviceQueries::makeAddress(bytes[0], bytes[1], bytes[2]);
}

} // namespace

template <class TargetFile, class Delegate>
SequenceDriver<TargetFile, Delegate>::SequenceDriver(MainQueue mainQueue)
    : CommandLink(m_Cmd, m_ComPort, m_Wait, m_ContextInfo),
      DeviceQueries(static_cast<CommandLink&>(*this)),
      ModeEntry(static_cast<CommandLink&>(*this), static_cast<DeviceQueries&>(*this)),
      BlockExchanges(static_cast<CommandLink&>(*this)),
      ProgrammingExchange(static_cast<CommandLink&>(*this), m_Progress),
      ChecksumExchange(static_cast<CommandLink&>(*this)), m_mainQueue(std::move(mainQueue)) {
    initialize();
}

// A codec without buffers refuses every frame, so a failure shows in the first exchange.
template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::initialize() {
    return m_Cmd.Initialize();
}

template <class TargetFile, class Delegate>
ResultCode
SequenceDriver<TargetFile, Delegate>::start(_CONTEXTINFO context,
                                            std::shared_ptr<ProgressWindow> porgressWindw) {
    m_NotifyProgress = std::move(porgressWindw);
    m_ContextInfo = context;
    return programming();
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::programming() {
    m_Progress = {};
    m_invertDtr = false;
    m_ContextInfo.ComRetryMax = 5;
    m_ContextInfo.ReceiveTimeout = 200;
    m_ContextInfo.RetryWaitTime = 100;
    m_ContextInfo.SendWait = 1;

    ResultCode result = RESULT_INIT_FAILED;
    sheltered("stage", [&] { result = runStages(); });
    finish(result);
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::runStages() {
    for (const auto stage :
         {&SequenceDriver::openPort, &SequenceDriver::enterProgrammingMode,
          &SequenceDriver::readImage, &SequenceDriver::checkImage, &SequenceDriver::eraseBlocks,
          &SequenceDriver::programImage, &SequenceDriver::compareChecksums}) {
        const ResultCode result = (this->*stage)();
        if (result != RESULT_OK) {
            return result;
        }
    }
    return RESULT_OK;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::openPort() {
    beginStage(ENTERING_MODE, 0.0);
    report();
    // A name without an end is none. The transport is opened all the same, on nothing: one that
    // never was would take descriptor 0 for its own when the write ends.
    const auto& name = m_ContextInfo.PortName;
    const bool hasEnd = std::memchr(name, '\0', sizeof name) != nullptr;
    const ResultCode result = m_ComPort.Open(hasEnd ? name : "");
    while (result == RESULT_OK && !m_ComPort.IsReading()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::enterProgrammingMode() {
    diagnosticLog("## Programming Mode");
    addLog("## Programming Mode\n");
    beginStage(ENTERING_MODE, 5.0);
    ResultCode result = programingMode(m_ContextInfo.BaudRate, VOLTAGE, m_invertDtr);
    if (result == RESULT_MODE_ENTRY_TIMEOUT) {
        m_invertDtr = true;
        result = programingMode(m_ContextInfo.BaudRate, VOLTAGE, m_invertDtr);
    }
    advance(5);
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::readImage() {
    beginStage(READING_FILE, 5.0);
    report();
    ResultCode result = RESULT_FILE_READ_FAILED;
    sheltered("ReadFile", [&] {
        const auto& path = m_ContextInfo.TargetFileInfo.FilePath;
        result = m_TargetFile.ReadFile(std::string(path, strnlen(path, sizeof path)));
    });
    advance(5);
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::checkImage() {
    beginStage(ERASING, 10.0);
    report();
    const ResultCode result =
        checkSizeAndAddressRange(CODE_FLASH_START, m_TargetFile.GetProgramMemorySize(),
                                 DATA_FLASH_START, m_TargetFile.GetDataSize());
    if (result == RESULT_OK && m_TargetFile.GetDataSize() != 0) {
        // Data flash is never written. No true signature leaves room for it here, and one that
        // lies must not turn a write that leaves it out into a success.
        return RESULT_DATA_FLASH_SIZE_ERROR;
    }
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::eraseBlocks() {
    const std::uint64_t size = m_TargetFile.GetProgramMemorySize();
    const std::uint64_t blocks = blockCount();
    m_Progress.Incremental = m_Progress.Share / static_cast<double>(blocks);
    diagnosticLog("StartAddress = 0x%08X:EndAddress = 0x%08X:Size = %u:BlockCount = %u:"
                  "RemainSize = %u",
                  0U, static_cast<unsigned>(endAddress()), static_cast<unsigned>(size),
                  static_cast<unsigned>(blocks), static_cast<unsigned>(size % BLOCK_SIZE));
    addLog("## Block Blank Check & Erace...");
    ResultCode result = RESULT_OK;
    for (std::uint64_t i = 1; i <= blocks && result == RESULT_OK; ++i) {
        m_Progress.CurrentProgress =
            m_Progress.InitProgress +
            static_cast<std::uint64_t>(static_cast<double>(i) * m_Progress.Incremental);
        report();
        result = eraseUnlessBlank((i - 1) * BLOCK_SIZE);
    }
    addLog(getResultText(static_cast<std::int64_t>(result)));
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::eraseUnlessBlank(std::uint64_t blockAddress) {
    diagnosticLog("## Block Blank Check");
    const ResultCode result = comBlockBlankCheckProc(blockAddress, CODE_FLASH);
    if (result != RESULT_NOT_BLANK) {
        return result;
    }
    diagnosticLog("## Block Erace");
    return comBlockEraseProc(blockAddress, CODE_FLASH);
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::programImage() {
    beginStage(WRITING, 80.0);
    report();
    diagnosticLog("## Programming");
    addLog("## Programming...");
    const ResultCode result =
        comProgrammingProc(CODE_FLASH_START, endAddress(), m_TargetFile.GetProgramMemory(),
                           m_TargetFile.GetProgramMemorySize(), CODE_FLASH);
    diagnosticLog("## END Programming");
    addLog(getResultText(static_cast<std::int64_t>(result)));
    return result;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::compareChecksums() {
    std::uint32_t checksum = 0;
    getChecksum(m_TargetFile.GetProgramMemory(), m_TargetFile.GetProgramMemorySize(), checksum);
    std::uint8_t ck1 = 0;
    std::uint8_t ck2 = 0;
    const ResultCode result = comChecksum(CODE_FLASH_START, endAddress(), ck1, ck2, CODE_FLASH);
    if (result != RESULT_OK) {
        return result;
    }
    const bool same = ck1 == static_cast<std::uint8_t>(checksum) &&
                      ck2 == static_cast<std::uint8_t>(checksum >> 8);
    return same ? RESULT_OK : RESULT_CHECKSUM_MISMATCH;
}

// Whatever happened: the target goes back into reset, the port is closed, everybody is told.
template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::finish(ResultCode result) {
    diagnosticLog("## Reset before shutdown");
    if (m_invertDtr) {
        m_ComPort.ClearDtr();
    } else {
        m_ComPort.SetDtr();
    }
    diagnosticLog("## Close");
    m_ComPort.Close();
    m_ContextInfo.pResultInfo->Result = result;
    m_ContextInfo.pResultInfo->ComInfo = m_ContextInfo.ComInfo;
    sheltered("setResult", [this] { m_NotifyProgress->setResult(m_ContextInfo); });
    diagnosticLog("## Send close message");
    queueClosing();
    addLog(result == RESULT_OK ? "## Write Complete" : "## Write Failed");
    diagnosticLog("0x%08lX", static_cast<unsigned long>(result));
}

// Without this task a window would wait for ever. The thread has nothing else to do any more, so it
// tries again for a few seconds: others give memory back.
template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::queueClosing() {
    const auto queue = [this] {
        m_mainQueue(
            [self = this->shared_from_this(), window = m_NotifyProgress] { window->close(); });
    };
    for (int left = CLOSING_ATTEMPTS; !sheltered("close", queue) && left > 1; --left) {
        std::this_thread::sleep_for(CLOSING_PAUSE);
    }
}

template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::UpdateProgress(std::uint64_t step,
                                                          std::uint64_t percentage) {
    sheltered("UpdateProgress", [&] {
        m_NotifyProgress->UpdateProgress(static_cast<std::int32_t>(step),
                                         static_cast<std::int32_t>(percentage));
    });
}

template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::addLog(std::string_view text) {
    if (_delegate == nullptr) {
        return;
    }
    sheltered("addLog", [&] {
        m_mainQueue([self = this->shared_from_this(), line = std::string(text)] {
            if (Delegate* const delegate = self->_delegate) {
                delegate->delegateAddLog(line);
            }
        });
    });
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::checkSizeAndAddressRange(
    std::uint64_t programStartAddress, std::uint64_t programSize, std::uint64_t dataStartAddress,
    std::uint64_t dataSize) const {
    const _SILICONSIGNATURE& signature = m_ContextInfo.SiliconSignature;
    const std::uint64_t codeFlashSize = addressOf(signature.CodeEndAddress) + 1;
    const std::uint64_t dataEnd = addressOf(signature.DataEndAddress);
    const std::uint64_t dataFlashSize = dataEnd == 0 ? 0 : dataEnd - (DATA_FLASH_START - 1);
    if (codeFlashSize < programSize) {
        return RESULT_CODE_FLASH_SIZE_ERROR;
    }
    if (programStartAddress != CODE_FLASH_START && programStartAddress % BLOCK_SIZE == 0) {
        return RESULT_CODE_FLASH_ADDRESS_ERROR;
    }
    if (dataFlashSize < dataSize) {
        return RESULT_DATA_FLASH_SIZE_ERROR;
    }
    if (dataStartAddress > DATA_FLASH_START && dataStartAddress % BLOCK_SIZE == 0) {
        return RESULT_DATA_FLASH_ADDRESS_ERROR;
    }
    return RESULT_OK;
}

template <class TargetFile, class Delegate>
ResultCode SequenceDriver<TargetFile, Delegate>::getChecksum(const std::uint8_t* bytes,
                                                             std::uint64_t size,
                                                             std::uint32_t& checksum) {
    checksum = 0;
    for (std::uint64_t i = 0; i < size; ++i) {
        checksum -= bytes[i];
    }
    if (size % BLOCK_SIZE != 0) {
        checksum -= static_cast<std::uint32_t>(ERASED * (BLOCK_SIZE - size % BLOCK_SIZE));
    }
    return RESULT_OK;
}

template <class TargetFile, class Delegate>
std::string SequenceDriver<TargetFile, Delegate>::getResultText(std::int64_t code) {
    return flashwriter::getResultText(code);
}

template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::beginStage(std::uint64_t step, double share) {
    m_Progress.Step = step;
    m_Progress.Share = share;
    m_Progress.InitProgress = m_Progress.CurrentProgress;
}

template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::report() {
    UpdateProgress(m_Progress.Step, m_Progress.CurrentProgress);
}

template <class TargetFile, class Delegate>
void SequenceDriver<TargetFile, Delegate>::advance(std::uint64_t percentagePoints) {
    m_Progress.CurrentProgress += percentagePoints;
    report();
}

template <class TargetFile, class Delegate>
std::uint64_t SequenceDriver<TargetFile, Delegate>::blockCount() const {
    return blocksOf(m_TargetFile.GetProgramMemorySize());
}

// Inclusive; an image of no bytes has none, and the value wraps to all ones.
template <class TargetFile, class Delegate>
std::uint64_t SequenceDriver<TargetFile, Delegate>::endAddress() const {
    return blockCount() * BLOCK_SIZE - 1;
}

template class SequenceDriver<NSTargetFile, NSSequenceProcessorDelegate>;
template class SequenceDriver<NSTargetFileForMot, NSSequenceProcessorForMotDelegate>;

} // namespace flashwriter

#pragma once

#include "protocol/NSCommandProcessor.h"
#include "sequence/BlockExchanges.h"
#include "sequence/ChecksumExchange.h"
#include "sequence/CommandLink.h"
#include "sequence/DeviceQueries.h"
#include "sequence/MainQueue.h"
#include "sequence/ModeEntry.h"
#include "sequence/ProgrammingExchange.h"
#include "sequence/ProgressWindow.h"
#include "sequence/context/ContextInfo.h"
#include "serial/NSSerialPortProcessor.h"
#include "timing/NSWaitingTimeCalculator.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace flashwriter {

// One whole write of an image into a target, from opening the port to closing it: what
// NSSequenceProcessor and NSSequenceProcessorForMot have in common, which is all but the reader of
// the image and the type of the delegate.
//
// A driver serves any number of writes, one at a time. It must be owned by a std::shared_ptr: the
// tasks that it hands to the main queue keep it alive until they have run.
template <class TargetFile, class Delegate>
class SequenceDriver : public std::enable_shared_from_this<SequenceDriver<TargetFile, Delegate>>,
                       public CommandLink,
                       public DeviceQueries,
                       public ModeEntry,
                       public BlockExchanges,
                       public ProgrammingExchange,
                       public ChecksumExchange {
public:
    explicit SequenceDriver(MainQueue mainQueue);

    // Runs a write on the calling thread and blocks it for the whole length. The context brings
    // speed, port, file and where the outcome goes (pResultInfo, not null); its four timing fields
    // are overwritten. The progress window (not null) is told every stage, then the outcome, then,
    // on the main thread, to close, whatever happens; a main queue that has no memory for that task
    // is asked again for five seconds. Returns the result code that is also in
    // pResultInfo: the first that any stage returned, each as it is.
    ResultCode start(_CONTEXTINFO context, std::shared_ptr<ProgressWindow> porgressWindw);

    // The write that start() prepared, and its result; only start() calls it.
    ResultCode programming();

    // Hands both values on to the progress window, on the calling thread.
    void UpdateProgress(std::uint64_t step, std::uint64_t percentage) override;

    // Hands a text for the log view to the delegate, on the main thread; dropped when there is
    // none, or no memory for it. Texts carry their own line breaks.
    void addLog(std::string_view text);

    // Whether code and data of these sizes in bytes fit the flash of the signature. Tested in this
    // order: too much code (RESULT_CODE_FLASH_SIZE_ERROR), a code start that is a multiple of 1024
    // but not 0 (RESULT_CODE_FLASH_ADDRESS_ERROR), too much data (RESULT_DATA_FLASH_SIZE_ERROR), a
    // data start above 0xF1000 that is a multiple of 1024 (RESULT_DATA_FLASH_ADDRESS_ERROR).
    ResultCode checkSizeAndAddressRange(std::uint64_t programStartAddress,
                                        std::uint64_t programSize, std::uint64_t dataStartAddress,
                                        std::uint64_t dataSize) const;

    // The two's complement of the sum of size bytes, filled up with 0xFF to whole blocks of 1024.
    // Always RESULT_OK.
    static ResultCode getChecksum(const std::uint8_t* bytes, std::uint64_t size,
                                  std::uint32_t& checksum);

    // See ResultText.h.
    static std::string getResultText(std::int64_t code);

    // Borrowed; may be set at any time, and must outlive the texts that are still on their way.
    Delegate* delegate() const { return _delegate; }
    void setDelegate(Delegate* delegate) { _delegate = delegate; }

private:
    ResultCode initialize();
    ResultCode runStages();

    // The stages of a write in their order; the first that fails ends it.
    ResultCode openPort();
    ResultCode enterProgrammingMode();
    ResultCode readImage();
    ResultCode checkImage();
    ResultCode eraseBlocks();
    ResultCode programImage();
    ResultCode compareChecksums();
    void finish(ResultCode result);

    ResultCode eraseUnlessBlank(std::uint64_t blockAddress);
    void queueClosing();
    void beginStage(std::uint64_t step, double share);
    void report();
    void advance(std::uint64_t percentagePoints);
    std::uint64_t blockCount() const;
    std::uint64_t endAddress() const;

    NSCommandProcessor m_Cmd;
    std::shared_ptr<ProgressWindow> m_NotifyProgress;
    _CONTEXTINFO m_ContextInfo{};
    NSSerialPortProcessor m_ComPort;
    TargetFile m_TargetFile;
    NSWaitingTimeCalculator m_Wait;
    _PROGRESSINIFO m_Progress{};
    std::atomic<Delegate*> _delegate{nullptr};

    MainQueue m_mainQueue;
    bool m_invertDtr = false; // the target answered only with DTR the other way round
};

} // namespace flashwriter

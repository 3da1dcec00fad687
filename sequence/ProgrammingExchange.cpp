#include "sequence/ProgrammingExchange.h"

#include "sequence/DataFrameExchange.h"
#include "sequence/DeviceQueries.h"
#include "sequence/FlashGeometry.h"
#include "sequence/context/DiagnosticLog.h"

#include <algorithm>
#include <memory>
#include <new>

namespace flashwriter {

namespace {

constexpr std::uint64_t FRAMES_PER_BLOCK = BLOCK_SIZE / DATA_FRAME_SIZE;

// The last block of an image that does not fill it, completed with the erased value; empty when
// there is no memory.
std::unique_ptr<std::uint8_t[]> makeFinalBlock(const std::uint8_t* bytes, std::uint64_t count) {
    std::unique_ptr<std::uint8_t[]> block(new (std::nothrow) std::uint8_t[BLOCK_SIZE]);
    if (block) {
        std::fill_n(block.get(), BLOCK_SIZE, ERASED);
        std::copy_n(bytes, count, block.get());
        diagnosticLog("pbFinalFrame = 0x%08X", block[0]);
    }
    return block;
}

} // namespace

ResultCode ProgrammingExchange::comProgrammingProc(std::uint64_t startAddress,
                                                   std::uint64_t endAddress,
                                                   const std::uint8_t* data,
                                                   std::uint64_t dataLength, bool codeFlash) {
    m_link.initCommandInfo(COM_PROGRAMMING);
    const std::uint64_t remainder = dataLength % BLOCK_SIZE;
    const std::uint64_t blocks = blocksOf(dataLength);
    m_progress.Incremental = m_progress.Share / static_cast<double>(blocks);

    const NSWaitingTimeCalculator& waits = m_link.waitingTime();
    DataFrameExchange frames(m_link, waits.GetProgrammingTds5(codeFlash),
                             waits.GetProgrammingTss5(startAddress, endAddress, blocks, codeFlash));
    diagnosticLog("dwStartAddress = 0x%08lX", static_cast<unsigned long>(startAddress));
    diagnosticLog("dwEndAddress   = 0x%08lX", static_cast<unsigned long>(endAddress));
    const ResultCode commanded = sendProgrammingCommand(
        AddressBytes(startAddress), AddressBytes(endAddress), waits.GetProgrammingTcs5(codeFlash));

    diagnosticLog("dwDataLength = %ld", static_cast<long>(dataLength));
    diagnosticLog("pbData       = 0x%08X", dataLength != 0 ? data[0] : 0U);
    std::unique_ptr<std::uint8_t[]> finalBlock;
    if (remainder != 0) {
        finalBlock = makeFinalBlock(data + (blocks - 1) * BLOCK_SIZE, remainder);
    }
    diagnosticLog("fFraction = %s", trueOrFalse(remainder != 0));
    if (remainder != 0 && !finalBlock) {
        return RESULT_INIT_FAILED;
    }
    if (commanded != RESULT_OK) {
        return commanded;
    }
    diagnosticLog("dwBlockCount = %ld", static_cast<long>(blocks));
    diagnosticLog("dwRemainByte = %ld", static_cast<long>(remainder));

    ResultCode result = RESULT_OK;
    for (std::uint64_t i = 0; i < blocks && result == RESULT_OK; ++i) {
        const bool lastBlock = i + 1 == blocks;
        const std::uint8_t* block =
            lastBlock && finalBlock ? finalBlock.get() : data + i * BLOCK_SIZE;
        result = sendBlock(frames, block, i, lastBlock);
    }
    return result;
}

ResultCode ProgrammingExchange::sendProgrammingCommand(const AddressBytes& start,
                                                       const AddressBytes& end,
                                                       std::uint64_t timeout) {
    std::uint64_t frameLength = 0;
    ResultCode result = m_link.sendCommand(
        [&](std::uint64_t& length) {
            return m_link.cmd().MakeProgrammingCommand(start.low, start.mid, start.high, end.low,
                                                       end.mid, end.high, length);
        },
        timeout, frameLength);
    if (result == RESULT_OK) {
        result = m_link.receiveStatus(frameLength, &NSCommandProcessor::CheckProgrammingStatus);
    }
    if (result != RESULT_OK) {
        return result;
    }
    diagnosticLog("Programming@ST1 = 0x%02X", m_link.contextInfo().ComInfo.ST1);
    return m_link.commandVerdict();
}

ResultCode ProgrammingExchange::sendBlock(DataFrameExchange& frames, const std::uint8_t* block,
                                          std::uint64_t index, bool lastBlock) {
    m_progress.CurrentProgress =
        static_cast<std::uint64_t>(static_cast<double>(index + 1) * m_progress.Incremental) +
        m_progress.InitProgress;
    UpdateProgress(m_progress.Step, m_progress.CurrentProgress);
    ResultCode result = RESULT_OK;
    for (std::uint64_t j = 0; j < FRAMES_PER_BLOCK && result == RESULT_OK; ++j) {
        const bool finalFrame = lastBlock && j + 1 == FRAMES_PER_BLOCK;
        result = frames.send({index, j, block + j * DATA_FRAME_SIZE, finalFrame});
    }
    return result;
}

} // namespace flashwriter

#include "sequence/BlockExchanges.h"

#include "sequence/DeviceQueries.h"
#include "sequence/FlashGeometry.h"
#include "sequence/context/DiagnosticLog.h"

namespace flashwriter {

namespace {

constexpr std::uint8_t BLANK_CHECK_D01 = 0;

// The time-out is asked for with the addresses' bytes in reverse order, as makeAddress rebuilds
// them from what splitAddress returns. Of the addresses it only counts the 256 KiB regions between
// them.
std::uint64_t reversed(const AddressBytes& bytes) {
    return DeviceQueries::makeAddress(bytes.high, bytes.mid, bytes.low);
}

} // namespace

ResultCode BlockExchanges::comBlockBlankCheckProc(std::uint64_t startAddress, bool codeFlash) {
    m_link.initCommandInfo(COM_BLOCK_BLANK_CHECK);
    const std::uint64_t timeout = m_link.waitingTime().GetBlockBlankCheckTcs4(
        reversed(AddressBytes(startAddress)), reversed(AddressBytes(startAddress + BLOCK_SIZE - 1)),
        1, codeFlash);
    std::uint64_t frameLength = 0;
    ResultCode result = RESULT_OK;
    if (m_link.contextInfo().ComRetryMax != 0) {
        result = sendOnce(startAddress, timeout, frameLength);
    }
    if (result == RESULT_OK) {
        result = m_link.receiveStatus(frameLength, &NSCommandProcessor::CheckBlockBlankCheckStatus);
    }
    if (result == RESULT_OK && m_link.contextInfo().ComInfo.ST1 == NOT_BLANK) {
        return RESULT_NOT_BLANK;
    }
    return result == RESULT_OK ? m_link.commandVerdict() : result;
}

ResultCode BlockExchanges::sendOnce(std::uint64_t startAddress, std::uint64_t timeout,
                                    std::uint64_t& frameLength) {
    const AddressBytes start(startAddress);
    const AddressBytes end(startAddress + BLOCK_SIZE - 1);
    m_link.contextInfo().ComInfo.Retry = 0;
    CommandLink::wait(m_link.contextInfo().SendWait);
    std::uint64_t length = 0;
    ResultCode result = m_link.cmd().MakeBlockBlankCheckCommand(
        start.low, start.mid, start.high, end.low, end.mid, end.high, BLANK_CHECK_D01, length);
    if (result == RESULT_OK) {
        result = m_link.send(length);
    }
    return result == RESULT_OK ? m_link.waitStatusFrames(frameLength, timeout) : result;
}

ResultCode BlockExchanges::comBlockEraseProc(std::uint64_t startAddress, bool codeFlash) {
    m_link.initCommandInfo(COM_BLOCK_ERASE);
    const AddressBytes start(startAddress);
    diagnosticLog("dwStartAddress = 0x%08lX", static_cast<unsigned long>(startAddress));
    return m_link.exchange(
        [&](std::uint64_t& length) {
            return m_link.cmd().MakeBlockEraseCommand(start.low, start.mid, start.high, length);
        },
        m_link.waitingTime().GetBlockEraseTcs3(codeFlash), &NSCommandProcessor::CheckResetStatus);
}

} // namespace flashwriter

#include "sequence/ChecksumExchange.h"

#include "sequence/DeviceQueries.h"
#include "sequence/FlashGeometry.h"
#include "sequence/context/DiagnosticLog.h"

namespace flashwriter {

std::uint64_t ChecksumExchange::blocksBetween(std::uint64_t startAddress,
                                              std::uint64_t endAddress) {
    return blocksOf(endAddress - startAddress);
}

ResultCode ChecksumExchange::comChecksum(std::uint64_t startAddress, std::uint64_t endAddress,
                                         std::uint8_t& ck1, std::uint8_t& ck2, bool codeFlash) {
    m_link.initCommandInfo(COM_CHECKSUM);
    const AddressBytes start(startAddress);
    const AddressBytes end(endAddress);
    std::uint64_t frameLength = 0;
    ResultCode result = m_link.sendCommand(
        [&](std::uint64_t& length) {
            return m_link.cmd().MakeChecksumCommand(start.low, start.mid, start.high, end.low,
                                                    end.mid, end.high, length);
        },
        m_link.waitingTime().GetCheckSumTcs10(codeFlash), frameLength);
    if (result == RESULT_OK) {
        result = receiveCommandStatus(frameLength);
    }
    if (result == RESULT_OK) {
        const std::uint64_t blocks = blocksBetween(startAddress, endAddress);
        result = m_link.awaitFrame(DATA_STATUS_FRAME_SIZE,
                                   m_link.waitingTime().GetCheckSumTsd10(blocks));
    }
    return result == RESULT_OK ? m_link.cmd().CheckChecksumDataFrams(ck1, ck2) : result;
}

ResultCode ChecksumExchange::receiveCommandStatus(std::uint64_t frameLength) {
    NSCommandProcessor& cmd = m_link.cmd();
    _COMMANDINFO& info = m_link.contextInfo().ComInfo;
    if (m_link.receive(frameLength) != STATUS_FRAME_SIZE) {
        return RESULT_RECEIVE_TIMEOUT;
    }
    const ResultCode result = cmd.CheckVerifyStatus(info.ST1);
    diagnosticLog("dwRet = 0x%08lX", static_cast<unsigned long>(result));
    diagnosticLog("ST1   = 0x%02X", info.ST1);
    return result == RESULT_OK ? m_link.commandVerdict() : result;
}

} // namespace flashwriter

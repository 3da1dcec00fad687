#include "sequence/DataFrameExchange.h"

#include "sequence/context/DiagnosticLog.h"

namespace flashwriter {

ResultCode DataFrameExchange::send(const Frame& frame) {
    const _CONTEXTINFO& context = m_link.contextInfo();
    ResultCode result = RESULT_OK;
    for (std::uint64_t k = 0; k < context.ComRetryMax; ++k) {
        m_link.contextInfo().ComInfo.Retry = k;
        const Attempt outcome = attempt(frame);
        result = outcome.result;
        if (!outcome.again) {
            break;
        }
        if (k + 1 < context.ComRetryMax) {
            CommandLink::wait(context.RetryWaitTime);
        }
    }
    return result;
}

DataFrameExchange::Attempt DataFrameExchange::attempt(const Frame& frame) {
    logAttempt(frame);
    std::uint64_t frameLength = 0;
    ResultCode result = transmit(frame, frameLength);
    if (result != RESULT_OK) {
        return {result, true};
    }
    result = receiveStatus(frameLength);
    if (result != RESULT_OK || !frame.finalFrame) {
        return {result, false};
    }
    return awaitInternalVerify();
}

ResultCode DataFrameExchange::transmit(const Frame& frame, std::uint64_t& frameLength) {
    std::uint64_t length = 0;
    ResultCode result = m_link.cmd().MakeProgrammingDataFrame(frame.bytes, DATA_FRAME_SIZE,
                                                              frame.finalFrame ? 1 : 0, length);
    if (result != RESULT_OK) {
        return result;
    }
    CommandLink::wait(m_link.contextInfo().SendWait);
    result = m_link.send(length);
    if (result != RESULT_OK) {
        return result;
    }
    result = m_link.waitStatusFrames(frameLength, m_frameTimeout);
    diagnosticLog("wait response send data frame (dwLength = %lu)(tDS5=%lu)-> dwRet = 0x%08lX",
                  static_cast<unsigned long>(frameLength),
                  static_cast<unsigned long>(m_frameTimeout), static_cast<unsigned long>(result));
    return result;
}

ResultCode DataFrameExchange::receiveStatus(std::uint64_t frameLength) {
    const std::uint64_t received = m_link.receive(frameLength);
    diagnosticLog("wait send data frame -> dwRecvLen = %lu", static_cast<unsigned long>(received));
    switch (received) {
    case STATUS_FRAME_SIZE:
        return receiveShortStatus();
    case DATA_STATUS_FRAME_SIZE:
        return receiveLongStatus();
    default:
        return RESULT_RECEIVE_TIMEOUT;
    }
}

ResultCode DataFrameExchange::receiveShortStatus() {
    std::uint8_t& DST1 = m_link.contextInfo().ComInfo.DST1;
    const ResultCode result = m_link.cmd().CheckProgrammingDataFrameStatus(DST1);
    if (result != RESULT_OK) {
        return result;
    }
    diagnosticLog("DST1=0x%02X", DST1);
    return DST1 == ACK ? RESULT_OK : RESULT_DATA_FRAME_ABORT;
}

ResultCode DataFrameExchange::receiveLongStatus() {
    std::uint8_t& DST1 = m_link.contextInfo().ComInfo.DST1;
    std::uint8_t& DST2 = m_link.contextInfo().ComInfo.DST2;
    const ResultCode result = m_link.cmd().CheckProgrammingDataFrameStatus(DST1, DST2);
    diagnosticLog("dwRet = 0x%08lX", static_cast<unsigned long>(result));
    if (result != RESULT_OK) {
        return result;
    }
    diagnosticLog("DST1 = 0x%02X\nDST2 = 0x%02X", DST1, DST2);
    return DST1 == ACK && DST2 == ACK ? RESULT_OK : RESULT_DATA_FRAME_ABORT;
}

// Only a verify status that does not come leads to the final frame being sent again; one that has
// come, in whatever form, ends the transfer.
DataFrameExchange::Attempt DataFrameExchange::awaitInternalVerify() {
    std::uint8_t& DST1 = m_link.contextInfo().ComInfo.DST1;
    std::uint64_t frameLength = 0;
    ResultCode result = m_link.waitStatusFrames(frameLength, m_verifyTimeout);
    if (result != RESULT_OK) {
        return {result, true};
    }
    if (m_link.receive(frameLength) != STATUS_FRAME_SIZE) {
        return {RESULT_RECEIVE_TIMEOUT, false};
    }
    result = m_link.cmd().CheckProgrammingDataFrameStatus(DST1);
    if (result != RESULT_OK) {
        return {result, false};
    }
    diagnosticLog("Internal Verify DST1=0x%02X", DST1);
    return {DST1 == ACK ? RESULT_OK : RESULT_DATA_FRAME_ABORT, false};
}

void DataFrameExchange::logAttempt(const Frame& frame) const {
    diagnosticLog("--");
    diagnosticLog("i           = %ld", static_cast<long>(frame.block));
    diagnosticLog("j           = %ld", static_cast<long>(frame.part));
    diagnosticLog("k(Retry)    = %ld", static_cast<long>(m_link.contextInfo().ComInfo.Retry));
    diagnosticLog("pbDataAddr  = 0x%08X", frame.bytes[0]);
    diagnosticLog("Length      = %d", static_cast<int>(DATA_FRAME_SIZE));
    diagnosticLog("fFinalFrame = %s", trueOrFalse(frame.finalFrame));
}

} // namespace flashwriter

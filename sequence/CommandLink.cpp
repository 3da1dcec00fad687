#include "sequence/CommandLink.h"

#include "serial/NSGetTime.h"

namespace flashwriter {

CommandLink::CommandLink(NSCommandProcessor& cmd, NSSerialPortProcessor& comPort,
                         const NSWaitingTimeCalculator& waitingTime, _CONTEXTINFO& contextInfo)
    : m_cmd(cmd), m_comPort(comPort), m_waitingTime(waitingTime), m_contextInfo(contextInfo) {}

void CommandLink::initCommandInfo(std::uint8_t command) {
    m_contextInfo.ComInfo = _COMMANDINFO{command, 0, 0, 0, 0};
}

void CommandLink::wait(std::uint64_t milliseconds) {
    const std::uint64_t start = NSGetTime::getTimeOfDay_msec();
    while (NSGetTime::getTimeOfDay_msec() - start <= milliseconds) {
    }
}

ResultCode CommandLink::waitStatusFrames(std::uint64_t& frameLength, std::uint64_t timeout) {
    frameLength = 0;
    const std::uint64_t start = NSGetTime::getTimeOfDay_msec();
    for (;;) {
        ResultCode result = RESULT_OK;
        const std::uint64_t waiting = m_comPort.GetReceiveDataLength();
        if (waiting >= 2) {
            std::uint8_t frameType = 0;
            std::uint64_t dataLength = 0;
            result = m_comPort.CheckDataFrame(frameType, dataLength);
            if (result == RESULT_OK && frameType == STX) {
                frameLength = dataLength + FRAME_OVERHEAD;
            }
        }
        if (NSGetTime::getTimeOfDay_msec() - start > timeout) {
            return RESULT_RECEIVE_TIMEOUT;
        }
        if (waiting > 0 && frameLength >= 1 && waiting >= frameLength) {
            return result;
        }
    }
}

ResultCode CommandLink::send(std::uint64_t frameLength) {
    return m_comPort.SendData(m_cmd.GetCommandFrames(), frameLength);
}

std::uint64_t CommandLink::receive(std::uint64_t frameLength) {
    return m_comPort.GetReceivedData(m_cmd.GetDataFrames(), FRAME_BUFFER_SIZE, frameLength);
}

ResultCode CommandLink::awaitFrame(std::uint64_t size, std::uint64_t timeout) {
    std::uint64_t frameLength = 0;
    const ResultCode result = waitStatusFrames(frameLength, timeout);
    if (result != RESULT_OK) {
        return result;
    }
    return receive(frameLength) == size ? RESULT_OK : RESULT_RECEIVE_TIMEOUT;
}

ResultCode CommandLink::receiveStatus(std::uint64_t frameLength, StatusCheck check) {
    if (receive(frameLength) != STATUS_FRAME_SIZE) {
        return RESULT_RECEIVE_TIMEOUT;
    }
    return (m_cmd.*check)(m_contextInfo.ComInfo.ST1);
}

ResultCode CommandLink::commandVerdict() const {
    return m_contextInfo.ComInfo.ST1 == ACK ? RESULT_OK : RESULT_COMMAND_FRAME_ABORT;
}

} // namespace flashwriter

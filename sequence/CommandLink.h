#pragma once

#include "protocol/NSCommandProcessor.h"
#include "sequence/context/ContextInfo.h"
#include "serial/NSSerialPortProcessor.h"
#include "timing/NSWaitingTimeCalculator.h"

#include <cstdint>

namespace flashwriter {

inline constexpr std::uint64_t STATUS_FRAME_SIZE = 5;      // ST1 alone
inline constexpr std::uint64_t DATA_STATUS_FRAME_SIZE = 6; // two bytes of data or status

// The link to a target in programming mode: the timing that every exchange uses, and the one
// pattern that all of them share - send, wait for the status, try again, read, check. What is
// special about an exchange stands with the exchange.
//
// Borrows the parts of the driver that it works on. All of it runs on the thread of the write,
// which its waits occupy fully: they are short, and a frame must follow its reply at once.
class CommandLink {
public:
    CommandLink(NSCommandProcessor& cmd, NSSerialPortProcessor& comPort,
                const NSWaitingTimeCalculator& waitingTime, _CONTEXTINFO& contextInfo);

    // Begins an exchange: notes its command code and clears the status bytes and the attempt.
    void initCommandInfo(std::uint8_t command);

    // Spins until more than this many milliseconds have passed.
    static void wait(std::uint64_t milliseconds);

    // Spins until the receive buffer holds a whole data frame; frameLength is then its size in
    // bytes, and 0 while no frame has begun. The frame is left in the buffer.
    // RESULT_RECEIVE_TIMEOUT after more than timeout milliseconds, also when the frame becomes
    // whole in the very pass that notices it.
    ResultCode waitStatusFrames(std::uint64_t& frameLength, std::uint64_t timeout);

    // Sends a command until a reply is there, ComRetryMax times at the most. build(length) builds
    // the frame, sent() is told of each one that went out, well or not. Only a receive time-out is
    // tried again; any other failure is returned at once. RESULT_OK also when every attempt timed
    // out: reading the reply then tells, for it may have come after all.
    template <class Build, class Sent>
    ResultCode sendCommand(const Build& build, std::uint64_t timeout, std::uint64_t& frameLength,
                           const Sent& sent);
    template <class Build>
    ResultCode sendCommand(const Build& build, std::uint64_t timeout, std::uint64_t& frameLength);

    // The whole pattern for a command that is answered with a status frame, up to its status byte:
    // the codes of sendCommand(), receiveStatus() and commandVerdict().
    using StatusCheck = ResultCode (NSCommandProcessor::*)(std::uint8_t&) const;
    template <class Build>
    ResultCode exchange(const Build& build, std::uint64_t timeout, StatusCheck check);

    // Sends the first frameLength bytes of the codec's transmit buffer. RESULT_SEND_FAILED.
    ResultCode send(std::uint64_t frameLength);

    // Takes a frame of frameLength bytes into the codec's receive buffer; the number of bytes
    // taken, which is 0 when it is not there.
    std::uint64_t receive(std::uint64_t frameLength);

    // Waits for a data frame and takes it; RESULT_RECEIVE_TIMEOUT when none comes, or one of
    // another size.
    ResultCode awaitFrame(std::uint64_t size, std::uint64_t timeout);

    // Takes the status frame of a command and checks it into ST1. RESULT_RECEIVE_TIMEOUT when it is
    // not there or of another size, else the code of the check.
    ResultCode receiveStatus(std::uint64_t frameLength, StatusCheck check);

    // The verdict of ST1: RESULT_OK for ACK, else RESULT_COMMAND_FRAME_ABORT.
    ResultCode commandVerdict() const;

    NSCommandProcessor& cmd() { return m_cmd; }
    NSSerialPortProcessor& comPort() { return m_comPort; }
    const NSWaitingTimeCalculator& waitingTime() const { return m_waitingTime; }
    _CONTEXTINFO& contextInfo() { return m_contextInfo; }

private:
    NSCommandProcessor& m_cmd;
    NSSerialPortProcessor& m_comPort;
    const NSWaitingTimeCalculator& m_waitingTime;
    _CONTEXTINFO& m_contextInfo;
};

template <class Build, class Sent>
ResultCode CommandLink::sendCommand(const Build& build, std::uint64_t timeout,
                                    std::uint64_t& frameLength, const Sent& sent) {
    frameLength = 0;
    for (std::uint64_t attempt = 0; attempt < m_contextInfo.ComRetryMax; ++attempt) {
        m_contextInfo.ComInfo.Retry = attempt;
        wait(m_contextInfo.SendWait);
        std::uint64_t length = 0;
        ResultCode result = build(length);
        if (result == RESULT_OK) {
            result = send(length);
            sent();
        }
        if (result == RESULT_OK) {
            result = waitStatusFrames(frameLength, timeout);
        }
        if (result != RESULT_RECEIVE_TIMEOUT) {
            return result;
        }
        wait(m_contextInfo.RetryWaitTime);
    }
    return RESULT_OK;
}

template <class Build>
ResultCode CommandLink::sendCommand(const Build& build, std::uint64_t timeout,
                                    std::uint64_t& frameLength) {
    return sendCommand(build, timeout, frameLength, [] {});
}

template <class Build>
ResultCode CommandLink::exchange(const Build& build, std::uint64_t timeout, StatusCheck check) {
    std::uint64_t frameLength = 0;
    ResultCode result = sendCommand(build, timeout, frameLength);
    if (result == RESULT_OK) {
        result = receiveStatus(frameLength, check);
    }
    return result == RESULT_OK ? commandVerdict() : result;
}

} // namespace flashwriter

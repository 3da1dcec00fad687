#include "sequence/ModeEntry.h"

#include "serial/NSGetTime.h"

#include <array>

namespace flashwriter {

namespace {

constexpr std::array<std::uint64_t, 4> SPEEDS{115200, 250000, 500000, 1000000};
static_assert(SPEEDS.size() == MAX_SPEED_INDEX + 1);

// The target listens for Baud Rate Set only this long after the release of reset.
constexpr std::uint64_t MODE_ENTRY_WINDOW = 100;

constexpr std::uint64_t STATUS_WITH_DATA_SIZE = 7;

} // namespace

ResultCode ModeEntry::programingMode(std::uint8_t baudRate, std::uint8_t voltage, bool InvertDTR) {
    if (baudRate > MAX_SPEED_INDEX) {
        return RESULT_PARAMETER_ERROR;
    }
    releaseReset(InvertDTR);
    constexpr std::uint8_t ZERO = 0x00;
    ResultCode result = m_link.comPort().SendData(&ZERO, 1);
    if (result == RESULT_OK) {
        result = comBaudRateSetProc(baudRate, voltage);
    }
    if (result == RESULT_OK && baudRate != 0) {
        result = m_link.comPort().ChangeBaudRate(SPEEDS.at(baudRate));
    }
    if (result == RESULT_OK) {
        result = comResetProc();
    }
    return result == RESULT_OK ? m_queries.comSiliconSignatureProc() : result;
}

// The reset pulse on DTR, which ends while BREAK still holds the line low: that is what tells the
// target to enter programming mode instead of running its program.
void ModeEntry::releaseReset(bool InvertDTR) {
    _CONTEXTINFO& context = m_link.contextInfo();
    NSSerialPortProcessor& comPort = m_link.comPort();
    driveDtr(!InvertDTR);
    comPort.SetBreak();
    CommandLink::wait(context.SendWait);
    comPort.ClearReceiveBuffer();
    driveDtr(InvertDTR);
    context.TransitionStartTime = NSGetTime::getTimeOfDay_msec();
    CommandLink::wait(context.SendWait);
    comPort.ClearBreak();
    CommandLink::wait(context.SendWait);
}

void ModeEntry::driveDtr(bool on) {
    if (on) {
        m_link.comPort().SetDtr();
    } else {
        m_link.comPort().ClearDtr();
    }
}

ResultCode ModeEntry::comBaudRateSetProc(std::uint8_t baudRate, std::uint8_t voltage) {
    _CONTEXTINFO& context = m_link.contextInfo();
    m_link.initCommandInfo(COM_BAUD_RATE_SET);
    std::uint64_t frameLength = 0;
    const ResultCode result = m_link.sendCommand(
        [&](std::uint64_t& length) {
            return m_link.cmd().MakeBaudRateCommand(baudRate, voltage, length);
        },
        context.ReceiveTimeout, frameLength,
        [&] { context.TransitionEndTime = NSGetTime::getTimeOfDay_msec(); });
    if (result != RESULT_OK) {
        return result;
    }
    if (context.TransitionEndTime - context.TransitionStartTime > MODE_ENTRY_WINDOW) {
        return RESULT_MODE_ENTRY_TIMEOUT;
    }
    const ResultCode received = receiveBaudRateStatus(frameLength);
    return received == RESULT_OK ? m_link.commandVerdict() : received;
}

ResultCode ModeEntry::receiveBaudRateStatus(std::uint64_t frameLength) {
    _CONTEXTINFO& context = m_link.contextInfo();
    switch (m_link.receive(frameLength)) {
    case STATUS_FRAME_SIZE:
        return m_link.cmd().CheckStatus(context.ComInfo.ST1);
    case STATUS_WITH_DATA_SIZE:
        return m_link.cmd().CheckBaudRateStatus(context.ComInfo.ST1, context.BaudRateStat.D01,
                                                context.BaudRateStat.D02);
    default:
        return RESULT_RECEIVE_TIMEOUT;
    }
}

ResultCode ModeEntry::comResetProc() {
    m_link.initCommandInfo(COM_RESET);
    return m_link.exchange(
        [this](std::uint64_t& length) { return m_link.cmd().MakeResetCommand(length); },
        m_link.waitingTime().GetResetTcs1(), &NSCommandProcessor::CheckResetStatus);
}

} // namespace flashwriter

// The serial monitor's question at which level of DTR the board answers.
#include "app/AppDelegate.h"
#include "protocol/NSCommandProcessor.h"
#include "sequence/context/DiagnosticLog.h"
#include "serial/NSGetTime.h"

namespace flashwriter {

namespace {

constexpr std::uint8_t PROBE_SPEED_INDEX = 0; // 115200 bits per second
constexpr std::uint8_t PROBE_VOLTAGE = 33;    // tenths of a volt
constexpr int ATTEMPTS = 5;
constexpr std::uint64_t STATUS_TIMEOUT = 200; // milliseconds, as are those below
constexpr std::uint64_t PAUSE = 1;
constexpr std::uint64_t RETRY_PAUSE = 100;
constexpr std::uint64_t MODE_ENTRY_WINDOW = 100;

} // namespace

void AppDelegate::DtrCheck() {
    m_isInvertDTR = probe() == RESULT_OK;
    diagnosticLog(m_isInvertDTR ? "DTR=true" : "DTR=false");
    MonitorPortClose();
}

// The code of whatever kept the board from answering in time.
ResultCode AppDelegate::probe() {
    if (isPortMissing()) {
        return RESULT_PORT_NOT_SELECTED;
    }
    char name[260] = {};
    ResultCode result = portName(name);
    if (result != RESULT_OK) {
        return result;
    }
    result = onPort([&] {
        m_MonitorComPort->ClearReceiveBuffer();
        const ResultCode opened = m_MonitorComPort->Open(name);
        if (opened == RESULT_OK) {
            waitUntilReading();
        }
        return opened;
    });
    if (result != RESULT_OK) {
        return result;
    }
    m_isMonitorOpen = true; // so that closing drives DTR
    return onPort([this] { return comBaudRateSetProc(PROBE_SPEED_INDEX, PROBE_VOLTAGE); });
}

ResultCode AppDelegate::comBaudRateSetProc(std::uint8_t rateIndex, std::uint8_t voltage) {
    NSCommandProcessor cmd;
    cmd.Initialize();
    const std::uint64_t releasedAt = releaseReset();
    constexpr std::uint8_t ZERO = 0x00;
    ResultCode result = m_MonitorComPort->SendData(&ZERO, 1);
    if (result != RESULT_OK) {
        return result;
    }
    std::uint64_t sentAt = 0;
    for (int attempt = 0; attempt < ATTEMPTS; ++attempt) {
        result = sendBaudRateSet(cmd, rateIndex, voltage, sentAt);
        if (result != RESULT_RECEIVE_TIMEOUT) {
            break;
        }
        wait(RETRY_PAUSE);
        result = RESULT_OK; // the time at which it was sent decides
    }
    return result == RESULT_OK && sentAt - releasedAt > MODE_ENTRY_WINDOW
               ? RESULT_MODE_ENTRY_TIMEOUT
               : result;
}

// Holds the board in reset, and releases it while BREAK holds the line low: that is what tells it
// to enter programming mode. Returns when it was released.
std::uint64_t AppDelegate::releaseReset() {
    driveDtr(!m_isInvertDTR);
    m_MonitorComPort->SetBreak();
    wait(PAUSE);
    m_MonitorComPort->ClearReceiveBuffer();
    driveDtr(m_isInvertDTR);
    const std::uint64_t releasedAt = NSGetTime::getTimeOfDay_msec();
    wait(PAUSE);
    m_MonitorComPort->ClearBreak();
    wait(PAUSE);
    return releasedAt;
}

ResultCode AppDelegate::sendBaudRateSet(NSCommandProcessor& cmd, std::uint8_t rateIndex,
                                        std::uint8_t voltage, std::uint64_t& sentAt) {
    wait(PAUSE);
    std::uint64_t length = 0;
    ResultCode result = cmd.MakeBaudRateCommand(rateIndex, voltage, length);
    if (result == RESULT_OK) {
        result = m_MonitorComPort->SendData(cmd.GetCommandFrames(), length);
    }
    sentAt = NSGetTime::getTimeOfDay_msec();
    std::uint64_t frameLength = 0;
    return result == RESULT_OK ? waitStatusFrames(frameLength, STATUS_TIMEOUT) : result;
}

std::uint64_t AppDelegate::wait(std::uint64_t milliseconds) {
    const std::uint64_t start = NSGetTime::getTimeOfDay_msec();
    std::uint64_t elapsed = 0;
    do {
        elapsed = NSGetTime::getTimeOfDay_msec() - start;
    } while (elapsed <= milliseconds);
    return elapsed;
}

ResultCode AppDelegate::waitStatusFrames(std::uint64_t& frameLength, std::uint64_t timeout) {
    frameLength = 0;
    const std::uint64_t start = NSGetTime::getTimeOfDay_msec();
    for (;;) {
        const std::uint64_t count = m_MonitorComPort->GetReceiveDataLength();
        std::uint8_t type = 0;
        std::uint64_t dataLength = 0;
        if (count >= 2) {
            m_MonitorComPort->CheckDataFrame(type, dataLength);
            if (type == STX) {
                frameLength = dataLength + FRAME_OVERHEAD;
            }
        }
        if (NSGetTime::getTimeOfDay_msec() - start > timeout) {
            return RESULT_RECEIVE_TIMEOUT;
        }
        if (count != 0 && frameLength != 0 && count >= frameLength) {
            return RESULT_OK;
        }
    }
}

} // namespace flashwriter

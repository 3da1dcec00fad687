#include "serial/NSSerialPortProcessor.h"

#include "sequence/context/DiagnosticLog.h"
#include "serial/ReceiveThreadTicket.h"
#include "serial/platform/SerialDevice.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <new>
#include <thread>

namespace flashwriter {

namespace {

constexpr std::uint64_t BUFFER_SIZE = 1024;
constexpr std::uint64_t BUFFER_CAPACITY = BUFFER_SIZE - 1;
constexpr std::size_t CHUNK_SIZE = 512;
constexpr tcflag_t STOP_BITS_UNCHANGED = 0;

ResultCode sent(int systemResult) {
    return systemResult < 0 ? RESULT_SEND_FAILED : RESULT_OK;
}

} // namespace

NSSerialPortProcessor::~NSSerialPortProcessor() {
    Close();
}

ResultCode NSSerialPortProcessor::Open(const char* path) {
    return openDevice(path, CSTOPB);
}

ResultCode NSSerialPortProcessor::OpenForMonitor(const char* path, std::uint64_t SetBaudRate) {
    const ResultCode result = openDevice(path, STOP_BITS_UNCHANGED);
    return result == RESULT_OK ? ChangeBaudRate(SetBaudRate) : result;
}

ResultCode NSSerialPortProcessor::openDevice(const char* path, tcflag_t stopBits) {
    if (m_ticket) {
        Close(); // opened twice: the first device and its receive thread must not be lost
    }
    m_lpbReceivedData.reset(new (std::nothrow) std::uint8_t[BUFFER_SIZE]{});
    if (!m_lpbReceivedData) {
        if (m_iComPort != -1) {
            platform::closeDevice(m_iComPort);
            m_iComPort = -1;
        }
        return RESULT_INIT_FAILED;
    }
    m_iComPort = platform::openDevice(path);
    if (m_iComPort == -1) {
        return RESULT_PORT_OPEN_ERROR;
    }
    configure(stopBits);
    return startReceiveThread();
}

void NSSerialPortProcessor::configure(tcflag_t stopBits) {
    platform::readAttributes(m_iComPort, m_termios);
    cfsetspeed(&m_termios, B115200);
    m_termios.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | stopBits);
    m_termios.c_cflag |= CS8 | stopBits;
    m_termios.c_iflag |= IGNPAR;
    platform::writeAttributes(m_iComPort, m_termios);
    platform::requestLowLatency(m_iComPort);
}

ResultCode NSSerialPortProcessor::startReceiveThread() {
    try {
        m_ticket = std::make_shared<ReceiveThreadTicket>();
        std::thread([this, ticket = m_ticket] {
            if (ticket->claim()) {
                receiveData();
                ticket->release();
            }
        }).detach();
        return RESULT_OK;
    } catch (const std::exception&) {
        m_ticket.reset();
        platform::closeDevice(m_iComPort);
        m_iComPort = -1;
        return RESULT_INIT_FAILED;
    }
}

void NSSerialPortProcessor::stopReceiveThread() {
    if (m_ticket && !m_ticket->revoke()) {
        updateReadingStatus(false);
        // Again and again: a thread that has only just begun sets the flag itself.
        do {
            setRecvLoopFlag(false);
        } while (m_ticket->inUse());
    }
    m_ticket.reset();
}

void NSSerialPortProcessor::Close() {
    if (m_iComPort != -1) {
        stopReceiveThread();
        platform::closeDevice(m_iComPort);
        m_iComPort = -1;
    }
    m_lpbReceivedData.reset();
}

ResultCode NSSerialPortProcessor::SendData(const std::uint8_t* bytes, std::uint64_t writeBytes) {
    diagnosticLog("SendDataSize: %ld Bytes", static_cast<long>(writeBytes));
    const auto written =
        static_cast<std::uint64_t>(platform::writeDevice(m_iComPort, bytes, writeBytes));
    return written < writeBytes ? RESULT_SEND_FAILED : RESULT_OK;
}

std::uint64_t NSSerialPortProcessor::GetReceivedData(std::uint8_t* buffer,
                                                     std::uint64_t /*bufferSize*/,
                                                     std::uint64_t readLength) {
    if (m_dwReceivedDataLength < readLength || !m_lpbReceivedData) {
        return 0;
    }
    const std::uint64_t first = std::min(readLength, BUFFER_SIZE - m_readPosition);
    std::copy_n(&m_lpbReceivedData[m_readPosition], first, buffer);
    std::copy_n(&m_lpbReceivedData[0], readLength - first, buffer + first);
    discard(readLength);
    return readLength;
}

// Gives the first bytes of the buffer back to the receive thread. The subtraction publishes that
// they have been read, so it comes last.
void NSSerialPortProcessor::discard(std::uint64_t count) {
    m_readPosition = (m_readPosition + count) % BUFFER_SIZE;
    m_dwReceivedDataLength -= count;
}

std::uint64_t NSSerialPortProcessor::GetReceiveDataLength() const {
    return m_dwReceivedDataLength;
}

ResultCode NSSerialPortProcessor::CheckDataFrame(std::uint8_t& frameType,
                                                 std::uint64_t& len) const {
    // Only bytes that the length counts are this thread's to read.
    const std::uint64_t length = m_lpbReceivedData ? m_dwReceivedDataLength.load() : 0;
    frameType = length >= 1 ? m_lpbReceivedData[m_readPosition] : std::uint8_t{0};
    len = length >= 2 ? m_lpbReceivedData[(m_readPosition + 1) % BUFFER_SIZE] : 0U;
    return RESULT_OK;
}

void NSSerialPortProcessor::ClearReceiveBuffer() {
    platform::discardPending(m_iComPort);
    clearReadData();
}

ResultCode NSSerialPortProcessor::SetBreak() {
    const ResultCode result = sent(platform::setBreak(m_iComPort));
    if (result == RESULT_OK) {
        platform::discardPending(m_iComPort);
    }
    return result;
}

ResultCode NSSerialPortProcessor::ClearBreak() {
    const ResultCode result = sent(platform::clearBreak(m_iComPort));
    if (result == RESULT_OK) {
        platform::discardPending(m_iComPort);
    }
    return result;
}

ResultCode NSSerialPortProcessor::SetDtr() {
    if (platform::readModemLines(m_iComPort, m_stat_org) < 0) {
        return RESULT_SEND_FAILED;
    }
    return sent(platform::writeModemLines(m_iComPort, m_stat_org | TIOCM_DTR));
}

ResultCode NSSerialPortProcessor::ClearDtr() {
    return sent(platform::writeModemLines(m_iComPort, m_stat_org & ~TIOCM_DTR));
}

ResultCode NSSerialPortProcessor::ChangeBaudRate(std::uint64_t baudRate) {
    if (m_iComPort == -1) {
        return RESULT_BAUD_RATE_CHANGE_FAILED;
    }
    if (platform::setLineSpeed(m_iComPort, baudRate) < 0) {
        diagnosticLog("errno:%d", errno);
        return RESULT_BAUD_RATE_CHANGE_FAILED;
    }
    return RESULT_OK;
}

bool NSSerialPortProcessor::IsReading() const {
    return m_isRecvLoop;
}

void NSSerialPortProcessor::receiveData() {
    m_isRecvLoop = true;
    m_isRecvThreadLive = true;
    updateReadingStatus(true);
    std::array<std::uint8_t, CHUNK_SIZE> chunk{};
    platform::discardPending(m_iComPort);
    while (m_isRecvLoop) {
        const ssize_t size = platform::readDevice(m_iComPort, chunk.data(), chunk.size());
        if (size > 0) {
            diagnosticLog("baffaring!");
            setReadData(chunk.data(), static_cast<std::uint64_t>(size)); // what overflows is lost
        } else {
            // Not a pause: the system's own thread that brings the bytes here may be waiting for
            // this very processor.
            std::this_thread::yield();
        }
    }
    diagnosticLog("ReceiveThread exit!");
    m_isRecvThreadLive = false;
}

ResultCode NSSerialPortProcessor::setReadData(const std::uint8_t* bytes, std::uint64_t readSize) {
    const std::uint64_t length = m_dwReceivedDataLength;
    if (readSize > BUFFER_CAPACITY - length || !m_lpbReceivedData) {
        return RESULT_BUFFER_OVERFLOW;
    }
    const std::uint64_t first = std::min(readSize, BUFFER_SIZE - m_writePosition);
    std::copy_n(bytes, first, &m_lpbReceivedData[m_writePosition]);
    std::copy_n(bytes + first, readSize - first, &m_lpbReceivedData[0]);
    m_writePosition = (m_writePosition + readSize) % BUFFER_SIZE;
    m_dwReceivedDataLength += readSize; // publishes the bytes, so it comes last
    diagnosticLog("Receive Size : %ld", static_cast<long>(readSize));
    return RESULT_OK;
}

void NSSerialPortProcessor::clearReadData() {
    discard(m_dwReceivedDataLength);
}

void NSSerialPortProcessor::updateReadingStatus(bool reading) {
    m_fReading = reading;
}

void NSSerialPortProcessor::setRecvLoopFlag(bool loop) {
    m_isRecvLoop = loop;
}

} // namespace flashwriter

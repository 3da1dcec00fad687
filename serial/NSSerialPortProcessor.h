#pragma once

#include "sequence/context/ResultCode.h"

#include <termios.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

namespace flashwriter {

class ReceiveThreadTicket;

// One serial device, for the length of a write or for as long as the monitor is open. A background
// receive thread appends what arrives to a buffer of 1023 bytes; the caller takes whole frames out
// of it. The device is left in the mode it reports; see serial/platform for what is bridged.
//
// Threads: all operations but receiveData(), setReadData() and the getters of flags belong to one
// caller's thread. The receive thread is the only producer of received bytes, the caller the only
// consumer, and no lock stands between them. Close() and the destructor wait for a receive thread
// that runs and call off one that has not begun; neither may be called from it.
class NSSerialPortProcessor {
public:
    NSSerialPortProcessor() = default;
    ~NSSerialPortProcessor();
    NSSerialPortProcessor(const NSSerialPortProcessor&) = delete;
    NSSerialPortProcessor& operator=(const NSSerialPortProcessor&) = delete;

    // Opens the device at path (NUL-terminated UTF-8) for programming: 115200 bps, 8 data bits, no
    // parity, two stop bits. Returns as soon as
    // the receive thread is on its way; IsReading() tells when it runs. Bytes left in the buffer
    // from an earlier use still count: call ClearReceiveBuffer() first when that matters.
    // RESULT_INIT_FAILED: no memory, or no thread. RESULT_PORT_OPEN_ERROR: the device cannot be
    // opened. After either, Close() still has to be called.
    ResultCode Open(const char* path);

    // Opens for the monitor: 8 data bits, no parity, stop bits as the device had them, at baudRate
    // bits per second. As Open(), and RESULT_BAUD_RATE_CHANGE_FAILED when the device cannot take
    // the rate; the port is then open and its receive thread running all the same.
    ResultCode OpenForMonitor(const char* path, std::uint64_t SetBaudRate);

    // Ends the receive thread, closes the device and frees the buffer. Spins until the thread is
    // gone. Closing or destroying a transport that has never been opened closes descriptor 0.
    void Close();

    // One write of all bytes, never repeated: RESULT_SEND_FAILED when the device took fewer. A
    // write that fails outright counts as sent; the reply that does not come tells.
    ResultCode SendData(const std::uint8_t* bytes, std::uint64_t writeBytes);

    // Takes exactly readLength bytes from the front of the buffer, or none when there are fewer;
    // returns the number taken. bufferSize is not consulted: the caller guarantees the room.
    std::uint64_t GetReceivedData(std::uint8_t* buffer, std::uint64_t bufferSize,
                                  std::uint64_t readLength);
    // Bytes waiting in the buffer.
    std::uint64_t GetReceiveDataLength() const;
    // The first two bytes waiting, left where they are. They mean something only when
    // GetReceiveDataLength() is at least 2. Always RESULT_OK.
    ResultCode CheckDataFrame(std::uint8_t& frameType, std::uint64_t& len) const;
    // Discards what is pending in the device, in both directions, and then the buffer.
    void ClearReceiveBuffer();

    // BREAK and DTR. RESULT_SEND_FAILED when the device refuses. A change of BREAK also discards
    // what is pending in the device. ClearDtr() puts every other modem line back to where the last
    // SetDtr() found it, and clears them all when there was none.
    ResultCode SetBreak();
    ResultCode ClearBreak();
    ResultCode SetDtr();
    ResultCode ClearDtr();

    // Both directions to baudRate bits per second. RESULT_BAUD_RATE_CHANGE_FAILED when the port is
    // closed or the device cannot.
    ResultCode ChangeBaudRate(std::uint64_t baudRate);

    // Whether the receive thread runs and has not been told to end.
    bool IsReading() const;

    // The body of the receive thread: polls the device without sleeping until told to end.
    void receiveData();
    // Appends to the buffer. RESULT_BUFFER_OVERFLOW, and nothing stored, when the buffer would
    // come to hold more than 1023 bytes.
    ResultCode setReadData(const std::uint8_t* bytes, std::uint64_t readSize);
    // Empties the buffer; the caller's thread.
    void clearReadData();
    // Notes whether the receive thread runs; tells it to go on or to end. Any thread.
    void updateReadingStatus(bool reading);
    void setRecvLoopFlag(bool loop);

private:
    ResultCode openDevice(const char* path, tcflag_t stopBits);
    void configure(tcflag_t stopBits);
    ResultCode startReceiveThread();
    void stopReceiveThread();
    void discard(std::uint64_t count);

    termios m_termios{};
    std::atomic<bool> m_fReading{false};
    std::int32_t m_iComPort{0};
    std::unique_ptr<std::uint8_t[]> m_lpbReceivedData;
    std::atomic<std::uint64_t> m_dwReceivedDataLength{0};
    std::atomic<bool> m_isRecvLoop{false};
    std::atomic<bool> m_isRecvThreadLive{false};
    // Never created: one producer and one consumer need no lock between them.
    std::unique_ptr<std::mutex> m_mylock;
    std::int32_t m_stat_org{0};

    // The buffer is a ring: m_dwReceivedDataLength bytes are valid from m_readPosition on.
    std::uint64_t m_readPosition{0};  // the caller's
    std::uint64_t m_writePosition{0}; // the receive thread's
    std::shared_ptr<ReceiveThreadTicket> m_ticket;
};

} // namespace flashwriter

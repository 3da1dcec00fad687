#pragma once

#include "sequence/CommandLink.h"
#include "sequence/DeviceQueries.h"

#include <cstdint>

namespace flashwriter {

// Brings a target from running its program into programming mode and sets up the link.
class ModeEntry {
public:
    ModeEntry(CommandLink& link, DeviceQueries& queries) : m_link(link), m_queries(queries) {}

    // Holds the target in reset by DTR, releases it while BREAK holds the line, sends the one zero
    // byte and then Baud Rate Set, Reset and Silicon Signature. baudRate: see
    // _CONTEXTINFO::BaudRate; voltage: the byte of the supply voltage; InvertDTR: the level of DTR
    // that holds the target in reset is the other one. Line changes that the port refuses are not
    // noticed here: the target that does not answer tells. RESULT_PARAMETER_ERROR: a baudRate above
    // 3, before any line is touched. RESULT_MODE_ENTRY_TIMEOUT: Baud Rate Set last went out more
    // than 100 ms after reset was released; a target that missed it for that reason, or that has
    // DTR the other way round, shows itself like this. RESULT_BAUD_RATE_CHANGE_FAILED: the port
    // cannot take the speed. RESULT_SEND_FAILED: the zero byte cannot be sent. Else the codes of
    // the exchanges.
    ResultCode programingMode(std::uint8_t baudRate, std::uint8_t voltage, bool InvertDTR);

    // The exchanges below return RESULT_COMMAND_FRAME_ABORT when the target refuses,
    // RESULT_RECEIVE_TIMEOUT when it does not answer or in another size, RESULT_FRAME_FORMAT_ERROR
    // or RESULT_SUM_ERROR for a damaged answer, RESULT_SEND_FAILED when nothing can be sent.

    // Tells the target its speed and voltage; the speed of the port stays as it is. Also
    // RESULT_PARAMETER_ERROR and RESULT_MODE_ENTRY_TIMEOUT, as above.
    ResultCode comBaudRateSetProc(std::uint8_t baudRate, std::uint8_t voltage);

    // Puts the target's command handling back to its start.
    ResultCode comResetProc();

private:
    void releaseReset(bool InvertDTR);
    void driveDtr(bool on);
    ResultCode receiveBaudRateStatus(std::uint64_t frameLength);

    CommandLink& m_link;
    DeviceQueries& m_queries;
};

} // namespace flashwriter

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
    // byte and then Baud Rate Set, Reset and Silicon Signature. index: see _CONTEXTINFO::BaudRate;
    // voltage: the byte of the supply voltage; InvertDTR: the level of DTR that holds the target in
    // reset is the other one. Line changes that the port refuses are not noticed here: the target
    // that does not answer tells.
    // RESULT_PARAMETER_ERROR: an index above 3, before any line is touched.
    // RESULT_MODE_ENTRY_TIMEOUT: Baud Rate Set last went out more than 100 ms after reset was
    // released; a target that missed it for that reason, or that has DTR the other way round,
    // shows itself like this. Else the codes of the exchanges.
    ResultCode programingMode(std::uint8_t index, std::uint8_t voltage, bool InvertDTR);

    // Tells the target its speed and voltage; the speed of the port stays as it is.
    ResultCode comBaudRateSetProc(std::uint8_t index, std::uint8_t voltage);

    ResultCode comResetProc();

private:
    void releaseReset(bool InvertDTR);
    void driveDtr(bool on);
    ResultCode receiveBaudRateStatus(std::uint64_t frameLength);

    CommandLink& m_link;
    DeviceQueries& m_queries;
};

} // namespace flashwriter

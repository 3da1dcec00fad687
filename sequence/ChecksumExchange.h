#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

class ChecksumExchange {
public:
    explicit ChecksumExchange(CommandLink& link) : m_link(link) {}

    // Asks the target for its 16-bit checksum of a range, end address included: ck1 is the low
    // byte, ck2 the high byte, both left alone on failure. codeFlash selects a time-out.
    // RESULT_COMMAND_FRAME_ABORT: the target refuses the range. RESULT_RECEIVE_TIMEOUT: no answer,
    // or one of another size; only the first of the two frames is waited for again.
    // RESULT_FRAME_FORMAT_ERROR, RESULT_SUM_ERROR: a damaged answer. RESULT_SEND_FAILED.
    ResultCode comChecksum(std::uint64_t startAddress, std::uint64_t endAddress, std::uint8_t& ck1,
                           std::uint8_t& ck2, bool codeFlash);

    // The blocks that the time-out is asked for: (end - start) / 1024, rounded up. For whole blocks
    // and an inclusive end address that is their number.
    static std::uint64_t blocksBetween(std::uint64_t startAddress, std::uint64_t endAddress);

private:
    ResultCode receiveCommandStatus(std::uint64_t frameLength);

    CommandLink& m_link;
};

} // namespace flashwriter

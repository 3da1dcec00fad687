#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

// One flash block of 1024 bytes at a time, named by its first address. codeFlash tells code flash
// from data flash; it selects the time-out and nothing else.
//
// Both return RESULT_COMMAND_FRAME_ABORT when the target refuses (ST1 tells how),
// RESULT_RECEIVE_TIMEOUT when it does not answer or in another size, RESULT_FRAME_FORMAT_ERROR or
// RESULT_SUM_ERROR for a damaged answer, RESULT_SEND_FAILED when the command cannot be sent.
class BlockExchanges {
public:
    explicit BlockExchanges(CommandLink& link) : m_link(link) {}

    // RESULT_OK: blank. RESULT_NOT_BLANK: not blank. Sent once: a receive time-out is final.
    ResultCode comBlockBlankCheckProc(std::uint64_t startAddress, bool codeFlash);

    // Erases the block to 0xFF. Sent again after a receive time-out.
    ResultCode comBlockEraseProc(std::uint64_t startAddress, bool codeFlash);

private:
    ResultCode sendOnce(std::uint64_t startAddress, std::uint64_t timeout,
                        std::uint64_t& frameLength);

    CommandLink& m_link;
};

} // namespace flashwriter

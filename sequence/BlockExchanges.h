#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

// One flash block of 1024 bytes at a time. codeFlash tells code flash from data flash; it selects
// the time-out and nothing else.
class BlockExchanges {
public:
    explicit BlockExchanges(CommandLink& link) : m_link(link) {}

    // RESULT_OK: blank. RESULT_NOT_BLANK: not blank. Sent once: a receive time-out is final.
    ResultCode comBlockBlankCheckProc(std::uint64_t startAddress, bool codeFlash);

    ResultCode comBlockEraseProc(std::uint64_t startAddress, bool codeFlash);

private:
    ResultCode sendOnce(std::uint64_t startAddress, std::uint64_t timeout,
                        std::uint64_t& frameLength);

    CommandLink& m_link;
};

} // namespace flashwriter

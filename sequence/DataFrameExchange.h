#pragma once

#include "sequence/CommandLink.h"

#include <cstdint>

namespace flashwriter {

inline constexpr std::uint64_t DATA_FRAME_SIZE = 256;

// As the diagnostic log spells a flag.
inline const char* trueOrFalse(bool value) {
    return value ? "TRUE" : "FALSE";
}

// One data frame of a transfer, and its status; behind the last frame also the status of the
// target's own verify.
class DataFrameExchange {
public:
    struct Frame {
        std::uint64_t block;       // number of the block, from 0
        std::uint64_t part;        // number of the frame in its block, from 0
        const std::uint8_t* bytes; // DATA_FRAME_SIZE of them, borrowed
        bool finalFrame;           // the last one of the transfer
    };

    // Time-outs in milliseconds: for the status of a frame, and for that of the verify.
    DataFrameExchange(CommandLink& link, std::uint64_t frameTimeout, std::uint64_t verifyTimeout)
        : m_link(link), m_frameTimeout(frameTimeout), m_verifyTimeout(verifyTimeout) {}

    // Sends a frame, ComRetryMax times at the most, until the target has taken it. What the target
    // refuses (RESULT_DATA_FRAME_ABORT), answers in another size (RESULT_RECEIVE_TIMEOUT) or in a
    // damaged frame (RESULT_FRAME_FORMAT_ERROR, RESULT_SUM_ERROR) is not sent again; a silence
    // (RESULT_RECEIVE_TIMEOUT) and RESULT_SEND_FAILED are results only of the last attempt.
    // RESULT_OK without sending when ComRetryMax is 0.
    ResultCode send(const Frame& frame);

private:
    // What an attempt came to, and whether the frame may be sent once more.
    struct Attempt {
        ResultCode result;
        bool again;
    };

    Attempt attempt(const Frame& frame);
    ResultCode transmit(const Frame& frame, std::uint64_t& frameLength);
    ResultCode receiveStatus(std::uint64_t frameLength);
    ResultCode receiveShortStatus();
    ResultCode receiveLongStatus();
    Attempt awaitInternalVerify();
    void logAttempt(const Frame& frame) const;

    CommandLink& m_link;
    std::uint64_t m_frameTimeout;
    std::uint64_t m_verifyTimeout;
};

} // namespace flashwriter

// What the codec's tests share: frames as plain lists of bytes, and a SUM reckoned another way.
#pragma once

#include "protocol/NSCommandProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace flashwriter {

using Bytes = std::vector<std::uint8_t>;

// What must be added to the bytes' sum to make it a multiple of 256.
inline std::uint8_t complementOf(const Bytes& bytes) {
    const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
    return static_cast<std::uint8_t>((256U - sum % 256U) % 256U);
}

class Codec : public ::testing::Test {
protected:
    Codec() {
        EXPECT_EQ(codec.Initialize(), RESULT_OK);
        std::fill_n(codec.GetCommandFrames(), 260, std::uint8_t{0xEE});
    }

    // The receive buffer as the transport leaves it: the frame, then what was there before.
    void receive(const Bytes& frame, std::uint8_t stale = 0xEE) {
        ASSERT_LE(frame.size(), 260U);
        std::fill_n(codec.GetDataFrames(), 260, stale);
        std::copy(frame.begin(), frame.end(), codec.GetDataFrames());
    }

    // A data frame that is right in every respect.
    static Bytes dataFrame(const Bytes& data, std::uint8_t endByte = 0x03) {
        Bytes frame(data.size() + 4, 0x02);
        frame[1] = static_cast<std::uint8_t>(data.size() % 256);
        std::copy(data.begin(), data.end(), frame.begin() + 2);
        frame.end()[-2] = complementOf(Bytes(frame.begin() + 1, frame.end() - 2));
        frame.end()[-1] = endByte;
        return frame;
    }

    // The transmit buffer holds this frame and nothing but zeros behind it.
    void expectSent(const Bytes& frame) {
        Bytes expected = frame;
        expected.resize(260, 0);
        EXPECT_EQ(Bytes(codec.GetCommandFrames(), codec.GetCommandFrames() + 260), expected);
        EXPECT_EQ(length, frame.size());
    }

    NSCommandProcessor codec;
    std::uint64_t length = 0xEEEE;
};

} // namespace flashwriter

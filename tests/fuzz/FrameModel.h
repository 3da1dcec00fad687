// Frames as plain lists of bytes, and a second judge of them, which adds up where the codec
// subtracts.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace flashwriter::fuzz {

using Bytes = std::vector<std::uint8_t>;

// What a check looks at first where more than one thing is wrong.
enum class Judging { FormatFirst, SumFirst, LengthLast };

struct FrameWant {
    std::size_t length; // the LEN of a frame that is right
    Judging judging;
};

// What a check that wants this has to say of a frame; frame has all bytes of the buffer.
ResultCode judge(const Bytes& frame, const FrameWant& want);

// A frame of a payload, with the SUM that makes it right.
Bytes builtFrame(std::uint8_t startByte, const Bytes& payload, std::uint8_t endByte);

// Puts the right SUM where the frame's own LEN wants it; frame has all bytes of the buffer.
void mendSum(std::uint8_t* frame);

} // namespace flashwriter::fuzz

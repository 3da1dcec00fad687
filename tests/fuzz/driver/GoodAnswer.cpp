#include "tests/fuzz/driver/GoodAnswer.h"

#include "board/Protocol.h"

#include <array>

namespace flashwriter::fuzz {

namespace {

using board::Bytes;
using board::Command;
using board::makeReply;

constexpr std::uint8_t ACKNOWLEDGE = 0x06;
constexpr std::array<std::uint8_t, 1> STATUS{ACKNOWLEDGE};
constexpr std::array<std::uint8_t, 2> DATA_STATUS{ACKNOWLEDGE, ACKNOWLEDGE};

// 64 KiB of code flash, 4 of data flash.
constexpr std::array<std::uint8_t, 22> SIGNATURE{0x10, 0x00, 0x06, 'B', 'O', 'A',  'R',  'D',
                                                 ' ',  ' ',  ' ',  ' ', ' ', 0xFF, 0xFF, 0x00,
                                                 0xFF, 0x1F, 0x0F, 3,   0,   3};

Bytes followedBy(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes answerToData(std::span<const std::uint8_t> frame) {
    const Bytes status = makeReply(DATA_STATUS);
    return frame.back() == board::kLast ? followedBy(status, makeReply(STATUS)) : status;
}

} // namespace

std::uint16_t flashChecksum(std::span<const std::uint8_t> flash) {
    std::uint16_t sum = 0;
    for (const std::uint8_t byte : flash) {
        sum = static_cast<std::uint16_t>(sum - byte);
    }
    return sum;
}

Bytes goodAnswer(std::span<const std::uint8_t> frame, std::span<const std::uint8_t> flash) {
    if (frame.size() < 5) {
        return {}; // the zero byte
    }
    if (frame[0] == board::kDataStart) {
        return answerToData(frame);
    }
    const Bytes status = makeReply(STATUS);
    switch (static_cast<Command>(frame[2])) {
    case Command::siliconSignature:
        return followedBy(status, makeReply(SIGNATURE));
    case Command::checksum: {
        const std::uint16_t sum = flashChecksum(flash);
        return followedBy(
            status, makeReply(std::array<std::uint8_t, 2>{static_cast<std::uint8_t>(sum & 0xFF),
                                                          static_cast<std::uint8_t>(sum >> 8)}));
    }
    default:
        return status;
    }
}

} // namespace flashwriter::fuzz

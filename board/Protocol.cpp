#include "board/Protocol.h"

#include <cstdio>

namespace flashwriter::board {

std::uint8_t frameSum(std::span<const std::uint8_t> bytes) {
    unsigned sum = 0;
    for (const std::uint8_t byte : bytes) {
        sum += byte;
    }
    return static_cast<std::uint8_t>(0x100U - (sum & 0xFFU));
}

Bytes makeReply(std::span<const std::uint8_t> data) {
    Bytes frame;
    frame.reserve(data.size() + kFrameOverhead);
    frame.push_back(kDataStart);
    frame.push_back(static_cast<std::uint8_t>(data.size() & 0xFFU));
    frame.insert(frame.end(), data.begin(), data.end());
    frame.push_back(frameSum(std::span(frame).subspan(1)));
    frame.push_back(kLast);
    return frame;
}

std::size_t frameLength(std::uint8_t start, std::uint8_t length) {
    const bool wholeBlock = start == kDataStart && length == 0;
    return (wholeBlock ? kDataFramePayload : length) + kFrameOverhead;
}

FrameFlaw findFlaw(std::span<const std::uint8_t> frame) {
    const std::uint8_t end = frame.back();
    const bool endFits = end == kLast || (end == kMoreFollows && frame.front() == kDataStart);
    if (!endFits) {
        return FrameFlaw::endByte;
    }
    const auto summed = frame.subspan(1, frame.size() - 3);
    return frameSum(summed) == frame[frame.size() - 2] ? FrameFlaw::none : FrameFlaw::checksum;
}

std::string commandName(std::uint8_t command) {
    switch (static_cast<Command>(command)) {
    case Command::reset:
        return "Reset";
    case Command::blockErase:
        return "Block Erase";
    case Command::blockBlankCheck:
        return "Block Blank Check";
    case Command::programming:
        return "Programming";
    case Command::baudRateSet:
        return "Baud Rate Set";
    case Command::securityGet:
        return "Security Get";
    case Command::checksum:
        return "Checksum";
    case Command::siliconSignature:
        return "Silicon Signature";
    }
    return "command 0x" + hexText(std::span(&command, 1));
}

std::string statusName(std::uint8_t status) {
    switch (static_cast<Status>(status)) {
    case Status::commandNumberError:
        return "command number error";
    case Status::parameterError:
        return "parameter error";
    case Status::acknowledge:
        return "ACK";
    case Status::checksumError:
        return "checksum error";
    case Status::verifyError:
        return "verify error";
    case Status::negativeAcknowledge:
        return "NACK";
    case Status::notBlank:
        return "not blank";
    }
    return "status 0x" + hexText(std::span(&status, 1));
}

std::string hexText(std::span<const std::uint8_t> bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        if (!text.empty()) {
            text += ' ';
        }
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0x0FU];
    }
    return text;
}

std::string addressText(std::uint32_t address) {
    char text[16];
    static_cast<void>(std::snprintf(text, sizeof text, "0x%06X", address));
    return text;
}

} // namespace flashwriter::board

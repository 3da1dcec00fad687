#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The board's own reading of the programming protocol: its bytes, its checksum, its frames.
namespace flashwriter::board {

using Bytes = std::vector<std::uint8_t>;

// The bytes that frame a frame.
inline constexpr std::uint8_t kCommandStart = 0x01; // first byte of a command frame
inline constexpr std::uint8_t kDataStart = 0x02;   // first byte of a data frame, and of every reply
inline constexpr std::uint8_t kLast = 0x03;        // end byte: nothing follows in this transfer
inline constexpr std::uint8_t kMoreFollows = 0x17; // end byte: another data frame follows

// Bytes of a frame beside what its length byte counts: start, length, checksum, end.
inline constexpr std::size_t kFrameOverhead = 4;

// What one data frame of a programming transfer carries.
inline constexpr std::size_t kDataFramePayload = 256;

// The commands that the target knows.
enum class Command : std::uint8_t {
    reset = 0x00,
    blockErase = 0x22,
    blockBlankCheck = 0x32,
    programming = 0x40,
    baudRateSet = 0x9A,
    securityGet = 0xA1,
    checksum = 0xB0,
    siliconSignature = 0xC0,
};

// What the target puts into a status frame.
enum class Status : std::uint8_t {
    commandNumberError = 0x04, // no such command, or not one that may come now
    parameterError = 0x05,     // a length, an address or a value that the command does not allow
    acknowledge = 0x06,
    checksumError = 0x07,       // the frame's checksum byte is wrong
    verifyError = 0x0F,         // the flash does not hold what was programmed
    negativeAcknowledge = 0x15, // the frame is malformed, or no such frame is due
    notBlank = 0x1B,            // blank check only: a cell of the range is not erased
};

// Bits per second for each speed index of Baud Rate Set; programming mode starts at the first.
inline constexpr std::uint32_t kSpeeds[] = {115200, 250000, 500000, 1000000};

// Two's complement of the sum of the bytes, one byte wide: added to them it gives 0.
std::uint8_t frameSum(std::span<const std::uint8_t> bytes);

// A reply with these data bytes (1 to 256 of them), ended by kLast.
Bytes makeReply(std::span<const std::uint8_t> data);

// How many bytes a host frame takes that starts with these two. A data frame says 256 by 0.
std::size_t frameLength(std::uint8_t start, std::uint8_t length);

// What is wrong with a complete host frame as a frame: nothing, its end byte, or its checksum.
// An end byte is looked at first: where it is wrong the length is in doubt, and so is all else.
enum class FrameFlaw : std::uint8_t { none, endByte, checksum };
FrameFlaw findFlaw(std::span<const std::uint8_t> frame);

// "Block Erase" for 0x22 and so on; "command 0x77" for what is none.
std::string commandName(std::uint8_t command);

// The name of a status byte, for the transcript.
std::string statusName(std::uint8_t status);

// "01 01 00 FF 03"
std::string hexText(std::span<const std::uint8_t> bytes);

// "0x001C00": an address as the transcript shows it.
std::string addressText(std::uint32_t address);

} // namespace flashwriter::board

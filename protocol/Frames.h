// The bytes of the target's programming protocol.
//
//   command frame   SOH LEN COM parameters SUM ETX   LEN counts COM and the parameters
//   data frame      STX LEN data SUM ETX             LEN counts the data; 0 stands for 256
//
// A data frame that others follow ends in ETB. What the target sends is always a data frame that
// ends in ETX. SUM makes the bytes from LEN up to and including SUM add up to 0 modulo 256.
// Addresses are three bytes, low byte first; the end address of a range belongs to the range.
#pragma once

#include <cstddef>
#include <cstdint>

namespace flashwriter {

inline constexpr std::uint8_t SOH = 0x01;
inline constexpr std::uint8_t STX = 0x02;
inline constexpr std::uint8_t ETX = 0x03;
inline constexpr std::uint8_t ETB = 0x17;

// What a status byte can say.
inline constexpr std::uint8_t ACK = 0x06;
inline constexpr std::uint8_t NOT_BLANK = 0x1B; // Block Blank Check: the block is not erased

inline constexpr std::uint8_t COM_RESET = 0x00;
inline constexpr std::uint8_t COM_BLOCK_ERASE = 0x22;
inline constexpr std::uint8_t COM_BLOCK_BLANK_CHECK = 0x32;
inline constexpr std::uint8_t COM_PROGRAMMING = 0x40;
inline constexpr std::uint8_t COM_BAUD_RATE_SET = 0x9A;
inline constexpr std::uint8_t COM_SECURITY_GET = 0xA1;
inline constexpr std::uint8_t COM_CHECKSUM = 0xB0;
inline constexpr std::uint8_t COM_SILICON_SIGNATURE = 0xC0;

inline constexpr std::uint8_t MAX_SPEED_INDEX = 3;

// Offsets in a frame; SUM and the end byte follow the payload.
inline constexpr std::size_t LEN_OFFSET = 1;
inline constexpr std::size_t PAYLOAD_OFFSET = 2;

// Start byte, LEN, SUM and end byte.
inline constexpr std::size_t FRAME_OVERHEAD = 4;
inline constexpr std::size_t MAX_PAYLOAD = 256;
inline constexpr std::size_t FRAME_BUFFER_SIZE = MAX_PAYLOAD + FRAME_OVERHEAD;

} // namespace flashwriter

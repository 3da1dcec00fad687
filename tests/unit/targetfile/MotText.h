// S-record text for the tests.
#pragma once

#include "targetfile/MotLine.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace flashwriter {

using Bytes = std::vector<std::uint8_t>;

// size bytes that differ from their neighbours and from 0xFF: first, first + 1, …
Bytes counting(std::size_t size, std::uint8_t first = 0);

// A record's line without its line feed: the byte count as given, data, a correct checksum.
std::string motLine(int type, std::uint32_t address, const Bytes& data, std::uint32_t byteCount);

// The same with the byte count that belongs to the data.
std::string motLine(int type, std::uint32_t address, const Bytes& data);

// The lines, each followed by lineEnd.
std::string motText(std::initializer_list<std::string_view> lines, std::string_view lineEnd = "\n");

// A view of text as one line; its positions are searched for unless it is ASCII.
MotLine lineOf(std::string_view text);

} // namespace flashwriter

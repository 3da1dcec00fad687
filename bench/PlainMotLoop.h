// The yardstick: the simplest loop that gets the bytes out of an S-record file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter {

// Reads the whole file into memory and stores every S3 record's bytes at its address, in one pass
// over the text, with no check but that of its bounds. Returns how many bytes were stored.
std::uint64_t plainMotLoop(const std::string& path, std::vector<std::uint8_t>& image);

} // namespace flashwriter

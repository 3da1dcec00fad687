#pragma once

#include "sequence/context/ResultCode.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::fuzz {

// An image file that a fuzzed write reads, and what a reader makes of it.
struct FuzzedImage {
    std::string path;
    ResultCode read = RESULT_OK;
    std::vector<std::uint8_t> image; // code flash
    bool hasData = false;            // and there is data for data flash
};

// The images that an input may choose from, in files that go with the process. The order is part of
// what an input means.
const std::vector<FuzzedImage>& fuzzedImages();

// The image filled up to whole blocks, as it has to stand in the flash.
std::vector<std::uint8_t> wholeBlocks(const FuzzedImage& image);

} // namespace flashwriter::fuzz

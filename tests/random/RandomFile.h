#pragma once

#include "sequence/context/ResultCode.h"
#include "tests/random/Dice.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter::random {

// An image file, and what a reader has to make of it.
struct RandomFile {
    std::string name;
    std::string contents;
    ResultCode read = RESULT_OK;     // what reading it comes to; if well, then this:
    std::vector<std::uint8_t> image; // code flash from address 0 on
    bool hasData = false;            // and there is data for data flash
};

// A raw image or S-records, mostly good ones, of 1 byte to some KiB.
RandomFile drawFile(Dice& dice);

} // namespace flashwriter::random

// A second reading of S-record files, slow and plain, to hold the program's against.
#pragma once

#include "sequence/context/ResultCode.h"
#include "tests/unit/targetfile/MotText.h"

#include <cstdint>
#include <string_view>

namespace flashwriter {

struct MotReference {
    ResultCode measured = RESULT_OK; // what the first pass returns
    std::uint64_t programExtent = 0;
    std::uint64_t dataExtent = 0;
    ResultCode filled = RESULT_OK; // what the second returns; set when the first returned RESULT_OK
    Bytes program;
    Bytes data;
};

// Reads a whole file's contents. Shares no code with the program: it decodes all text to code
// points first and copies every line and field. Of the data image it keeps the first 16 MiB.
MotReference readMotReference(std::string_view contents);

} // namespace flashwriter

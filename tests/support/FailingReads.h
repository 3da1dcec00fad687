#pragma once

#include <cstddef>

namespace flashwriter::testing {

// What becomes of pread in the program that this is linked into.
struct Reads {
    std::size_t most = 0; // bytes that one gives at most, as a network does; 0: as many as asked
    int failing = 0;      // which of them fails with EIO, counted from 1; 0: none
    int made = 0;         // how many there were
};

extern Reads reads;

} // namespace flashwriter::testing

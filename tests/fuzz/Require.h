// What fuzz targets have in common.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace flashwriter::fuzz {

// Ends the program, as a crash that the fuzzer reports with its input, unless a property holds.
inline void require(bool holds, const char* property, int line = __builtin_LINE()) {
    if (!holds) {
        std::fprintf(stderr, "line %d does not hold: %s\n", line, property);
        std::abort();
    }
}

} // namespace flashwriter::fuzz

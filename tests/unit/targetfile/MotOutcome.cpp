#include "tests/unit/targetfile/MotOutcome.h"

#include "targetfile/MotPasses.h"

namespace flashwriter {

MotReference readByPasses(const std::string& path, std::size_t step) {
    MotReference outcome;
    MotExtents extents;
    outcome.measured = measureMotFile(path, extents, step);
    outcome.programExtent = extents.program;
    outcome.dataExtent = extents.data;
    // That nothing was found is the class's word; the pass itself says only what it met.
    if (outcome.measured == RESULT_OK && extents.program == 0 && extents.data == 0) {
        outcome.measured = RESULT_UNSUPPORTED_FORMAT;
    }
    if (outcome.measured != RESULT_OK) {
        return outcome;
    }
    // An empty vector may have no buffer, an image always has one.
    outcome.program.reserve(1);
    outcome.data.reserve(1);
    outcome.program.assign(extents.program, 0xFF);
    outcome.data.assign(keptOfDataImage(extents.data), 0xFF);
    const MotImages images{outcome.program.data(), extents.program, outcome.data.data(),
                           extents.data};
    outcome.filled = fillMotImages(path, images, step);
    return outcome;
}

} // namespace flashwriter

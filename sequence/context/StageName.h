#pragma once

#include <cstdint>

namespace flashwriter {

// The name of a stage (see _PROGRESSINIFO), as people are shown it; empty for any other number.
const char* stageName(std::int32_t step);

} // namespace flashwriter

// What the benchmark understands beside Google Benchmark's own options.
#pragma once

#include <vector>

namespace flashwriter {

// Takes "--require-mbps=NUMBER" or "--require-mbps NUMBER" out of arguments (the program's, its
// name first) and makes number what it says, 0 without it. False when it is there without a number
// above 0.
bool takeRequiredSpeed(std::vector<char*>& arguments, double& number);

} // namespace flashwriter

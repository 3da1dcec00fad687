// The tool that everybody has, for comparison.
#pragma once

#include <string>

namespace flashwriter {

// Runs objcopy to turn the S-record file into a raw image, in a process of its own, and waits for
// it. False when there is no objcopy or it fails.
bool runObjcopy(const std::string& motPath, const std::string& rawPath);

} // namespace flashwriter

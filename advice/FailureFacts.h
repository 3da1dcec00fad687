#pragma once

#include "sequence/context/ContextInfo.h"
#include "serial/PortFacts.h"
#include "targetfile/FileFacts.h"

#include <cstdint>
#include <string>
#include <vector>

namespace flashwriter {

// What can be known, after a write has failed or the monitor could not be opened, about what it had
// to do with.
struct FailureFacts {
    std::string portPath;
    PortFacts port;
    std::vector<std::string> ports; // the serial ports that there are
    std::uint8_t speedIndex = 0;    // see _CONTEXTINFO

    std::string filePath;
    FileFacts file;
    int readError = 0;               // errno of reading the file, for who could not; 0: none now
    std::uint64_t codeSize = 0;      // bytes of the image that belong into code flash; 0: not known
    std::uint64_t codeFlashSize = 0; // bytes, as the board has told; 0: it has not
};

// Looks at the port and the file of a write that has ended with the result in its context's
// pResultInfo. The answer is as old as the call: both may have changed since the failure.
FailureFacts failureFacts(const _CONTEXTINFO& context);

// Likewise, when no file had a part in the failure: looks at the port only.
FailureFacts portFailureFacts(const std::string& portPath);

} // namespace flashwriter

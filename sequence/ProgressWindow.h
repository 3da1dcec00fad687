#pragma once

#include "sequence/context/ContextInfo.h"

#include <cstdint>

namespace flashwriter {

// All that a driver knows of the window that shows a write. UpdateProgress() and setResult() are
// called on the thread of the write, close() on the main thread, after setResult() has returned.
class ProgressWindow {
public:
    virtual ~ProgressWindow() = default;
    // A stage (see _PROGRESSINIFO) and the percentage of the whole, 0 to 100. Returns 0.
    virtual std::uint64_t UpdateProgress(std::int32_t step, std::int32_t andProgress) = 0;
    // The context at the end of a write; its pResultInfo points at the outcome. Returns 0.
    virtual std::uint64_t setResult(_CONTEXTINFO context) = 0;
    virtual void close() = 0;
};

} // namespace flashwriter

#pragma once

#include "sequence/SequenceDriver.h"
#include "targetfile/NSTargetFile.h"

#include <string>

namespace flashwriter {

// Receives the lines of the log view, on the main thread, in order.
class NSSequenceProcessorDelegate {
public:
    virtual ~NSSequenceProcessorDelegate() = default;
    virtual void delegateAddLog(const std::string& text) = 0;
};

extern template class SequenceDriver<NSTargetFile, NSSequenceProcessorDelegate>;

// Writes raw binary images.
class NSSequenceProcessor final : public SequenceDriver<NSTargetFile, NSSequenceProcessorDelegate> {
public:
    explicit NSSequenceProcessor(MainQueue mainQueue);
};

} // namespace flashwriter

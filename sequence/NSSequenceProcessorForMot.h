#pragma once

#include "sequence/SequenceDriver.h"
#include "targetfile/NSTargetFileForMot.h"

#include <string>

namespace flashwriter {

// Receives the lines of the log view, on the main thread, in order.
class NSSequenceProcessorForMotDelegate {
public:
    virtual ~NSSequenceProcessorForMotDelegate() = default;
    virtual void delegateAddLog(const std::string& text) = 0;
};

extern template class SequenceDriver<NSTargetFileForMot, NSSequenceProcessorForMotDelegate>;

// Writes S-record images.
class NSSequenceProcessorForMot final
    : public SequenceDriver<NSTargetFileForMot, NSSequenceProcessorForMotDelegate> {
public:
    explicit NSSequenceProcessorForMot(MainQueue mainQueue);
};

} // namespace flashwriter

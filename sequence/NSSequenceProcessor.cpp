#include "sequence/NSSequenceProcessor.h"

#include <utility>

namespace flashwriter {

NSSequenceProcessor::NSSequenceProcessor(MainQueue mainQueue)
    : SequenceDriver(std::move(mainQueue)) {}

} // namespace flashwriter

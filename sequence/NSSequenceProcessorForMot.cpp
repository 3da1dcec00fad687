#include "sequence/NSSequenceProcessorForMot.h"

#include <utility>

namespace flashwriter {

NSSequenceProcessorForMot::NSSequenceProcessorForMot(MainQueue mainQueue)
    : SequenceDriver(std::move(mainQueue)) {}

} // namespace flashwriter

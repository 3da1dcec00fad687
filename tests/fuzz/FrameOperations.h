// All operations of the codec, each held against a second way to the same result.
#pragma once

#include "protocol/NSCommandProcessor.h"
#include "tests/fuzz/FrameModel.h"

namespace flashwriter::fuzz {

// Each Check, on what the codec has received.
void runChecks(const NSCommandProcessor& codec);

// Each command, with eight bytes of parameters.
void makeCommands(NSCommandProcessor& codec, const Bytes& p);

// Both ways to send data, of any length.
void makeDataFrames(NSCommandProcessor& codec, const Bytes& data, std::uint64_t finalFrame);

} // namespace flashwriter::fuzz

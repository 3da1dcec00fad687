// The parts of failureAdvice(), each for one thing that a write can fail on. They answer only for
// codes of their own and give an empty text for every other.
#pragma once

#include "advice/FailureFacts.h"
#include "sequence/context/ContextInfo.h"

#include <string>

namespace flashwriter {

// 0x1xxx: the port could not be had.
std::string portAdvice(ResultCode result, const FailureFacts& facts);

// 0x2xxx: the exchange with the board went wrong. last is the exchange that did.
std::string targetAdvice(ResultCode result, const _COMMANDINFO& last, const FailureFacts& facts);

// 0x3xxx: the image file, or what is in it.
std::string fileAdvice(ResultCode result, const FailureFacts& facts);

// What to say when the port's path leads to something else.
std::string notPortAdvice(const FailureFacts& facts);

// The first few processes that hold the port, "screen (process 812), cat (process 901)".
std::string holderNames(const FailureFacts& facts);

} // namespace flashwriter

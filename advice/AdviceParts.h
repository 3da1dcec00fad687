// The parts that failureAdvice() and the other advice are made of. Names in their texts are as they
// were found: whoever puts the parts together makes them printable().
#pragma once

#include "advice/FailureFacts.h"
#include "sequence/context/ContextInfo.h"

#include <initializer_list>
#include <string>

namespace flashwriter {

// Each of these three is for one thing that a write can fail on. They answer only for codes of
// their own and give an empty text for every other.

// 0x1xxx: the port could not be had.
std::string portAdvice(ResultCode result, const FailureFacts& facts);

// 0x2xxx: the exchange with the board went wrong. last is the exchange that did.
std::string targetAdvice(ResultCode result, const _COMMANDINFO& last, const FailureFacts& facts);

// Those of them whose advice needs no facts: what is wrong is not the port or who else uses it.
std::string plainAdvice(ResultCode result, const _COMMANDINFO& last);

// 0x3xxx: the image file, or what is in it.
std::string fileAdvice(ResultCode result, const FailureFacts& facts);

// The first of the texts that is not empty; empty when all are.
std::string firstOf(std::initializer_list<std::string> texts);

// For the codes that nothing else answers for.
std::string unknownAdvice(ResultCode result);

// Paths that no field of the context takes, and what to say about one of them: owner is "port" or
// "image file".
bool isTooLong(const std::string& path);
std::string longPathAdvice(const std::string& owner, const std::string& path);

// The ports that there are, or how to come by one.
std::string portsHere(const FailureFacts& facts);

// What keeps the port from being opened and from belonging to this program alone; empty when
// nothing does that can be seen.
std::string portObstacle(const FailureFacts& facts);

// What to say when the port has gone; then is what to do once it is back, "write again".
std::string goneAdvice(const FailureFacts& facts, const std::string& then);

// What to say when the port's path leads to something else.
std::string notPortAdvice(const FailureFacts& facts);

// What keeps the file from being read as an image, as far as that can be told without reading it;
// empty when nothing does.
std::string fileObstacle(const FailureFacts& facts);

// The first few processes that hold the port, "screen (process 812), cat (process 901)".
std::string holderNames(const FailureFacts& facts);

} // namespace flashwriter

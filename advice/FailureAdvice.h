#pragma once

#include "advice/FailureFacts.h"
#include "sequence/context/ContextInfo.h"

#include <string>

namespace flashwriter {

// Why a write failed and what to do about it, in one line without a line break. Says no more than
// the result and the facts bear out. Names in it are made harmless to a terminal; the rest is
// ASCII. Empty for RESULT_OK.
std::string failureAdvice(const _RESULTINFO& result, const FailureFacts& facts);

// The same without facts, for as long as there are none, or where none can be had: empty when the
// cause would have to be looked for.
std::string failureAdvice(const _RESULTINFO& result);

} // namespace flashwriter

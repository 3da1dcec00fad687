#pragma once

#include "sequence/context/ContextInfo.h"

#include <string>

namespace flashwriter {

// What the person is told at the end of a write: one sentence for success; for a failure the result
// code and the last exchange's command, number of attempts and status bytes. Lines end in "\r\n".
// The number shown as Retry is 0 when there was no retry, else the number of attempts (Retry + 1).
std::string resultMessage(const _RESULTINFO& result);

} // namespace flashwriter

#pragma once

#include "advice/FailureFacts.h"
#include "sequence/context/ResultCode.h"

#include <string>

namespace flashwriter {

// Why the serial monitor could not be opened and what to do about it, as failureAdvice(). speedText
// is the speed as it was typed; the facts are those of portFailureFacts(). Empty for RESULT_OK.
std::string monitorAdvice(ResultCode result, const std::string& speedText,
                          const FailureFacts& facts);

// The same without facts, for as long as there are none, or where none can be had: empty when the
// cause would have to be looked for.
std::string monitorAdvice(ResultCode result, const std::string& speedText);

// What to say while the monitor is open on this port (UTF-8) and the port has gone; empty while it
// is there. Looks at the port without opening it.
std::string openMonitorAdvice(const std::string& portPath);

} // namespace flashwriter

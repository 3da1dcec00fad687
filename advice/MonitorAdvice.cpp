#include "advice/MonitorAdvice.h"

#include "advice/AdviceParts.h"
#include "advice/MonitorSpeed.h"
#include "advice/Printable.h"

namespace flashwriter {

namespace {

const char* const OPEN_AGAIN = "open the monitor again";

// A port that went, or that was none, explains whatever was refused on it.
std::string noPortAdvice(const FailureFacts& facts) {
    if (facts.port.state == PortState::Missing) {
        return goneAdvice(facts, OPEN_AGAIN);
    }
    return facts.port.state == PortState::NotPort ? notPortAdvice(facts) : "";
}

std::string speedTextAdvice(const std::string& speedText) {
    const std::string limits = "type a number from " + std::to_string(SLOWEST_MONITOR_SPEED) +
                               " to " + std::to_string(FASTEST_MONITOR_SPEED) + ", in digits only.";
    return speedText.empty() ? "The monitor has no speed: " + limits
                             : "\"" + speedText + "\" is no speed for the monitor: " + limits;
}

std::string speedAdvice(const std::string& speedText, const FailureFacts& facts) {
    return firstOf({noPortAdvice(facts),
                    facts.portPath + " cannot be set to " + speedText +
                        " bits per second: choose another speed, such as 115200 or 9600."});
}

std::string linesAdvice(const FailureFacts& facts) {
    return firstOf({noPortAdvice(facts),
                    facts.portPath + " refuses to set DTR: it has no modem lines, or was unplugged "
                                     "in between. Check that it is the board's adapter, and plug "
                                     "it in again."});
}

// What needs no facts.
std::string plainMonitorAdvice(ResultCode result, const std::string& speedText) {
    switch (result) {
    case RESULT_MONITOR_TIMER_FAILED:
        return std::string("The timer that fetches what the board sends could not be started: "
                           "close other programs and ") +
               OPEN_AGAIN + ".";
    case RESULT_INIT_FAILED:
        return std::string("There was not enough memory, or no thread, for the monitor: close "
                           "other programs and ") +
               OPEN_AGAIN + ".";
    case RESULT_BAUD_RATE_CHANGE_FAILED:
        return monitorSpeed(speedText) ? "" : speedTextAdvice(speedText);
    default:
        return "";
    }
}

std::string portAdviceFor(ResultCode result, const std::string& speedText,
                          const FailureFacts& facts) {
    switch (result) {
    case RESULT_PORT_NOT_SELECTED:
    case RESULT_PORT_OPEN_ERROR:
        return portAdvice(result, facts);
    case RESULT_PARAMETER_ERROR:
        return isTooLong(facts.portPath) ? longPathAdvice("port", facts.portPath)
                                         : unknownAdvice(result);
    case RESULT_SEND_FAILED:
        return linesAdvice(facts);
    case RESULT_BAUD_RATE_CHANGE_FAILED:
        return speedAdvice(speedText, facts);
    default:
        return unknownAdvice(result);
    }
}

} // namespace

std::string monitorAdvice(ResultCode result, const std::string& speedText,
                          const FailureFacts& facts) {
    if (result == RESULT_OK) {
        return "";
    }
    const std::string plain = plainMonitorAdvice(result, speedText);
    return printable(plain.empty() ? portAdviceFor(result, speedText, facts) : plain);
}

std::string monitorAdvice(ResultCode result, const std::string& speedText) {
    return printable(plainMonitorAdvice(result, speedText));
}

std::string openMonitorAdvice(const std::string& portPath) {
    FailureFacts facts;
    facts.portPath = portPath;
    facts.port = portFacts(portPath);
    return facts.port.state == PortState::Missing
               ? printable(goneAdvice(facts, "press Close, then Open"))
               : "";
}

} // namespace flashwriter

#include "advice/AdviceParts.h"

#include <algorithm>
#include <cstring>

namespace flashwriter {

namespace {

std::string refusedAdvice(const FailureFacts& facts) {
    const PortFacts& port = facts.port;
    const std::string ofGroup = facts.portPath + " belongs to group " + port.group;
    if (port.groupMayUse && port.membership == GroupMembership::None) {
        return ofGroup + " and " + port.user + " is not in it: run \"sudo usermod -aG " +
               port.group + " " + port.user + "\" and log in again.";
    }
    if (port.groupMayUse && port.membership == GroupMembership::NextLogin) {
        return ofGroup + ", which " + port.user +
               " has joined since this session began: log out and in again.";
    }
    return facts.portPath + " may not be opened by " + port.user +
           ", and its group would not help: have its permissions changed, for example by a udev "
           "rule.";
}

std::string notChosenAdvice(const FailureFacts& facts) {
    return "No port is chosen. " + portsHere(facts);
}

std::string openAdvice(const FailureFacts& facts) {
    if (facts.portPath.empty()) {
        return notChosenAdvice(facts);
    }
    return firstOf({portObstacle(facts),
                    facts.portPath +
                        " is there and may be opened, but the system refuses: another user's "
                        "program may hold it, or the adapter is stuck. Close that program, or plug "
                        "the adapter in again."});
}

} // namespace

std::string portsHere(const FailureFacts& facts) {
    if (facts.ports.empty()) {
        return "No USB-serial adapter is to be seen: plug it in.";
    }
    std::string text = "Ports here: ";
    for (const std::string& port : facts.ports) {
        text += (&port == &facts.ports.front() ? "" : ", ") + port;
    }
    return text + ".";
}

std::string portObstacle(const FailureFacts& facts) {
    switch (facts.port.state) {
    case PortState::Missing:
        return "No such port: " + facts.portPath + ". " + portsHere(facts);
    case PortState::Hidden:
        return facts.portPath + " cannot be looked at: " + std::strerror(facts.port.error) +
               ". Check the path, and who may pass the directories in it.";
    case PortState::NotPort:
        return notPortAdvice(facts);
    case PortState::Refused:
        return refusedAdvice(facts);
    case PortState::Permitted:
        return facts.port.holders.empty()
                   ? ""
                   : facts.portPath + " is held by " + holderNames(facts) + ": close it first.";
    }
    return "";
}

std::string goneAdvice(const FailureFacts& facts, const std::string& then) {
    return facts.portPath + " has gone: the adapter came loose. Plug it in and " + then + ".";
}

std::string notPortAdvice(const FailureFacts& facts) {
    return facts.portPath + " is not a serial port. " + portsHere(facts);
}

std::string holderNames(const FailureFacts& facts) {
    constexpr std::size_t MOST = 3;
    const auto& holders = facts.port.holders;
    std::string text;
    for (std::size_t i = 0; i < std::min(holders.size(), MOST); ++i) {
        const std::string process = "process " + std::to_string(holders[i].pid);
        text += i == 0 ? "" : ", ";
        text += holders[i].name.empty() ? process : holders[i].name + " (" + process + ")";
    }
    return holders.size() > MOST ? text + " and " + std::to_string(holders.size() - MOST) + " more"
                                 : text;
}

std::string portAdvice(ResultCode result, const FailureFacts& facts) {
    switch (result) {
    case RESULT_PORT_INFO_FAILED:
        return "The system did not tell which serial ports it has. " + portsHere(facts);
    case RESULT_PORT_NOT_SELECTED:
        return notChosenAdvice(facts);
    case RESULT_PORT_OPEN_ERROR:
        return openAdvice(facts);
    default:
        return "";
    }
}

} // namespace flashwriter

#include "advice/AdviceParts.h"
#include "protocol/Frames.h"

#include <array>
#include <cstdio>

namespace flashwriter {

namespace {

// What the board was asked to do.
const char* request(std::uint8_t command) {
    switch (command) {
    case COM_BAUD_RATE_SET:
        return "agree on the speed";
    case COM_RESET:
        return "begin at the chosen speed";
    case COM_SILICON_SIGNATURE:
        return "tell its type and size";
    case COM_BLOCK_BLANK_CHECK:
        return "check a block";
    case COM_BLOCK_ERASE:
        return "erase a block";
    case COM_PROGRAMMING:
        return "take the image";
    case COM_CHECKSUM:
        return "compute its checksum";
    default:
        return "do as it was told";
    }
}

std::string hex(std::uint8_t byte) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "0x%02X", byte);
    return text.data();
}

std::string slower(const FailureFacts& facts) {
    return facts.speedIndex == 0 ? "" : ", or write at 115200";
}

// A port that went, or that somebody else reads too, explains whatever went wrong on it.
std::string portTrouble(const FailureFacts& facts) {
    if (facts.port.state == PortState::Missing) {
        return goneAdvice(facts, "write again");
    }
    if (facts.port.state == PortState::NotPort) {
        return notPortAdvice(facts);
    }
    if (!facts.port.holders.empty()) {
        return facts.portPath + " is also open in " + holderNames(facts) +
               ", which takes away what the board answers: close it and write again.";
    }
    return "";
}

// An adapter that is stuck passes nothing on and says nothing of it: that looks like a board that
// keeps silent.
constexpr const char* MAYBE_STUCK = "; if it stays so, plug the adapter in again.";

std::string neverAnswered(const FailureFacts& facts) {
    return "The board never answered: check that it has power, that " + facts.portPath +
           " is its adapter, and that the data line and DTR are wired to it" + MAYBE_STUCK;
}

std::string timeoutAdvice(const _COMMANDINFO& last, const FailureFacts& facts) {
    if (last.Command == COM_BAUD_RATE_SET) {
        return neverAnswered(facts);
    }
    return std::string("The board stopped answering when it was to ") + request(last.Command) +
           ": check its power and the cable, and write again" + slower(facts) + MAYBE_STUCK;
}

// Attempts after the first are made only when nothing came back.
std::string modeEntryAdvice(const _COMMANDINFO& last, const FailureFacts& facts) {
    if (last.Retry > 0) {
        return neverAnswered(facts);
    }
    return "The computer was too slow for the board, which listens for 100 ms after its reset: "
           "close what keeps it busy and write again.";
}

std::string refusedAdvice(const _COMMANDINFO& last) {
    return std::string("The board refused to ") + request(last.Command) + " (status " +
           hex(last.ST1) +
           "): switch it off and on and write again; if it stays so, the flash may be protected or "
           "worn out.";
}

std::string dataRefusedAdvice(const _COMMANDINFO& last) {
    return "The board did not keep what was written (status " + hex(last.DST1) + ", " +
           hex(last.DST2) +
           "), and its contents are incomplete: write again; if it stays so, check its power; the "
           "flash may be worn out.";
}

std::string lineAdvice(ResultCode result, const _COMMANDINFO& last, const FailureFacts& facts) {
    switch (result) {
    case RESULT_FRAME_FORMAT_ERROR:
    case RESULT_SUM_ERROR:
        return std::string("The answer was damaged when the board was to ") +
               request(last.Command) + ": check the cable, and write again" + slower(facts) + ".";
    case RESULT_SEND_FAILED:
    case RESULT_SEND_TIMEOUT:
        return facts.portPath + " did not take what was sent: plug the adapter in again and write "
                                "again.";
    case RESULT_RECEIVE_TIMEOUT:
        return timeoutAdvice(last, facts);
    case RESULT_MODE_ENTRY_TIMEOUT:
        return modeEntryAdvice(last, facts);
    case RESULT_BAUD_RATE_CHANGE_FAILED:
        return facts.portPath + " cannot be set to the chosen speed: write at 115200.";
    case RESULT_BUFFER_OVERFLOW:
        return "More arrived than the board can have sent: check that " + facts.portPath +
               " is its adapter.";
    default:
        return "";
    }
}

} // namespace

std::string plainAdvice(ResultCode result, const _COMMANDINFO& last) {
    switch (result) {
    case RESULT_INIT_FAILED:
        return "There was not enough memory, or no thread, for the write: close other programs and "
               "write again.";
    case RESULT_PARAMETER_ERROR:
        return std::string("The program asked the board wrongly to ") + request(last.Command) +
               ": this is a fault in the program; please report it.";
    case RESULT_COMMAND_FRAME_ABORT:
        return refusedAdvice(last);
    case RESULT_DATA_FRAME_ABORT:
        return dataRefusedAdvice(last);
    case RESULT_NOT_BLANK:
        return "A block of the board's flash is not blank: write again, which erases it.";
    case RESULT_CHECKSUM_MISMATCH:
        return "The image is written, but the board computes another checksum than the image has: "
               "write again; if it stays so, check the board's power and the cable.";
    default:
        return "";
    }
}

std::string targetAdvice(ResultCode result, const _COMMANDINFO& last, const FailureFacts& facts) {
    const std::string own = plainAdvice(result, last);
    const std::string line = lineAdvice(result, last, facts);
    const std::string trouble = line.empty() ? "" : portTrouble(facts);
    return trouble.empty() ? own + line : trouble;
}

} // namespace flashwriter

#include "board/Fault.h"

#include <charconv>
#include <stdexcept>
#include <utility>

namespace flashwriter::board {

namespace {

constexpr std::pair<FaultKind, const char*> kNames[] = {
    {FaultKind::silence, "silence"},
    {FaultKind::delay, "delay"},
    {FaultKind::wrongSum, "wrong-sum"},
    {FaultKind::wrongLength, "wrong-len"},
    {FaultKind::wrongStart, "wrong-start"},
    {FaultKind::wrongEnd, "wrong-end"},
    {FaultKind::truncated, "truncated"},
    {FaultKind::doubled, "doubled"},
    {FaultKind::resized, "resized"},
    {FaultKind::status, "status"},
    {FaultKind::noiseBefore, "noise-before"},
    {FaultKind::noiseAfter, "noise-after"},
    {FaultKind::unplugReply, "unplug-reply"},
    {FaultKind::unplugFrame, "unplug-frame"},
    {FaultKind::stuck, "stuck"},
    {FaultKind::slowEntry, "slow-entry"},
    {FaultKind::failGet, "fail-get"},
    {FaultKind::failSet, "fail-set"},
    {FaultKind::failBreak, "fail-break"},
};

// The largest parameter that any kind has a use for: milliseconds of an hour.
constexpr std::int64_t kLargestParameter = 3600000;

std::int64_t parseNumber(std::string_view text, std::string_view whole) {
    const bool hex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = hex ? text.substr(2) : text;
    std::int64_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stopped, error] = std::from_chars(digits.data(), end, value, hex ? 16 : 10);
    if (digits.empty() || error != std::errc{} || stopped != end || value < 0 ||
        value > kLargestParameter) {
        throw std::invalid_argument("not a number in the fault '" + std::string(whole) + "'");
    }
    return value;
}

FaultKind parseKind(std::string_view name) {
    for (const auto& [kind, text] : kNames) {
        if (name == text) {
            return kind;
        }
    }
    throw std::invalid_argument("no such fault: '" + std::string(name) + "'");
}

} // namespace

const char* faultName(FaultKind kind) {
    for (const auto& [known, text] : kNames) {
        if (known == kind) {
            return text;
        }
    }
    return "?";
}

Fault parseFault(std::string_view text) {
    Fault fault;
    std::string_view rest = text;
    if (const auto at = rest.find('@'); at != std::string_view::npos) {
        fault.n = static_cast<std::uint32_t>(parseNumber(rest.substr(at + 1), text));
        rest = rest.substr(0, at);
    }
    if (const auto colon = rest.find(':'); colon != std::string_view::npos) {
        fault.parameter = parseNumber(rest.substr(colon + 1), text);
        rest = rest.substr(0, colon);
    }
    fault.kind = parseKind(rest);
    return fault;
}

} // namespace flashwriter::board

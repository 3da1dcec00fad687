// The time-outs reckoned without floating point: every coefficient is a whole number, so a sum of
// terms is one fraction over the clock, rounded up once.
#pragma once

#include <cstdint>
#include <initializer_list>

namespace flashwriter {

__extension__ using Wide = unsigned __int128;

// count times (cycles / clock + microseconds)
struct ExactTerm {
    std::uint64_t count;
    std::uint64_t cycles;
    std::uint64_t microseconds;
};

// The sum of the terms in milliseconds, rounded up. clock in MHz, not 0.
inline Wide exactTime(std::uint64_t clock, std::initializer_list<ExactTerm> terms) {
    Wide numerator = 0;
    for (const ExactTerm& term : terms) {
        numerator += Wide{term.count} * (Wide{term.cycles} + Wide{term.microseconds} * clock);
    }
    const Wide denominator = Wide{1000} * clock;
    return (numerator + denominator - 1) / denominator;
}

} // namespace flashwriter

#include "timing/NSWaitingTimeCalculator.h"

#include "timing/WaitingTimeTable.h"

#include <algorithm>
#include <limits>

namespace flashwriter {
namespace {

using namespace waitingtime;

// A clock of 0 MHz divides by zero: that must be an infinity and not a trap.
static_assert(std::numeric_limits<double>::is_iec559);

constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t MARGIN = 100; // ms, as a floor or as an addition

// The smallest whole number not below a value that is not negative; NEVER for what does not fit.
std::uint64_t roundUp(double value) {
    constexpr double TWO_TO_64 = 18446744073709551616.0;
    if (!(value < TWO_TO_64)) { // written so that it holds for a NaN too
        return NEVER;
    }
    const auto whole = static_cast<std::uint64_t>(value);
    return static_cast<double>(whole) == value ? whole : whole + 1;
}

std::uint64_t milliseconds(double microseconds) {
    return roundUp(microseconds / 1000.0);
}

std::uint64_t withFloor(std::uint64_t time) {
    return std::max(time, MARGIN);
}

std::uint64_t withMargin(std::uint64_t time) {
    return time > NEVER - MARGIN ? NEVER : time + MARGIN;
}

// Evaluates cycles and table rows, in microseconds, at one clock and in one coefficient set.
class Evaluator {
public:
    Evaluator(std::uint64_t megahertz, bool fullSpeed)
        : m_clock(static_cast<double>(megahertz)), m_fullSpeed(fullSpeed) {}

    double cycles(double count) const { return count / m_clock; }
    const Term& term(const Row& row) const { return m_fullSpeed ? row.fullSpeed : row.other; }
    double operator()(const Row& row) const {
        return cycles(term(row).cycles) + term(row).microseconds;
    }

private:
    double m_clock;
    bool m_fullSpeed;
};

} // namespace

// The sums below are written in the order in which they are to be rounded.

void NSWaitingTimeCalculator::Initialize(std::uint64_t frequency, bool fullSpeed) {
    m_bFrequency = frequency;
    m_fFullSpeed = fullSpeed;
}

std::uint64_t NSWaitingTimeCalculator::GetResetTcs1() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(255)));
}

std::uint64_t NSWaitingTimeCalculator::GetBlockEraseTcs3(bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return milliseconds(at(codeFlash ? ERASE_CODE : ERASE_DATA));
}

std::uint64_t NSWaitingTimeCalculator::GetBlockBlankCheckTcs4(std::uint64_t startAddress,
                                                              std::uint64_t endAddress,
                                                              std::uint64_t blockCount,
                                                              bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    const auto blocks = static_cast<double>(blockCount);
    if (!codeFlash) {
        return withFloor(milliseconds(at(BLANK_DATA) + blocks * at(BLANK_DATA_BLOCK)));
    }
    const auto regions = static_cast<double>(getFlashAccessFrequency(startAddress, endAddress));
    return withFloor(milliseconds(at(BLANK_CODE) + blocks * at(BLANK_CODE_BLOCK) +
                                  regions * at(BLANK_CODE_REGION)));
}

std::uint64_t NSWaitingTimeCalculator::GetProgrammingTcs5(bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(codeFlash ? 1432 : 346)));
}

std::uint64_t NSWaitingTimeCalculator::GetProgrammingTds5(bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withMargin(milliseconds(at(codeFlash ? PROGRAM_CODE : PROGRAM_DATA)));
}

std::uint64_t NSWaitingTimeCalculator::GetProgrammingTss5(std::uint64_t startAddress,
                                                          std::uint64_t endAddress,
                                                          std::uint64_t blockCount,
                                                          bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    const auto blocks = static_cast<double>(blockCount);
    if (!codeFlash) {
        return withMargin(milliseconds(at(VERIFY_DATA) + blocks * at(VERIFY_DATA_BLOCK)));
    }
    const auto regions = static_cast<double>(getFlashAccessFrequency(startAddress, endAddress));
    const Term& once = at.term(VERIFY_CODE);
    return withMargin(milliseconds(blocks * at(VERIFY_CODE_BLOCK) + at.cycles(once.cycles) +
                                   once.microseconds + regions * at(VERIFY_CODE_REGION)));
}

std::uint64_t NSWaitingTimeCalculator::GetBaudRateSetTcs6() {
    return 55;
}

std::uint64_t NSWaitingTimeCalculator::GetSecuritySetTcs7() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(168)));
}

std::uint64_t NSWaitingTimeCalculator::GetSecuritySetTds7() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at(SECURITY_SET)));
}

std::uint64_t NSWaitingTimeCalculator::GetSecurityGetTcs8() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withMargin(milliseconds(at.cycles(154)));
}

std::uint64_t NSWaitingTimeCalculator::GetSecurityGetTsd8() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withMargin(milliseconds(at.cycles(212)));
}

std::uint64_t
NSWaitingTimeCalculator::GetSecurityReleaseTcs9(std::uint64_t codeFlashBlockCount,
                                                std::uint64_t dataFlashBlockCount) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    const auto code = static_cast<double>(codeFlashBlockCount);
    const auto data = static_cast<double>(dataFlashBlockCount);
    const auto groups = static_cast<double>(getFlashAccessFrequency(codeFlashBlockCount));
    if (dataFlashBlockCount == 0) {
        return milliseconds(at(RELEASE_CODE_ONLY) + code * at(BLANK_CODE_BLOCK) +
                            groups * at(BLANK_CODE_REGION));
    }
    return milliseconds(at(RELEASE_WITH_DATA) + code * at(BLANK_CODE_BLOCK) +
                        data * at(BLANK_DATA_BLOCK) + groups * at(BLANK_CODE_REGION));
}

std::uint64_t NSWaitingTimeCalculator::GetCheckSumTcs10(bool codeFlash) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(codeFlash ? 203 : 219)));
}

std::uint64_t NSWaitingTimeCalculator::GetCheckSumTsd10(std::uint64_t blockCount) const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    const auto blocks = static_cast<double>(blockCount);
    return withFloor(milliseconds(at.cycles(blocks * 30720) + at.cycles(72)));
}

std::uint64_t NSWaitingTimeCalculator::GetSiliconSignatureTcs11() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(111)));
}

std::uint64_t NSWaitingTimeCalculator::GetSiliconSignatureTsd11() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(512)));
}

std::uint64_t NSWaitingTimeCalculator::GetTdt() const {
    const Evaluator at(m_bFrequency, m_fFullSpeed);
    return withFloor(milliseconds(at.cycles(10)));
}

std::uint64_t NSWaitingTimeCalculator::getFlashAccessFrequency(std::uint64_t startAddress,
                                                               std::uint64_t endAddress) {
    return (endAddress >> 18U) - (startAddress >> 18U) + 1;
}

std::uint64_t NSWaitingTimeCalculator::getFlashAccessFrequency(std::uint64_t blockCount) {
    return roundUp(static_cast<double>(blockCount) * 0.00390625); // 1/256, exact
}

} // namespace flashwriter

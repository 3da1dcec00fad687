// How long to wait for the target's answers. Every operation is a function of the target's clock,
// the coefficient set and its arguments, and returns whole milliseconds.
//
// The names carry the command's number in the protocol and the kind of interval: Tcs ends with the
// status of a command frame, Tds with that of a data frame, Tsd with a data frame from the target,
// Tss with the status that closes a whole transfer.
//
// A calculated time is rounded up; most operations then raise it to at least 100 ms or add 100 ms,
// and some do neither. A result that 64 bits cannot hold, which a clock of 0 MHz makes of every
// calculated one, is UINT64_MAX: no answer is then ever late.
#pragma once

#include <cstdint>

namespace flashwriter {

class NSWaitingTimeCalculator {
public:
    // A 32 MHz clock and the full-speed set.
    NSWaitingTimeCalculator() { Initialize(32, true); }

    // Takes the target's operating clock in MHz and the coefficient set to use from now on.
    void Initialize(std::uint64_t frequency, bool fullSpeed);

    // Reset. At least 100.
    std::uint64_t GetResetTcs1() const;

    // Erase of one block of the code flash, or of the data flash. Neither floor nor margin.
    std::uint64_t GetBlockEraseTcs3(bool codeFlash) const;

    // Blank check of blockCount blocks of 1024 bytes between two addresses, the second inclusive.
    // At least 100. The addresses count for the code flash only.
    std::uint64_t GetBlockBlankCheckTcs4(std::uint64_t startAddress, std::uint64_t endAddress,
                                         std::uint64_t blockCount, bool codeFlash) const;

    // Programming: the command (at least 100), ...
    std::uint64_t GetProgrammingTcs5(bool codeFlash) const;
    // ... each data frame (100 added) ...
    std::uint64_t GetProgrammingTds5(bool codeFlash) const;
    // ... and the internal verify after the last one (100 added); arguments as for the blank check.
    std::uint64_t GetProgrammingTss5(std::uint64_t startAddress, std::uint64_t endAddress,
                                     std::uint64_t blockCount, bool codeFlash) const;

    // Baud Rate Set: always 55.
    static std::uint64_t GetBaudRateSetTcs6();

    // Security Set: the command and its data frame, each at least 100.
    std::uint64_t GetSecuritySetTcs7() const;
    std::uint64_t GetSecuritySetTds7() const;

    // Security Get: the command and the target's data frame, 100 added to each.
    std::uint64_t GetSecurityGetTcs8() const;
    std::uint64_t GetSecurityGetTsd8() const;

    // Security Release of that many blocks; no data flash is another case than few blocks of it.
    // Neither floor nor margin.
    std::uint64_t GetSecurityReleaseTcs9(std::uint64_t codeFlashBlockCount,
                                         std::uint64_t dataFlashBlockCount) const;

    // Checksum: the command, and the target's data frame over blockCount blocks. At least 100.
    std::uint64_t GetCheckSumTcs10(bool codeFlash) const;
    std::uint64_t GetCheckSumTsd10(std::uint64_t blockCount) const;

    // Silicon Signature: the command and the target's data frame. At least 100.
    std::uint64_t GetSiliconSignatureTcs11() const;
    std::uint64_t GetSiliconSignatureTsd11() const;

    // The protocol's Tdt interval. At least 100.
    std::uint64_t GetTdt() const;

    // Number of 256 KiB regions that the range touches, its end address inclusive. An end in a
    // region before the start's wraps modulo 2^64.
    static std::uint64_t getFlashAccessFrequency(std::uint64_t startAddress,
                                                 std::uint64_t endAddress);

    // Number of groups of 256 blocks, the last one perhaps not full.
    static std::uint64_t getFlashAccessFrequency(std::uint64_t blockCount);

private:
    std::uint64_t m_bFrequency = 0; // MHz
    bool m_fFullSpeed = false;
};

} // namespace flashwriter

// The records of one write. They are plain values: the caller fills a _CONTEXTINFO, hands it to a
// driver by value, and the driver and the exchanges read and update their copy. A value-initialised
// record ({}) is all zeros. Character fields hold NUL-terminated UTF-8; times are milliseconds.
#pragma once

#include "sequence/context/ResultCode.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace flashwriter {

// The command exchange in progress, or the last one.
struct _COMMANDINFO {
    std::uint8_t Command; // command code
    std::uint8_t ST1;     // status byte of the last status frame; 0x06 (ACK) means accepted
    std::uint8_t DST1;    // first status byte of the last data-frame status
    std::uint8_t DST2;    // second status byte of the last data-frame status
    std::uint64_t Retry;  // number of the attempt under way, from 0
};

// The outcome of a whole write.
struct _RESULTINFO {
    std::uint64_t Result; // result code
    _COMMANDINFO ComInfo; // the last exchange, as it stood at the end
};

struct _TARGETFILEINFO {
    char FilePath[260];
    std::uint64_t ProgramAddress; // this and the three below are not read by the drivers
    std::uint64_t ProgramSize;
    std::uint64_t DataAddress;
    std::uint64_t DataSize;
};

// The data bytes of a seven-byte Baud Rate Set status.
struct _BAUDRATESETSTAT {
    std::uint8_t D01;
    std::uint8_t D02;
};

// The target's Silicon Signature. Three-byte addresses are least significant byte first.
struct _SILICONSIGNATURE {
    std::uint8_t DevCode[3];
    std::uint8_t DevName[11]; // ten characters; position 10 keeps the zero of initialisation
    std::uint8_t CodeEndAddress[3];
    std::uint8_t DataEndAddress[3]; // 0: no data flash
    std::uint8_t FVer[3];           // three digits, most significant first
};

// Decoding a signature stores a zero at position 11 of the name, which is where the code end
// address begins; it is decoded next and overwrites that zero.
static_assert(offsetof(_SILICONSIGNATURE, CodeEndAddress) ==
              offsetof(_SILICONSIGNATURE, DevName) + 11);

struct _SECURITYGETINFO {
    std::uint8_t Flg;
    std::uint8_t Bot;
    std::uint8_t Ssl;
    std::uint8_t Ssh;
    std::uint8_t Sel;
    std::uint8_t Seh;
};

// Everything one write knows.
struct _CONTEXTINFO {
    std::uint8_t BaudRate;    // 0: 115200, 1: 250000, 2: 500000, 3: 1000000 bits per second
    _RESULTINFO* pResultInfo; // borrowed; receives the outcome
    char PortName[260];       // device path of the serial port
    _TARGETFILEINFO TargetFileInfo;
    _BAUDRATESETSTAT BaudRateStat;
    _SILICONSIGNATURE SiliconSignature;
    _SECURITYGETINFO SecurityGetInfo;
    _COMMANDINFO ComInfo;
    std::uint64_t TransitionStartTime; // when reset was released
    std::uint64_t TransitionEndTime;   // when Baud Rate Set was last sent
    std::uint64_t ComRetryMax;         // attempts of a command exchange
    std::uint64_t RetryWaitTime;       // pause between two attempts
    std::uint64_t SendWait;            // pause before each send and between line changes
    std::uint64_t ReceiveTimeout;      // time allowed for the Baud Rate Set status
};

// Progress bookkeeping of a driver. Stages: 100 reading the file, 101 entering programming mode,
// 102 blank check and erase, 103 writing.
struct _PROGRESSINIFO {
    std::uint64_t Step;            // stage
    std::uint64_t CurrentProgress; // percent of the whole, 0 to 100
    double Share;                  // percentage points that the stage may add
    std::uint64_t InitProgress;    // CurrentProgress when the stage began
    double Incremental;            // percentage points per unit of the stage's work
};

// Stores a text with its NUL in one of the records' path fields. A text that does not fit, or that
// holds a NUL of its own, is refused with RESULT_PARAMETER_ERROR and the field left as it was:
// a shortened path would name another file.
ResultCode storePath(char (&field)[260], const std::string& text);

} // namespace flashwriter

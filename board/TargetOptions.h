#pragma once

#include "board/BoardTime.h"
#include "board/FlashMemory.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace flashwriter::board {

// What the program in the flash does while it runs: it says a text again and again.
struct MonitorOptions {
    std::string text;                             // empty: it says nothing
    BoardTime interval = std::chrono::seconds(1); // from one beginning to the next; 0: only once
    std::uint32_t bitsPerSecond = 9600;
};

// A mode entry after which the target listens late.
struct SlowEntry {
    std::uint32_t n = 0; // which mode entry, from 1; 0: every one
    BoardTime time{}; // Baud Rate Set is not heard when it begins earlier than this after release;
                      // later than that it is answered, however late it is
};

// Everything that can be chosen about the simulated target.
struct TargetOptions {
    FlashOptions flash;

    std::array<std::uint8_t, 3> deviceCode{0x10, 0x00, 0x06};
    std::string deviceName = "BOARD-64K";         // cut or filled with blanks to 10 characters
    std::array<std::uint8_t, 3> version{3, 0, 3}; // most significant digit first
    // What the signature gives as the last address of data flash, 24 bits; without it the truth.
    std::optional<std::uint32_t> signatureDataEnd{};
    std::array<std::uint8_t, 8> security{0xFE, 0x03, 0x00, 0x00, 0x3F, 0x00, 0x00, 0x00};

    bool invertedDtr = false;           // DTR off holds the target in reset, on releases it
    bool baudRateReplyWithData = false; // Baud Rate Set is answered by 7 bytes instead of 5
    bool shortDataStatus = false;       // data frames are answered by 5 bytes instead of 6

    BoardTime modeWindow = std::chrono::milliseconds(100);     // release of reset to Baud Rate Set
    BoardTime interByteLimit = std::chrono::milliseconds(100); // a longer gap ends a frame begun
    BoardTime commandTime{};    // from a frame's last bit to its answer, beside the times below
    BoardTime blankCheckTime{}; // per block
    BoardTime eraseTime{};      // per block
    BoardTime programTime{};    // per data frame
    BoardTime checksumTime{};   // per block
    BoardTime frameGap{};       // between two frames that the target sends in a row

    MonitorOptions monitor;
    std::vector<SlowEntry> slowEntries;
};

} // namespace flashwriter::board

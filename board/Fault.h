#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace flashwriter::board {

// What the simulated board or its adapter can do wrong.
enum class FaultKind : std::uint8_t {
    // On a reply frame:
    silence,     // it is not sent
    delay,       // it is sent so many milliseconds later
    wrongSum,    // its checksum byte is off by the parameter (1)
    wrongLength, // its length byte is off by the parameter (1), the checksum is not adapted
    wrongStart,  // its first byte is the parameter (0x15)
    wrongEnd,    // its last byte is the parameter (0x17)
    truncated,   // its last bytes are missing, as many as the parameter says (1)
    doubled,     // it is sent twice
    resized,     // it is made to so many bytes in all (5 to 26), with a fitting length and checksum
    status,      // its first data byte is the parameter, with a fitting checksum
    noiseBefore, // so many noise bytes (3) come before it
    noiseAfter,  // so many noise bytes (3) come after it
    unplugReply, // so many of its bytes (2) are sent, then the adapter is unplugged
    // On a host frame:
    unplugFrame, // so many of its bytes (1) are heard, then the adapter is unplugged
    stuck,       // it is no longer taken, nor is anything after it; the parameter is how many bytes
                 // the adapter still has room for (without it: as much as the system buffers)
    // On a mode entry:
    slowEntry, // Baud Rate Set is not heard in the first so many milliseconds (150)
    // On a request for the lines, each kind counted by itself; the parameter is the errno (EIO):
    failGet,   // reading the modem lines
    failSet,   // setting the modem lines
    failBreak, // starting or ending BREAK
};

// One fault. What n counts depends on the kind, see above; it counts from 1 over the board's life,
// and 0 means every one.
struct Fault {
    static constexpr std::int64_t kDefault = -1;

    FaultKind kind = FaultKind::silence;
    std::uint32_t n = 0;
    std::int64_t parameter = kDefault; // kDefault: the value that stands in brackets above

    bool hits(FaultKind asked, std::uint32_t index) const {
        return kind == asked && (n == 0 || n == index);
    }
    std::int64_t parameterOr(std::int64_t fallback) const {
        return parameter == kDefault ? fallback : parameter;
    }
};

// The word for a kind on the command line, for example "wrong-sum".
const char* faultName(FaultKind kind);

// Reads "kind[:parameter][@n]", the parameter decimal or 0x-hexadecimal, for example
// "status:0x07@3". Throws std::invalid_argument with a text for the user.
Fault parseFault(std::string_view text);

} // namespace flashwriter::board

// The coefficients of the time-outs, the full-speed set on the left and the other on the right.
// A term is a number of target clock cycles and a fixed number of microseconds. Only
// NSWaitingTimeCalculator reads this table.
#pragma once

namespace flashwriter::waitingtime {

struct Term {
    double cycles;
    double microseconds;
};

// One term in both coefficient sets.
struct Row {
    Term fullSpeed;
    Term other;
};

// Block Erase.
inline constexpr Row ERASE_CODE{{67731, 255098}, {59455, 265331}};
inline constexpr Row ERASE_DATA{{281423, 264790}, {248862, 299307}};

// Block Blank Check: once, then per block, then (code flash only) per 256 KiB region. Security
// Release checks the same blocks and regions and so shares their terms.
inline constexpr Row BLANK_CODE{{3805, 91}, {3799, 134}};
inline constexpr Row BLANK_CODE_BLOCK{{1457, 80}, {1259, 278}};
inline constexpr Row BLANK_CODE_REGION{{203, 18}, {199, 57}};
inline constexpr Row BLANK_DATA{{2503, 86}, {2494, 168}};
inline constexpr Row BLANK_DATA_BLOCK{{5827, 318}, {5035, 1110}};

// Programming: one data frame, then the internal verify of the whole range.
inline constexpr Row PROGRAM_CODE{{113502, 71753}, {107803, 138891}};
inline constexpr Row PROGRAM_DATA{{309870, 219761}, {287076, 488315}};
inline constexpr Row VERIFY_CODE{{1732, 36}, {1732, 36}};
inline constexpr Row VERIFY_CODE_BLOCK{{7096, 892}, {4351, 7324}};
inline constexpr Row VERIFY_CODE_REGION{{182, 17}, {184, 44}};
inline constexpr Row VERIFY_DATA{{397, 30}, {398, 58}};
inline constexpr Row VERIFY_DATA_BLOCK{{28382, 3568}, {17403, 29293}};

// Security Set and Security Release, the latter with and without data flash.
inline constexpr Row SECURITY_SET{{277095, 1027564}, {242909, 1075967}};
inline constexpr Row RELEASE_WITH_DATA{{146110, 511868}, {128408, 534723}};
inline constexpr Row RELEASE_CODE_ONLY{{145783, 511837}, {128084, 534653}};

} // namespace flashwriter::waitingtime

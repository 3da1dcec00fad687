#pragma once

#include "sequence/context/DiagnosticLog.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace flashwriter {

using Lines = std::vector<std::string>;

// Keeps the lines of the diagnostic log while it lives, but for those of the serial port, which
// come on two threads and once for every chunk of bytes. Afterwards lines go nowhere.
class DiagnosticLines {
public:
    DiagnosticLines() {
        lines().clear();
        setDiagnosticSink(keep);
    }
    ~DiagnosticLines() {
        setDiagnosticSink([](const char*) {});
    }
    DiagnosticLines(const DiagnosticLines&) = delete;
    DiagnosticLines& operator=(const DiagnosticLines&) = delete;

    static Lines all() {
        const std::lock_guard guard(mutex());
        return lines();
    }

private:
    static void keep(const char* text) {
        constexpr std::array<std::string_view, 5> SERIAL{
            "SendDataSize: ", "Receive Size : ", "baffaring!", "ReceiveThread exit!", "errno:"};
        const std::string_view line(text);
        if (std::ranges::none_of(SERIAL, [&](std::string_view s) { return line.starts_with(s); })) {
            const std::lock_guard guard(mutex());
            lines().emplace_back(line);
        }
    }
    static Lines& lines() {
        static Lines kept;
        return kept;
    }
    static std::mutex& mutex() {
        static std::mutex guarded;
        return guarded;
    }
};

// One attempt at a data frame, up to where its status is looked at.
struct AttemptLines {
    std::uint64_t block;
    std::uint64_t part;
    std::uint64_t attempt;
    std::uint8_t firstByte;
    bool finalFrame;
    std::size_t replySize;

    void appendTo(Lines& lines) const {
        std::array<char, 32> address{};
        std::snprintf(address.data(), address.size(), "pbDataAddr  = 0x%08X", firstByte);
        const std::string size = std::to_string(replySize);
        lines.insert(lines.end(), {"--", "i           = " + std::to_string(block),
                                   "j           = " + std::to_string(part),
                                   "k(Retry)    = " + std::to_string(attempt), address.data(),
                                   "Length      = 256",
                                   std::string("fFinalFrame = ") + (finalFrame ? "TRUE" : "FALSE"),
                                   "wait response send data frame (dwLength = " + size +
                                       ")(tDS5=176)-> dwRet = 0x00000000",
                                   "wait send data frame -> dwRecvLen = " + size});
    }
};

} // namespace flashwriter

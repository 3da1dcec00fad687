#include "sequence/context/ResultMessage.h"

#include <array>
#include <cstdio>

namespace flashwriter {

std::string resultMessage(const _RESULTINFO& result) {
    if (result.Result == RESULT_OK) {
        return "The writing processing succeeded. ";
    }
    const _COMMANDINFO& last = result.ComInfo;
    const std::uint64_t shownRetry = last.Retry != 0 ? last.Retry + 1 : 0;
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(),
                  "The writing processing failed\r\n"
                  "ERROR:0x%08lX\r\n"
                  "COM = 0x%02X, Retry = %lu\r\n"
                  "ST1 = 0x%02X, DST1 = 0x%02X, DST2 = 0x%02X\r\n",
                  static_cast<unsigned long>(result.Result), last.Command,
                  static_cast<unsigned long>(shownRetry), last.ST1, last.DST1, last.DST2);
    return text.data();
}

} // namespace flashwriter

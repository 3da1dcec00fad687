#include "console/FailureAdvice.h"

#include "console/AdviceParts.h"
#include "console/Printable.h"

#include <array>
#include <cstdio>

namespace flashwriter {

namespace {

std::string unknownAdvice(ResultCode result) {
    std::array<char, 160> text{};
    std::snprintf(text.data(), text.size(),
                  "Result 0x%08llX has no explanation here: write again with 2>diagnostics.log and "
                  "see what that file says.",
                  static_cast<unsigned long long>(result));
    return text.data();
}

} // namespace

std::string failureAdvice(const _RESULTINFO& result, const FailureFacts& facts) {
    if (result.Result == RESULT_OK) {
        return "";
    }
    for (const std::string& advice :
         {portAdvice(result.Result, facts), targetAdvice(result.Result, result.ComInfo, facts),
          fileAdvice(result.Result, facts)}) {
        if (!advice.empty()) {
            return printable(advice);
        }
    }
    return unknownAdvice(result.Result);
}

} // namespace flashwriter

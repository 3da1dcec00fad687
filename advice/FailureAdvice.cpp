#include "advice/FailureAdvice.h"

#include "advice/AdviceParts.h"
#include "advice/Printable.h"

#include <array>
#include <cstdio>

namespace flashwriter {

namespace {

std::string unknownAdvice(ResultCode result) {
    std::array<char, 192> text{};
    std::snprintf(text.data(), text.size(),
                  "Result 0x%08llX has no explanation here: start the program with standard error "
                  "going to a file, write again, and see what the diagnostics in it say.",
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

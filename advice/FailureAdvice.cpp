#include "advice/FailureAdvice.h"

#include "advice/AdviceParts.h"
#include "advice/Printable.h"

namespace flashwriter {

std::string failureAdvice(const _RESULTINFO& result, const FailureFacts& facts) {
    if (result.Result == RESULT_OK) {
        return "";
    }
    return printable(firstOf({portAdvice(result.Result, facts),
                              targetAdvice(result.Result, result.ComInfo, facts),
                              fileAdvice(result.Result, facts), unknownAdvice(result.Result)}));
}

std::string failureAdvice(const _RESULTINFO& result) {
    return printable(plainAdvice(result.Result, result.ComInfo));
}

} // namespace flashwriter

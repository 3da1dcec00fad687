#pragma once

#include "sequence/context/ContextInfo.h"

namespace flashwriter::testing {

inline _RESULTINFO failure(std::uint64_t code, std::uint64_t retry) {
    return {.Result = code,
            .ComInfo = {.Command = 0x40, .ST1 = 0x0A, .DST1 = 0xFF, .DST2 = 0x06, .Retry = retry}};
}

// Gives a controller an outcome that is gone when the call has returned.
template <class Controller>
std::uint64_t setResult(Controller& controller, _RESULTINFO result) {
    _CONTEXTINFO context{};
    context.pResultInfo = &result;
    return controller.setResult(context);
}

} // namespace flashwriter::testing

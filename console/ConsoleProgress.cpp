#include "console/ConsoleProgress.h"

#include "console/Interrupt.h"

#include <utility>

namespace flashwriter {

ConsoleProgress::ConsoleProgress(MainQueue mainQueue, ConsoleOutput& output,
                                 const _CONTEXTINFO& context)
    : m_mainQueue(std::move(mainQueue)), m_output(output), m_context(context) {}

std::uint64_t ConsoleProgress::UpdateProgress(std::int32_t step, std::int32_t andProgress) {
    noteStage(step);
    m_mainQueue([self = shared_from_this(), step, andProgress] {
        self->m_output.showProgress(step, andProgress);
    });
    return 0;
}

std::uint64_t ConsoleProgress::setResult(_CONTEXTINFO context) {
    m_context = context;
    noteOutcome(context.pResultInfo->Result);
    return 0;
}

void ConsoleProgress::close() {
    m_output.hideProgress();
}

} // namespace flashwriter

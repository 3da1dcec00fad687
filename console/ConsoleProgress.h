#pragma once

#include "console/ConsoleOutput.h"
#include "sequence/MainQueue.h"
#include "sequence/ProgressWindow.h"

#include <memory>

namespace flashwriter {

// The progress window of a terminal. Owned by a std::shared_ptr. What the thread of the write tells
// it is drawn on the main thread: a terminal that somebody has stopped must not stop the write.
class ConsoleProgress final : public ProgressWindow,
                              public std::enable_shared_from_this<ConsoleProgress> {
public:
    // The output is borrowed and must outlive the tasks that the queue takes.
    ConsoleProgress(MainQueue mainQueue, ConsoleOutput& output, const _CONTEXTINFO& context);

    std::uint64_t UpdateProgress(std::int32_t step, std::int32_t andProgress) override;
    std::uint64_t setResult(_CONTEXTINFO context) override;
    void close() override;

    // The context at the end of the write; as it was given, when the write did not get there. Main
    // thread, after the thread of the write has ended.
    const _CONTEXTINFO& context() const { return m_context; }

private:
    MainQueue m_mainQueue;
    ConsoleOutput& m_output;
    _CONTEXTINFO m_context;
};

} // namespace flashwriter

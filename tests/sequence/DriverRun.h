// One write by a driver, with everything that the windows would be told written down.
#pragma once

#include "sequence/NSSequenceProcessor.h"
#include "sequence/NSSequenceProcessorForMot.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace flashwriter {

// Stands for the main thread: keeps the tasks until the test runs them.
class TestMainQueue {
public:
    MainQueue handle();
    // Runs what is there, in order; the number of tasks.
    std::size_t run();

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_tasks;
};

using ProgressCalls = std::vector<std::pair<int, int>>;

class RecordingWindow : public ProgressWindow {
public:
    std::uint64_t UpdateProgress(std::int32_t step, std::int32_t andProgress) override;
    std::uint64_t setResult(_CONTEXTINFO context) override;
    void close() override;

    ProgressCalls progress;
    std::vector<_CONTEXTINFO> results; // one for each setResult()
    _RESULTINFO outcomeWhenSet{};      // what pResultInfo held then
    int closings = 0;
    int closingsWhenSet = 0; // 0, because the result is there before the window closes
};

class RecordingDelegate : public NSSequenceProcessorDelegate,
                          public NSSequenceProcessorForMotDelegate {
public:
    void delegateAddLog(const std::string& text) override { log.push_back(text); }

    std::vector<std::string> log;
};

struct RunRecord {
    ResultCode returned = 0;
    _RESULTINFO outcome{};
    std::vector<std::string> log;
    std::shared_ptr<RecordingWindow> window;
};

// A context as the program fills it. Throws std::length_error for a path that does not fit.
_CONTEXTINFO contextFor(const std::string& port, std::uint8_t baudRate, const std::string& file,
                        _RESULTINFO& outcome);

// Runs one write to its end on a thread of its own, with the driver for the file's extension.
RunRecord runDriver(const std::string& port, std::uint8_t baudRate, const std::string& file);

// The same with a driver that the test made.
template <class Driver>
RunRecord runWith(const std::shared_ptr<Driver>& driver, TestMainQueue& queue,
                  const std::string& port, std::uint8_t baudRate, const std::string& file);

// And with a context that the test filled; its pResultInfo is replaced by the record's.
template <class Driver>
RunRecord runWith(const std::shared_ptr<Driver>& driver, TestMainQueue& queue,
                  _CONTEXTINFO context);

} // namespace flashwriter

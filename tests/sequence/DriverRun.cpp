#include "tests/sequence/DriverRun.h"

#include <stdexcept>
#include <thread>

namespace flashwriter {

MainQueue TestMainQueue::handle() {
    return [this](std::function<void()> task) {
        const std::lock_guard guard(m_mutex);
        m_tasks.push_back(std::move(task));
    };
}

std::size_t TestMainQueue::run() {
    std::deque<std::function<void()>> tasks;
    {
        const std::lock_guard guard(m_mutex);
        tasks.swap(m_tasks);
    }
    for (const auto& task : tasks) {
        task();
    }
    return tasks.size();
}

std::uint64_t RecordingWindow::UpdateProgress(std::int32_t step, std::int32_t andProgress) {
    progress.emplace_back(step, andProgress);
    return 0;
}

std::uint64_t RecordingWindow::setResult(_CONTEXTINFO context) {
    results.push_back(context);
    outcomeWhenSet = *context.pResultInfo;
    closingsWhenSet = closings;
    return 0;
}

void RecordingWindow::close() {
    ++closings;
}

_CONTEXTINFO contextFor(const std::string& port, std::uint8_t baudRate, const std::string& file,
                        _RESULTINFO& outcome) {
    _CONTEXTINFO context{};
    context.BaudRate = baudRate;
    context.pResultInfo = &outcome;
    if (storePath(context.PortName, port) != RESULT_OK ||
        storePath(context.TargetFileInfo.FilePath, file) != RESULT_OK) {
        throw std::length_error("a path that no context holds");
    }
    return context;
}

template <class Driver>
RunRecord runWith(const std::shared_ptr<Driver>& driver, TestMainQueue& queue,
                  const std::string& port, std::uint8_t baudRate, const std::string& file) {
    _RESULTINFO replaced{};
    return runWith(driver, queue, contextFor(port, baudRate, file, replaced));
}

template <class Driver>
RunRecord runWith(const std::shared_ptr<Driver>& driver, TestMainQueue& queue,
                  _CONTEXTINFO context) {
    RunRecord record;
    RecordingDelegate delegate;
    driver->setDelegate(&delegate);
    record.window = std::make_shared<RecordingWindow>();
    context.pResultInfo = &record.outcome;
    std::thread worker([&] { record.returned = driver->start(context, record.window); });
    worker.join();
    queue.run();
    driver->setDelegate(nullptr);
    record.log = delegate.log;
    return record;
}

template RunRecord runWith(const std::shared_ptr<NSSequenceProcessor>&, TestMainQueue&,
                           const std::string&, std::uint8_t, const std::string&);
template RunRecord runWith(const std::shared_ptr<NSSequenceProcessor>&, TestMainQueue&,
                           _CONTEXTINFO);
template RunRecord runWith(const std::shared_ptr<NSSequenceProcessorForMot>&, TestMainQueue&,
                           const std::string&, std::uint8_t, const std::string&);

RunRecord runDriver(const std::string& port, std::uint8_t baudRate, const std::string& file) {
    TestMainQueue queue;
    if (file.ends_with(".mot")) {
        return runWith(std::make_shared<NSSequenceProcessorForMot>(queue.handle()), queue, port,
                       baudRate, file);
    }
    return runWith(std::make_shared<NSSequenceProcessor>(queue.handle()), queue, port, baudRate,
                   file);
}

} // namespace flashwriter

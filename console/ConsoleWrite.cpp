#include "console/ConsoleWrite.h"

#include "advice/FailureAdvice.h"
#include "console/Arguments.h"
#include "console/ConsoleOutput.h"
#include "console/ConsoleProgress.h"
#include "console/Interrupt.h"
#include "console/MainLoop.h"
#include "sequence/NSSequenceProcessor.h"
#include "sequence/NSSequenceProcessorForMot.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/ResultMessage.h"
#include "serial/StandardStreams.h"
#include "targetfile/PathExtension.h"

#include <unistd.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <variant>

namespace flashwriter {

namespace {

constexpr int WRITTEN = 0;
constexpr int FAILED = 1;

// Said when there is no memory to say more.
constexpr std::string_view NO_MEMORY = "flashwrite: not enough memory\n";
constexpr std::string_view WRITTEN_WITHOUT_MEMORY =
    "flashwrite: the image is written and verified, but there is not enough memory to go on\n";

// Prints the log of either driver as it comes.
class LogPrinter final : public NSSequenceProcessorDelegate,
                         public NSSequenceProcessorForMotDelegate {
public:
    explicit LogPrinter(ConsoleOutput& output) : m_output(output) {}
    void delegateAddLog(const std::string& text) override { m_output.write(text); }

private:
    ConsoleOutput& m_output;
};

// Runs one write on a thread of its own, while the calling thread does the main thread's work.
// Returns the context as it is at the end. What the outcome holds before stays there when the write
// cannot even begin, or ends for want of memory.
template <class Driver>
_CONTEXTINFO runWrite(const _CONTEXTINFO& context, ConsoleOutput& output) {
    MainLoop loop;
    LogPrinter printer(output);
    const auto driver = std::make_shared<Driver>(loop.queue());
    driver->setDelegate(&printer);
    const auto window = std::make_shared<ConsoleProgress>(loop.queue(), output, context);
    std::thread worker([&] {
        try {
            driver->start(context, window);
        } catch (const std::exception& error) {
            diagnosticLog("start: %s", error.what());
        }
        loop.end();
    });
    loop.run();
    worker.join();
    return window->context();
}

_CONTEXTINFO tryWrite(const _CONTEXTINFO& context, ConsoleOutput& output) {
    const bool isMot = hasPathExtension(context.TargetFileInfo.FilePath, "mot");
    try {
        return isMot ? runWrite<NSSequenceProcessorForMot>(context, output)
                     : runWrite<NSSequenceProcessor>(context, output);
    } catch (const std::exception& error) {
        diagnosticLog("start: %s", error.what());
        return context;
    }
}

void report(const _CONTEXTINFO& context, ConsoleOutput& output) {
    const _RESULTINFO& result = *context.pResultInfo;
    std::string message = resultMessage(result);
    std::erase(message, '\r');
    output.hideProgress();
    output.writeLines(message);
    if (result.Result != RESULT_OK) {
        output.writeLines(failureAdvice(result, failureFacts(context)));
    }
}

int statusOf(const _RESULTINFO& result) {
    return result.Result == RESULT_OK ? WRITTEN : FAILED;
}

int end(const NoWrite& reason) {
    writeAll(reason.status == 0 ? STDOUT_FILENO : STDERR_FILENO, reason.text);
    return reason.status;
}

int runProgram(int argc, const char* const* argv, _RESULTINFO& result) {
    const auto arguments = parseArguments(argc, argv);
    if (const auto* reason = std::get_if<NoWrite>(&arguments)) {
        return end(*reason);
    }
    ConsoleOutput output(STDOUT_FILENO, STDERR_FILENO);
    installInterruptHandlers(output.showsProgress());
    if (output.showsProgress()) {
        setDiagnosticSink([](const char*) {}); // they would run through the progress
    }
    auto context = std::get<_CONTEXTINFO>(arguments);
    context.pResultInfo = &result;
    report(tryWrite(context, output), output);
    return statusOf(result);
}

} // namespace

int consoleWrite(int argc, const char* const* argv) {
    secureStandardStreams();
    _RESULTINFO result{};
    result.Result = RESULT_INIT_FAILED; // until a write says otherwise
    try {
        return runProgram(argc, argv, result);
    } catch (const std::exception&) {
        // Before the write, or after it, when some of the outcome may have been told already.
        writeAll(STDERR_FILENO, result.Result == RESULT_OK ? WRITTEN_WITHOUT_MEMORY : NO_MEMORY);
        return statusOf(result);
    }
}

} // namespace flashwriter

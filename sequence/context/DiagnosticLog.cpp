#include "sequence/context/DiagnosticLog.h"

#include "sequence/context/DiagnosticStream.h"

#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <exception>
#include <string>

namespace flashwriter {

namespace {

constinit DiagnosticStream standardError(STDERR_FILENO);

void writeToStandardError(const char* text) {
    standardError.writeLine(text);
}

std::atomic<DiagnosticSink> currentSink{writeToStandardError};

// What a sink throws, for want of memory say, ends here: nobody who logs is there to catch it, and
// there is nobody to tell.
void hand(DiagnosticSink sink, const char* text) {
    try {
        sink(text);
    } catch (...) {
        return;
    }
}

// A line that outgrows the stack buffer is formatted again into a string of its size; when even
// that cannot be had, its beginning is logged.
void logLongLine(DiagnosticSink sink, const char* beginning, std::size_t length, const char* format,
                 std::va_list arguments) {
    try {
        std::string whole(length, '\0');
        std::vsnprintf(whole.data(), whole.size() + 1, format, arguments);
        hand(sink, whole.c_str());
    } catch (const std::exception&) {
        hand(sink, beginning);
    }
}

} // namespace

void setDiagnosticSink(DiagnosticSink sink) {
    currentSink = sink != nullptr ? sink : writeToStandardError;
}

void diagnosticLog(const char* format, ...) {
    const DiagnosticSink sink = currentSink;
    std::array<char, 512> line{};
    std::va_list arguments;
    va_start(arguments, format);
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    if (length >= static_cast<int>(line.size())) {
        logLongLine(sink, line.data(), static_cast<std::size_t>(length), format, again);
    } else if (length >= 0) {
        hand(sink, line.data());
    }
    va_end(again);
}

} // namespace flashwriter

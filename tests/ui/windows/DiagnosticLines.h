#pragma once

#include "sequence/context/DiagnosticLog.h"

#include <QStringList>

#include <mutex>

namespace flashwriter::testing {

// Collects what is written to the diagnostic log while it lives. One at a time.
class DiagnosticLines {
public:
    DiagnosticLines() {
        take();
        setDiagnosticSink([](const char* text) {
            const std::lock_guard lock(mutex);
            lines.append(QString::fromUtf8(text));
        });
    }
    ~DiagnosticLines() { setDiagnosticSink(nullptr); }
    DiagnosticLines(const DiagnosticLines&) = delete;
    DiagnosticLines& operator=(const DiagnosticLines&) = delete;

    // The lines since the last call, or the beginning.
    static QStringList take() {
        const std::lock_guard lock(mutex);
        QStringList taken;
        taken.swap(lines);
        return taken;
    }

private:
    inline static std::mutex mutex;
    inline static QStringList lines;
};

} // namespace flashwriter::testing

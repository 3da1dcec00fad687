#include "tests/fuzz/Toolkit.h"

#include <QApplication>

// The library that finds fonts links what it keeps by distances instead of pointers, so that it
// looks lost.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

namespace flashwriter::fuzz {

void startToolkit(int& count, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static const auto* const application = new QApplication(count, arguments);
    static_cast<void>(application);
}

} // namespace flashwriter::fuzz

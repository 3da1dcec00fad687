// The toolkit for the target that this is compiled into, drawing into memory and without its
// warnings, of which every input might bring some. It is there before the first input, until the
// program's end.
#include <QApplication>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static const auto* const application = new QApplication(*count, *arguments);
    static_cast<void>(application);
    return 0;
}

// The library that finds fonts links what it keeps by distances instead of pointers, so that it
// looks lost.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

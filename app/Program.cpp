#include "app/Program.h"

#include "app/AppDelegate.h"
#include "app/MessageThread.h"
#include "app/PortScan.h"
#include "app/WarmFonts.h"
#include "sequence/context/DiagnosticLog.h"
#include "serial/StandardStreams.h"
#include "ui/NSFileDropWindow.h"

#include <QApplication>
#include <QIcon>
#include <QLoggingCategory>
#include <QScreen>
#include <QSettings>

#include <algorithm>
#include <future>
#include <utility>

namespace flashwriter {

namespace {

Q_LOGGING_CATEGORY(diagnostics, "flashwriter")

void logToQt(const char* text) {
    qCInfo(diagnostics, "%s", text);
}

// The toolkit's file dialog would keep what it was last used for in a file of the person's.
void keepNoSettings() {
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, "/dev/null");
    }
}

QIcon programIcon() {
    QIcon icon;
    for (const char* picture :
         {":/icons/16.png", ":/icons/32.png", ":/icons/48.png", ":/icons/128.png"}) {
        icon.addFile(picture);
    }
    return icon;
}

void nameProgram() {
    QCoreApplication::setApplicationName("Flash Writer");
    QCoreApplication::setApplicationVersion(FLASHWRITER_VERSION);
    QGuiApplication::setDesktopFileName("arpa.home.flashwriter");
}

} // namespace

int runProgram(int argc, char** argv) {
    secureStandardStreams();
    const MessageThread messages;
    setDiagnosticSink(logToQt);
    keepNoSettings();
    int nameOnly = std::min(argc, 1);
    const std::future<void> fonts = std::async(warmFonts);
    QApplication application(nameOnly, argv);
    // The commands that list the ports take as long as building the window does.
    std::future<PortScan> ports = std::async(scanPorts);
    nameProgram();
    QGuiApplication::setWindowIcon(programIcon());
    QApplication::setQuitOnLastWindowClosed(false);
    fonts.wait();

    NSFileDropWindow mainWindow;
    AppDelegate delegate(mainWindow);
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &mainWindow, [&] {
        if (delegate.applicationShouldTerminateAfterLastWindowClosed(&application)) {
            QCoreApplication::quit();
        }
    });
    delegate.setLaunchScan(std::move(ports));
    delegate.applicationDidFinishLaunching(&application);
    mainWindow.resize(mainWindow.size().boundedTo(mainWindow.screen()->availableSize()));
    mainWindow.show();
    const int status = QApplication::exec();
    setDiagnosticSink(nullptr);
    return status;
}

} // namespace flashwriter

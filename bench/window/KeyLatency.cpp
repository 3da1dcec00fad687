#include "bench/window/KeyLatency.h"

#include "app/AppDelegate.h"
#include "sequence/context/DiagnosticLog.h"
#include "ui/NSCenteringWindow.h"
#include "ui/NSFileDropWindow.h"
#include "ui/ProgressWindowController.h"
#include "ui/SheetWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QEventLoop>
#include <QTimer>

#include <array>
#include <functional>
#include <stdexcept>

namespace flashwriter::bench {

namespace {

constexpr std::chrono::seconds HANG{20};
constexpr std::chrono::minutes LONGEST_WRITE{5};

// The main thread works on meanwhile, as it does in the program.
void waitFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit,
               const char* what) {
    constexpr std::chrono::milliseconds LOOK{10};
    const auto giveUp = KeyClock::now() + limit;
    while (!condition()) {
        if (KeyClock::now() > giveUp) {
            throw std::runtime_error(std::string("in vain waited for ") + what);
        }
        waitFor(LOOK);
    }
}

void waitForKeyboard(const QWidget* window, const char* what) {
    waitUntil([window] { return window->isActiveWindow(); }, HANG, what);
}

// Ends the watch when the result is shown, and then dismisses that.
class ResultWatch : public QObject {
public:
    explicit ResultWatch(KeyWatch& keys) : m_keys(keys) { qApp->installEventFilter(this); }

    bool isOver() const { return m_keys.isFinished(); }
    const KeyFigures& figures() const { return m_figures; }

    bool eventFilter(QObject* receiver, QEvent* event) override {
        auto* result = dynamic_cast<NSCenteringWindow*>(receiver);
        if (result != nullptr && event->type() == QEvent::Show && !isOver()) {
            m_figures = m_keys.finish(LONGEST_EFFECT);
            QTimer::singleShot(0, result, &QWidget::close);
        }
        return false;
    }

private:
    KeyWatch& m_keys;
    KeyFigures m_figures;
};

SheetWindow& sheetWithKeyboard() {
    auto* sheet = dynamic_cast<SheetWindow*>(QApplication::activeModalWidget());
    if (sheet == nullptr) {
        throw std::runtime_error("the program shows no progress");
    }
    waitForKeyboard(sheet, "the keyboard for the progress");
    return *sheet;
}

KeyFigures pressDuringWrite(const NSFileDropWindow& window, AppDelegate& delegate) {
    delegate.pushWrite(nullptr);
    sheetWithKeyboard();
    KeyWatch keys;
    const ResultWatch result(keys);
    waitUntil([&] { return result.isOver() && !window.isSheetUp(); }, LONGEST_WRITE,
              "the end of the write");
    return result.figures();
}

KeyFigures pressWithoutWrite(NSFileDropWindow& window, std::chrono::seconds time) {
    const MainThreadQueue mainThread;
    ProgressWindowController progress(mainThread);
    progress.setMainWindow(&window);
    progress.beginSheet();
    SheetWindow& sheet = sheetWithKeyboard();
    KeyWatch keys;
    waitFor(time);
    KeyFigures figures = keys.finish(LONGEST_EFFECT);
    sheet.endSheet();
    return figures;
}

} // namespace

MeasuredKeys measureKeys(const std::string& port, const std::string& image,
                         std::chrono::seconds quiet) {
    std::array<char, 13> name{"window_bench"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    int count = 1;
    setDiagnosticSink([](const char*) {});
    const QApplication application(count, arguments.data());
    NSFileDropWindow window;
    AppDelegate delegate(window);
    delegate.applicationDidFinishLaunching(nullptr);
    window.findChild<QComboBox*>("serialPortComboBox")->setEditText(QString::fromStdString(port));
    window.findChild<QLineEdit*>("filePathTextField")->setText(QString::fromStdString(image));
    window.show();
    waitForKeyboard(&window, "the keyboard for the main window");

    MeasuredKeys keys;
    keys.duringWrite = pressDuringWrite(window, delegate);
    keys.succeeded = delegate.contextInfo().pResultInfo->Result == RESULT_OK;
    keys.withoutWrite = pressWithoutWrite(window, quiet);
    setDiagnosticSink(nullptr);
    return keys;
}

} // namespace flashwriter::bench

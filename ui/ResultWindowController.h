#pragma once

#include "sequence/context/ContextInfo.h"
#include "ui/MainThreadQueue.h"
#include "ui/NSCenteringWindow.h"

#include <QPointer>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

class QLabel;

namespace Ui {
class ResultWindowController;
}

namespace flashwriter {

// How long a result waits for its advice at the most; what comes later is shown when it comes.
inline constexpr std::chrono::milliseconds ADVICE_PATIENCE{300};

// The window that says how a write ended, or why the serial monitor did not open. It is loaded when
// it is first asked for. Main thread, but for what says otherwise.
class ResultWindowController {
public:
    // The queue is borrowed.
    explicit ResultWindowController(const MainThreadQueue& mainThread);
    ~ResultWindowController();
    ResultWindowController(const ResultWindowController&) = delete;
    ResultWindowController& operator=(const ResultWindowController&) = delete;

    // Composes the message from the outcome that the context's pResultInfo (not null) points at,
    // and shows it. Any thread; the outcome is read before it returns. Returns 0.
    std::uint64_t setResult(_CONTEXTINFO context);

    // Shows no result, until there is one.
    void forgetResult();

    // What the person can do about the outcome, UTF-8, beside the message; empty hides it. Any
    // thread.
    void setAdvice(const std::string& advice);

    // Shows the window in the middle of the main window (borrowed; null: of an all-zero rectangle)
    // and returns when it is closed. No other window can be used meanwhile.
    void runModal(QWidget* mainWindow);

    // The OK button: closes the window. So do Return, Escape and its title bar.
    void pushOK(const QObject* sender);

    NSCenteringWindow& resultWindow(); // loaded if need be

private:
    void loadWindow();
    void windowDidLoad();
    static void windowWillClose(const QObject* notification);
    void showResult(const _RESULTINFO& result);
    void showMessage();

    const MainThreadQueue& m_mainThread;
    std::unique_ptr<Ui::ResultWindowController> m_ui; // the controls
    QString m_dispMsg;
    QPointer<NSCenteringWindow> m_resultWindow; // goes with the main window that it belongs to
    QPointer<QLabel> resultMessage;
    QString m_advice;
    bool m_isFailure = false;
};

} // namespace flashwriter

#pragma once

#include "sequence/ProgressWindow.h"
#include "ui/Lookup.h"
#include "ui/MainThreadQueue.h"
#include "ui/ResultWindowController.h"
#include "ui/SheetWindow.h"

#include <QPointer>
#include <QRectF>
#include <QTimer>

#include <cstdint>
#include <memory>

class QLabel;
class QProgressBar;

namespace flashwriter {

// The sheet that shows a write on the main window, and what follows it: the result. Made once and
// used for every write. A write that has not come further for two seconds is said to be waiting.
// Main thread, but for what says otherwise.
class ProgressWindowController final : public ProgressWindow {
public:
    // The queue is borrowed and must outlive this object.
    explicit ProgressWindowController(const MainThreadQueue& mainThread);
    ~ProgressWindowController() override;
    ProgressWindowController(const ProgressWindowController&) = delete;
    ProgressWindowController& operator=(const ProgressWindowController&) = delete;

    // The main window (borrowed): the sheet hangs on it, and the result appears in its middle.
    // Without one there is no sheet.
    void setMainWindow(NSFileDropWindow* mainWindow);

    // Shows the sheet, without a word on it yet, and returns at once.
    void beginSheet();

    // See ProgressWindow: both on any thread, shown on the main thread in the order of the calls.
    std::uint64_t UpdateProgress(std::int32_t step, std::int32_t andProgress) override;
    std::uint64_t setResult(_CONTEXTINFO context) override;

    // Shows the result, returns when the person has closed it, and takes the sheet away.
    void close() override;

    ResultWindowController& result() { return m_resultWindow; }

private:
    void loadWindow();
    void askForAdvice(_CONTEXTINFO context);
    void showProgress(std::int32_t step, const QString& text, int percentage);
    void showStandstill();
    void showHint(const char* text);
    void windowWillClose(const QObject* notification);

    const MainThreadQueue& m_mainThread;
    ResultWindowController m_resultWindow;
    Lookup m_adviceLookup;      // used on the thread of the write
    QRectF m_parentWindowsRect; // zero, and of no use
    QPointer<NSFileDropWindow> m_mainWindow;
    QPointer<SheetWindow> m_window; // goes with the main window
    QPointer<QLabel> progressLabel;
    QPointer<QProgressBar> progressBar;
    QPointer<QLabel> progressHint;
    std::int32_t m_step = 0;
    QTimer m_standstill; // runs out when there is no progress for a while
};

} // namespace flashwriter

#include "ui/ProgressWindowController.h"

#include "advice/FailureAdvice.h"
#include "advice/FailureFacts.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/Shelter.h"
#include "sequence/context/StageName.h"
#include "ui/AnnouncedText.h"
#include "ui/Keyboard.h"
#include "ui/NSFileDropWindow.h"
#include "ui_ProgressWindowController.h"

#include <algorithm>
#include <chrono>

namespace flashwriter {

namespace {

constexpr std::chrono::seconds STANDSTILL{2};
const char* const CONNECTED = "Leave the board connected until the result appears.";
const char* const WAITING_FOR_BOARD =
    "Nothing has happened for a while: the board is silent, or its adapter does not take what was "
    "sent. Unplug the adapter to end the write.";
const char* const WAITING_FOR_FILE =
    "Nothing has happened for a while: the system is still reading the image, and nothing is "
    "written yet. If the image lies on a disk or network that has gone, bring that back to go on.";
constexpr std::int32_t READING_FILE = 100; // see stageName()

} // namespace

ProgressWindowController::ProgressWindowController(const MainThreadQueue& mainThread)
    : m_mainThread(mainThread), m_resultWindow(mainThread), m_adviceLookup(mainThread) {
    m_standstill.setSingleShot(true);
    m_standstill.setInterval(STANDSTILL);
    QObject::connect(&m_standstill, &QTimer::timeout, &m_standstill,
                     [this] { sheltered("hint", [this] { showStandstill(); }); });
}

ProgressWindowController::~ProgressWindowController() {
    delete m_window.data();
}

void ProgressWindowController::setMainWindow(NSFileDropWindow* mainWindow) {
    m_mainWindow = mainWindow;
}

void ProgressWindowController::beginSheet() {
    if (m_window.isNull()) {
        loadWindow();
    }
    showProgress(0, QString(), 0);
    if (!m_mainWindow.isNull()) {
        m_window->beginSheet(*m_mainWindow);
    }
}

// There is a window only once all of it is there.
void ProgressWindowController::loadWindow() {
    auto loading = std::make_unique<SheetWindow>();
    Ui::ProgressWindowController controls;
    controls.setupUi(loading.get());
    progressLabel = controls.progressLabel;
    progressBar = controls.progressBar;
    progressHint = controls.progressHint;
    m_window = loading.release();
}

std::uint64_t ProgressWindowController::UpdateProgress(std::int32_t step,
                                                       std::int32_t andProgress) {
    const QString text = QString("%1 (%2 %)").arg(stageName(step)).arg(andProgress);
    m_mainThread.run([=, this] { showProgress(step, text, andProgress); });
    return 0;
}

void ProgressWindowController::showProgress(std::int32_t step, const QString& text,
                                            int percentage) {
    m_step = step;
    if (!m_window.isNull()) {
        setAnnouncedText(*progressLabel, text);
        // A bar would stay where it is on a value beyond its ends.
        progressBar->setValue(
            std::clamp(percentage, progressBar->minimum(), progressBar->maximum()));
        showHint(CONNECTED);
        m_standstill.start();
    }
}

void ProgressWindowController::showStandstill() {
    showHint(m_step == READING_FILE ? WAITING_FOR_FILE : WAITING_FOR_BOARD);
}

void ProgressWindowController::showHint(const char* text) {
    if (!m_window.isNull()) {
        setAnnouncedText(*progressHint, text);
    }
}

// A failure's advice is completed before the window appears, if that goes quickly; a file on a disk
// that has gone must not keep the result from the person.
std::uint64_t ProgressWindowController::setResult(_CONTEXTINFO context) {
    m_adviceLookup.forget(); // what is still on its way belongs to an earlier write
    sheltered("advice", [&] { askForAdvice(context); });
    return m_resultWindow.setResult(context);
}

void ProgressWindowController::askForAdvice(_CONTEXTINFO context) {
    _RESULTINFO result = *context.pResultInfo;
    m_resultWindow.setAdvice(failureAdvice(result)); // where nothing can be looked up, it stays
    if (result.Result == RESULT_OK) {
        return;
    }
    const auto look = [context, result]() mutable {
        context.pResultInfo = &result;
        return failureAdvice(result, failureFacts(context));
    };
    m_adviceLookup.ask(
        look, [this](const std::string& advice) { m_resultWindow.setAdvice(advice); },
        ADVICE_PATIENCE);
}

void ProgressWindowController::close() {
    m_standstill.stop();
    showHint(CONNECTED);
    windowWillClose(m_window);
}

void ProgressWindowController::windowWillClose(const QObject* /*notification*/) {
    // Whatever becomes of the result, the sheet goes.
    sheltered("result", [this] { m_resultWindow.runModal(m_mainWindow); });
    if (!m_mainWindow.isNull()) {
        m_mainWindow->setMiniaturizeEnabled(true);
    }
    if (!m_window.isNull()) {
        m_window->endSheet();
    }
    if (!m_mainWindow.isNull()) {
        giveKeyboardBack(*m_mainWindow); // once more: result and sheet go one after the other
    }
    diagnosticLog("Progresswindow closed!!");
}

} // namespace flashwriter

#include "ui/ResultWindowController.h"

#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/ResultMessage.h"
#include "sequence/context/Shelter.h"
#include "ui/AnnouncedText.h"
#include "ui/Keyboard.h"
#include "ui/ReturnKey.h"
#include "ui_ResultWindowController.h"

#include <QStyle>

#include <utility>

namespace flashwriter {

ResultWindowController::ResultWindowController(const MainThreadQueue& mainThread)
    : m_mainThread(mainThread) {}

ResultWindowController::~ResultWindowController() {
    delete m_resultWindow.data();
}

std::uint64_t ResultWindowController::setResult(_CONTEXTINFO context) {
    const _RESULTINFO result = *context.pResultInfo;
    whenThereIsMemory([&] {
        m_mainThread.run([this, result] { whenThereIsMemory([&] { showResult(result); }); });
    });
    return 0;
}

void ResultWindowController::showResult(const _RESULTINFO& result) {
    m_dispMsg = QString::fromStdString(flashwriter::resultMessage(result));
    m_isFailure = result.Result != RESULT_OK;
    showMessage();
    resultWindow().repaint();
}

void ResultWindowController::forgetResult() {
    m_dispMsg.clear();
    m_advice.clear();
    m_isFailure = true;
    showMessage();
}

void ResultWindowController::setAdvice(const std::string& advice) {
    m_mainThread.run([this, text = QString::fromStdString(advice)] {
        m_advice = text;
        showMessage();
    });
}

void ResultWindowController::runModal(QWidget* mainWindow) {
    NSCenteringWindow& window = resultWindow();
    if (window.parentWidget() != mainWindow) {
        window.setParent(mainWindow, window.windowFlags());
    }
    m_ui->okButton->setFocus();
    window.adjustSize();
    window.makeCenteringPoint(mainWindow != nullptr ? QRectF(mainWindow->frameGeometry())
                                                    : QRectF());
    const QPointer<QWidget> stillThere = mainWindow; // both windows may go meanwhile
    window.exec();
    if (!stillThere.isNull()) {
        giveKeyboardBack(*stillThere);
    }
}

void ResultWindowController::pushOK(const QObject* /*sender*/) {
    resultWindow().close();
}

NSCenteringWindow& ResultWindowController::resultWindow() {
    if (m_resultWindow.isNull()) {
        loadWindow();
    }
    return *m_resultWindow;
}

// There is a window only once all of it is there.
void ResultWindowController::loadWindow() {
    auto loading = std::make_unique<NSCenteringWindow>();
    loading->awakeFromNib();
    auto controls = std::make_unique<Ui::ResultWindowController>();
    controls->setupUi(loading.get());
    for (QLabel* text : {controls->resultMessage, controls->resultAdvice}) {
        text->setFocusPolicy(Qt::StrongFocus); // to copy it without a mouse
    }
    ignoreRepeatedReturn(*controls->okButton);
    QObject::connect(controls->okButton, &QPushButton::clicked, loading.get(),
                     [this] { pushOK(m_ui->okButton); });
    QObject::connect(loading.get(), &QDialog::finished, loading.get(),
                     [this] { windowWillClose(m_resultWindow); });
    m_ui = std::move(controls);
    resultMessage = m_ui->resultMessage;
    m_resultWindow = loading.release();
    windowDidLoad();
}

void ResultWindowController::windowDidLoad() {
    showMessage();
}

// The dialog has left its modal loop by the time that it says that it is finished.
void ResultWindowController::windowWillClose(const QObject* /*notification*/) {
    diagnosticLog("Result Window closed!!");
}

void ResultWindowController::showMessage() {
    if (resultMessage.isNull()) {
        return; // loading the window shows it
    }
    QString lines = m_dispMsg;
    setAnnouncedText(*resultMessage, lines.remove('\r'));
    setAnnouncedText(*m_ui->resultAdvice, m_advice);
    m_ui->resultAdvice->setVisible(!m_advice.isEmpty());
    QStyle& style = *m_resultWindow->style();
    const auto icon = m_isFailure ? QStyle::SP_MessageBoxCritical : QStyle::SP_DialogApplyButton;
    const int size = style.pixelMetric(QStyle::PM_MessageBoxIconSize);
    m_ui->resultIcon->setPixmap(style.standardIcon(icon).pixmap(size, size));
    m_resultWindow->setAccessibleDescription(lines);
}

} // namespace flashwriter

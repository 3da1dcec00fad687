#include "ui/ResultWindowController.h"

#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/ResultMessage.h"
#include "ui/AnnouncedText.h"
#include "ui/Keyboard.h"
#include "ui/ReturnKey.h"
#include "ui_ResultWindowController.h"

#include <QStyle>

namespace flashwriter {

ResultWindowController::ResultWindowController(const MainThreadQueue& mainThread)
    : m_mainThread(mainThread) {}

ResultWindowController::~ResultWindowController() {
    delete m_resultWindow.data();
}

std::uint64_t ResultWindowController::setResult(_CONTEXTINFO context) {
    const _RESULTINFO result = *context.pResultInfo;
    m_mainThread.run([this, result] {
        m_dispMsg = QString::fromStdString(flashwriter::resultMessage(result));
        m_isFailure = result.Result != RESULT_OK;
        showMessage();
        resultWindow().repaint();
    });
    return 0;
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

void ResultWindowController::loadWindow() {
    m_resultWindow = new NSCenteringWindow;
    m_resultWindow->awakeFromNib();
    m_ui = std::make_unique<Ui::ResultWindowController>();
    m_ui->setupUi(m_resultWindow);
    resultMessage = m_ui->resultMessage;
    for (QLabel* text : {m_ui->resultMessage, m_ui->resultAdvice}) {
        text->setFocusPolicy(Qt::StrongFocus); // to copy it without a mouse
    }
    ignoreRepeatedReturn(*m_ui->okButton);
    QObject::connect(m_ui->okButton, &QPushButton::clicked, m_resultWindow,
                     [this] { pushOK(m_ui->okButton); });
    QObject::connect(m_resultWindow, &QDialog::finished, m_resultWindow,
                     [this] { windowWillClose(m_resultWindow); });
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

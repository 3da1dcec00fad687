// The write action.
#include "app/AppDelegate.h"
#include "sequence/context/ResultText.h"
#include "sequence/context/Shelter.h"
#include "targetfile/PathExtension.h"
#include "ui/LogText.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"

#include <QComboBox>

#include <array>
#include <thread>

namespace flashwriter {

namespace {

// What the items of the list of speeds stand for in a _CONTEXTINFO.
constexpr std::array<std::uint8_t, 2> SPEED_INDEXES{0, 2};

} // namespace

bool AppDelegate::isPortMissing() const {
    return serialPortComboBox->count() == 0 && serialPortComboBox->currentText().isEmpty();
}

// Everything is filled in that can be, whatever else is refused.
bool AppDelegate::fillContext() {
    m_ContextInfo = {};
    m_ResultInfo = {};
    m_ContextInfo.pResultInfo = &m_ResultInfo;
    bool isAccepted = !isPortMissing();
    bool isTooLong = false;
    if (isAccepted) {
        const std::string port = serialPortComboBox->currentText().toStdString();
        isTooLong = storePath(m_ContextInfo.PortName, port) != RESULT_OK;
        const auto speed = static_cast<std::size_t>(baudRateComboBox->currentIndex());
        isAccepted = speed < SPEED_INDEXES.size();
        m_ContextInfo.BaudRate = isAccepted ? SPEED_INDEXES.at(speed) : std::uint8_t{0};
    }
    const std::string file = filePathTextField->text().toStdString();
    isTooLong = storePath(m_ContextInfo.TargetFileInfo.FilePath, file) != RESULT_OK || isTooLong;
    if (isTooLong) {
        addLogDispTextView(getResultText(RESULT_PARAMETER_ERROR));
    }
    return isAccepted && !isTooLong;
}

void AppDelegate::pushWrite(const QObject* /*sender*/) {
    if (isBlocked()) {
        return;
    }
    if (!sheltered("pushWrite", [this] { beginWrite(); })) {
        failWrite();
    }
}

void AppDelegate::beginWrite() {
    MonitorPortClose();
    if (!fillContext()) {
        return;
    }
    m_statusLine->hold("Writing…");
    window->setMiniaturizeEnabled(false);
    m_progressWindow->setMainWindow(window);
    m_progressWindow->result().forgetResult(); // should this write's not be told
    m_progressWindow->beginSheet();
    clearLogText(*logDispTextView);
    m_isMotFile = hasPathExtension(m_ContextInfo.TargetFileInfo.FilePath, "mot");
    std::thread(&AppDelegate::startProgramming, this).detach();
}

void AppDelegate::startProgramming() {
    if (m_isMotFile) {
        m_SequenceProcessorForMot->start(m_ContextInfo, m_progressWindow);
    } else {
        m_SequenceProcessor->start(m_ContextInfo, m_progressWindow);
    }
}

// A write for which there is no thread or no memory ends like any other, with a result.
void AppDelegate::failWrite() {
    m_ContextInfo.pResultInfo = &m_ResultInfo;
    m_ResultInfo.Result = RESULT_INIT_FAILED;
    m_progressWindow->setMainWindow(window);
    sheltered("setResult", [this] { m_progressWindow->setResult(m_ContextInfo); });
    whenThereIsMemory([this] {
        m_mainThread.queue()([this] {
            m_progressWindow->close();
            m_statusLine->release(); // the sheet's end does, where there was one
        });
    });
}

} // namespace flashwriter

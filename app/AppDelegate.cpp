#include "app/AppDelegate.h"

#include "app/PortScan.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/Shelter.h"
#include "ui/ImageOpenPanel.h"
#include "ui/LogText.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"

#include <QComboBox>
#include <QFileInfo>
#include <QTimer>

#include <chrono>

namespace flashwriter {

namespace {

constexpr std::chrono::milliseconds IMAGE_PATIENCE{300};

} // namespace

void AppDelegate::applicationDidFinishLaunching(const QObject* /*notification*/) {
    m_progressWindow = std::make_shared<ProgressWindowController>(m_mainThread);
    window->setTrgetTextField(filePathTextField);
    baudRateComboBox->insertItem(baudRateComboBox->count(), "115,200 bps");
    baudRateComboBox->insertItem(baudRateComboBox->count(), "500,000 bps");
    baudRateComboBox->setCurrentIndex(0);
    monitorBaudRateComboBox->setCurrentIndex(1);
    m_SequenceProcessor = std::make_shared<NSSequenceProcessor>(m_mainThread.queue());
    m_SequenceProcessor->setDelegate(this);
    m_SequenceProcessorForMot = std::make_shared<NSSequenceProcessorForMot>(m_mainThread.queue());
    m_SequenceProcessorForMot->setDelegate(this);
    createMonitorPort();
    m_isMonitorOpen = false;
    m_MonitorTimer.reset();
    pushUpdating(nullptr);
}

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed(const QObject* /*application*/) {
    MonitorPortClose();
    return true;
}

void AppDelegate::pushUpdating(const QObject* /*sender*/) {
    if (isBlocked()) {
        return;
    }
    serialPortComboBox->clear();
    PortScan scan;
    sheltered("scan", [&] { scan = m_launchScan.valid() ? m_launchScan.get() : scanPorts(); });
    if (scan.hasFound) {
        serialPortComboBox->addItems(scan.ports);
        serialPortComboBox->setCurrentIndex(serialPortComboBox->count() - 1);
    } else {
        serialPortComboBox->addItem("");
        serialPortComboBox->setCurrentIndex(0);
        diagnosticLog("task_error:%s", scan.output.toUtf8().constData());
    }
    m_statusLine->refresh();
}

void AppDelegate::pushSelect(const QObject* /*sender*/) {
    if (isBlocked()) {
        return;
    }
    window->repaint();
    ImageOpenPanel panel(window);
    startAtImage(panel);
    if (panel.exec() == QDialog::Rejected) {
        diagnosticLog("Cancel button was pressed.");
        return;
    }
    const QUrl url = panel.selectedUrls().value(0);
    diagnosticLog("file opened '%s'", url.toEncoded().constData());
    filePathTextField->setText(url.toLocalFile());
}

// At the image of the field, where that is found soon: its disk may have gone, and another image is
// to be chosen then.
void AppDelegate::startAtImage(ImageOpenPanel& panel) {
    const QString path = filePathTextField->text();
    m_imageLookup.ask(
        [path] { return QFileInfo(path).isFile() ? path.toStdString() : std::string(); },
        [&panel](const std::string& file) {
            if (!file.empty()) {
                panel.startAt(QString::fromStdString(file));
            }
        },
        IMAGE_PATIENCE);
    m_imageLookup.forget(); // it would come in the middle of somebody's choosing
}

void AppDelegate::delegateAddLog(const std::string& text) {
    addLogDispTextView(text);
}

void AppDelegate::addLogDispTextView(const std::string& text) {
    appendLogText(*logDispTextView, QString::fromStdString(text));
}

} // namespace flashwriter

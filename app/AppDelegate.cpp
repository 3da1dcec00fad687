#include "app/AppDelegate.h"

#include "app/PortScan.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/Shelter.h"
#include "ui/ImageOpenPanel.h"
#include "ui/LogText.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"

#include <QComboBox>
#include <QTimer>

namespace flashwriter {

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
    panel.startAt(filePathTextField->text());
    if (panel.exec() == QDialog::Rejected) {
        diagnosticLog("Cancel button was pressed.");
        return;
    }
    const QUrl url = panel.selectedUrls().value(0);
    diagnosticLog("file opened '%s'", url.toEncoded().constData());
    filePathTextField->setText(url.toLocalFile());
}

void AppDelegate::delegateAddLog(const std::string& text) {
    addLogDispTextView(text);
}

void AppDelegate::addLogDispTextView(const std::string& text) {
    appendLogText(*logDispTextView, QString::fromStdString(text));
}

} // namespace flashwriter

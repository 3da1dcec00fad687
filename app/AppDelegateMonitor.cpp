// The serial monitor: opening, reading, closing.
#include "advice/FailureFacts.h"
#include "advice/MonitorAdvice.h"
#include "advice/MonitorSpeed.h"
#include "app/AppDelegate.h"
#include "sequence/context/DiagnosticLog.h"
#include "sequence/context/ResultText.h"
#include "sequence/context/Shelter.h"
#include "ui/LogText.h"
#include "ui/Lookup.h"
#include "ui/NSFileDropTextField.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <initializer_list>
#include <string>
#include <thread>

namespace flashwriter {

namespace {

constexpr int LOG_LIMIT = 65536;          // characters that the monitor leaves in the log view
constexpr std::size_t CHUNK_SIZE = 65536; // bytes that one tick takes at most
constexpr std::chrono::milliseconds TICK{50};
constexpr std::chrono::milliseconds READING_PAUSE{100};

// Opening keeps the main thread busy: the person sees that something is being done.
class BusyCursor {
public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;
};

} // namespace

// A transport that has never been opened closes descriptor 0 when it is closed, and the monitor's
// is closed by every write, opened or not. One that has failed to open knows that it has no device.
void AppDelegate::createMonitorPort() {
    m_MonitorComPort = std::make_unique<NSSerialPortProcessor>();
    m_MonitorComPort->Open("");
    m_MonitorComPort->Close();
}

void AppDelegate::pushMonitorOpen(const QObject* /*sender*/) {
    if (isBlocked() || m_isOpening) {
        return;
    }
    if (m_isMonitorOpen) {
        MonitorPortClose();
        return;
    }
    m_isOpening = true;
    if (!sheltered("pushMonitorOpen", [this] { probeAndOpen(); })) {
        MonitorPortClose();
    }
    // Opening kept the main thread busy: what was pressed meanwhile, twice perhaps, meant to open.
    QCoreApplication::processEvents();
    m_isOpening = false;
}

void AppDelegate::probeAndOpen() {
    m_isInvertDTR = false;
    {
        const BusyCursor busy;
        m_statusLine->hold("Asking the board…");
        DtrCheck();
    }
    MonitorPortOpen();
}

void AppDelegate::MonitorPortOpen() {
    const ResultCode result = openMonitor();
    if (result == RESULT_OK) {
        clearLogText(*logDispTextView);
        SetControlEnabledModeMonitor(false);
        m_isMonitorOpen = true;
        m_statusLine->hold("The serial monitor is open. Close it to write.",
                           serialPortComboBox->currentText().toStdString());
        return;
    }
    MonitorPortClose();
    showMonitorError(result);
}

ResultCode AppDelegate::openMonitor() {
    const auto speed = monitorSpeed(monitorBaudRateComboBox->currentText().toStdString());
    if (!speed) {
        return RESULT_BAUD_RATE_CHANGE_FAILED;
    }
    const ResultCode result = openMonitorPort(*speed);
    return result == RESULT_OK ? MonitorTimerStart() : result;
}

ResultCode AppDelegate::openMonitorPort(std::uint64_t speed) {
    if (isPortMissing()) {
        return RESULT_PORT_NOT_SELECTED;
    }
    char name[260] = {};
    const ResultCode result = portName(name);
    if (result != RESULT_OK) {
        addLogDispTextView(getResultText(static_cast<std::int64_t>(result)));
        return result;
    }
    m_monitorText.reset();
    return onPort([&] {
        m_MonitorComPort->ClearReceiveBuffer();
        const ResultCode opened = m_MonitorComPort->OpenForMonitor(name, speed);
        if (opened != RESULT_OK) {
            return opened;
        }
        waitUntilReading();
        return driveDtr(!m_isInvertDTR);
    });
}

ResultCode AppDelegate::onPort(const std::function<ResultCode()>& operation) {
    ResultCode result = RESULT_OK;
    m_portWork.run([&] { result = operation(); });
    return result;
}

void AppDelegate::showPortHeld() {
    m_statusLine->hold("Still waiting for the port: its adapter does not take what was sent. "
                       "Unplug the adapter to go on.");
}

ResultCode AppDelegate::portName(char (&name)[260]) {
    return storePath(name, serialPortComboBox->currentText().toStdString());
}

void AppDelegate::waitUntilReading() const {
    while (!m_MonitorComPort->IsReading()) {
        std::this_thread::sleep_for(READING_PAUSE);
    }
}

ResultCode AppDelegate::driveDtr(bool on) {
    return on ? m_MonitorComPort->SetDtr() : m_MonitorComPort->ClearDtr();
}

void AppDelegate::showMonitorError(ResultCode result) {
    _RESULTINFO outcome{};
    outcome.Result = result;
    _CONTEXTINFO context{};
    context.pResultInfo = &outcome;
    const std::string speed = monitorBaudRateComboBox->currentText().toStdString();
    const std::string port = serialPortComboBox->currentText().toStdString();
    ResultWindowController controller(m_mainThread);
    controller.setResult(context);
    Lookup lookup(m_mainThread); // ends before the window that it advises
    sheltered("advice", [&] {
        controller.setAdvice(monitorAdvice(result, speed)); // it stays where no look-up can be had
        lookup.ask([=] { return monitorAdvice(result, speed, portFailureFacts(port)); },
                   [&controller](const std::string& advice) { controller.setAdvice(advice); },
                   ADVICE_PATIENCE);
    });
    controller.runModal(window);
}

void AppDelegate::MonitorPortClose() {
    if (m_isMonitorOpen) {
        onPort([this] { return driveDtr(m_isInvertDTR); });
    }
    m_isMonitorOpen = false;
    MonitorTimerStop();
    m_portWork.run([this] { m_MonitorComPort->Close(); });
    SetControlEnabledModeMonitor(true);
    m_statusLine->release();
}

ResultCode AppDelegate::MonitorTimerStart() {
    MonitorTimerStop();
    m_MonitorTimer = std::make_unique<QTimer>();
    m_MonitorTimer->setTimerType(Qt::PreciseTimer);
    QObject::connect(m_MonitorTimer.get(), &QTimer::timeout, m_MonitorTimer.get(),
                     [this] { tick(); });
    m_MonitorTimer->start(TICK);
    MonitorTimeProc(m_MonitorTimer.get());
    // One that could not be started has no number, but counts as active all the same.
    return m_MonitorTimer->timerId() > 0 ? RESULT_OK : RESULT_MONITOR_TIMER_FAILED;
}

// The transport is another thread's while something is done to the port.
void AppDelegate::tick() {
    if (!m_portWork.isBusy()) {
        sheltered("monitor", [this] { MonitorTimeProc(m_MonitorTimer.get()); });
    }
}

void AppDelegate::MonitorTimerStop() {
    m_MonitorTimer.reset();
}

void AppDelegate::MonitorTimeProc(const QTimer* /*timer*/) {
    std::array<std::uint8_t, CHUNK_SIZE> chunk{};
    const std::uint64_t waiting = m_MonitorComPort->GetReceiveDataLength();
    const std::uint64_t count = m_MonitorComPort->GetReceivedData(
        chunk.data(), chunk.size(), std::min<std::uint64_t>(waiting, chunk.size()));
    if (count != 0) {
        appendLogText(*logDispTextView, m_monitorText.decode(chunk.data(), count), LOG_LIMIT);
    }
}

void AppDelegate::SetControlEnabledModeMonitor(bool enabled) {
    for (QWidget* control : std::initializer_list<QWidget*>{
             serialPortComboBox, updateButton, baudRateComboBox, filePathTextField, selectButton,
             writeButton, monitorBaudRateComboBox}) {
        control->setEnabled(enabled);
    }
    monitorOpenButton->setText(enabled ? "Open" : "Close");
    // Screen readers are told the button's name and this, not its title.
    monitorOpenButton->setAccessibleDescription(enabled ? "Open the serial monitor"
                                                        : "Close the serial monitor");
}

} // namespace flashwriter

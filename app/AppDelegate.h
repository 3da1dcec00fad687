#pragma once

#include "app/MonitorText.h"
#include "app/PortScan.h"
#include "app/PortWork.h"
#include "app/StatusLine.h"
#include "sequence/NSSequenceProcessor.h"
#include "sequence/NSSequenceProcessorForMot.h"
#include "serial/NSSerialPortProcessor.h"
#include "ui/Lookup.h"
#include "ui/MainThreadQueue.h"
#include "ui/ProgressWindowController.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <utility>

class QComboBox;
class QLabel;
class QPushButton;
class QTimer;

namespace flashwriter {

class ImageOpenPanel;
class NSCommandProcessor;
class NSFileDropTextField;
class NSFileDropWindow;
class NSNonMenuTextView;

// The main window's controller: the port list, the choice of a file, the write, the log, and the
// serial monitor. One for the program's life. All of it runs on the main thread, except
// startProgramming(), the body of the thread that each write has.
class AppDelegate : public NSSequenceProcessorDelegate, public NSSequenceProcessorForMotDelegate {
public:
    // Loads the main window's description into the window, which is borrowed and must outlive this
    // object.
    explicit AppDelegate(NSFileDropWindow& mainWindow);
    ~AppDelegate() override;
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // Before the launch, if at all: the list of ports is filled then with what this look for them
    // has found, which may still be under way.
    void setLaunchScan(std::future<PortScan> scan) { m_launchScan = std::move(scan); }

    // Once, before anything else below.
    void applicationDidFinishLaunching(const QObject* notification);
    // When the last window has been closed: closes the monitor. Always true: the program ends.
    bool applicationShouldTerminateAfterLastWindowClosed(const QObject* application);

    // The buttons. sender is not looked at, and may be null.
    void pushUpdating(const QObject* sender);    // lists the ports anew, and selects the last one
    void pushSelect(const QObject* sender);      // lets the person choose a file
    void pushWrite(const QObject* sender);       // starts a write, or refuses to without a word
    void pushMonitorOpen(const QObject* sender); // opens the monitor, or closes it

    // Runs a write from beginning to end on the calling thread.
    void startProgramming();

    // Append to the log view; the text brings its own line ends.
    void delegateAddLog(const std::string& text) override;
    void addLogDispTextView(const std::string& text);

    // The serial monitor. DtrCheck() opens the port, finds out at which level of DTR the board
    // answers, and closes it; MonitorPortOpen() then opens it for reading, or shows why not. Both
    // keep the main thread busy, for up to two seconds, and all three for as long as the system is
    // busy with the port, see PortWork.h.
    void DtrCheck();
    void MonitorPortOpen();
    void MonitorPortClose();
    ResultCode MonitorTimerStart(); // RESULT_MONITOR_TIMER_FAILED
    void MonitorTimerStop();
    void MonitorTimeProc(const QTimer* timer); // shows what has come
    void SetControlEnabledModeMonitor(bool enabled);

    // The monitor's way into programming mode, for DtrCheck(). RESULT_OK when any status frame
    // answers a Baud Rate Set that was sent within 100 ms of the change of DTR;
    // RESULT_MODE_ENTRY_TIMEOUT when a later one is answered or none; RESULT_PARAMETER_ERROR,
    // RESULT_INIT_FAILED, RESULT_SEND_FAILED.
    ResultCode comBaudRateSetProc(std::uint8_t rateIndex, std::uint8_t voltage);
    // Spins until more than this many milliseconds have passed; returns how many have.
    static std::uint64_t wait(std::uint64_t milliseconds);
    // Spins until a whole data frame is in the receive buffer, and leaves it there. frameLength is
    // its size in bytes, 0 while none has begun. RESULT_RECEIVE_TIMEOUT after more than timeout
    // milliseconds.
    ResultCode waitStatusFrames(std::uint64_t& frameLength, std::uint64_t timeout);

    bool isMonitorOpen() const { return m_isMonitorOpen; }
    bool isInvertDTR() const { return m_isInvertDTR; }
    const _CONTEXTINFO& contextInfo() const { return m_ContextInfo; }

private:
    void showAbout();
    void connectControls();
    void connectStatusLine(QLabel& label);
    void createMonitorPort();

    void startAtImage(ImageOpenPanel& panel);

    bool isBlocked() const;
    bool isPortMissing() const; // neither a list nor a text
    void beginWrite();
    bool fillContext(); // whether the write may begin
    void failWrite();

    ResultCode probe();
    void probeAndOpen();
    ResultCode openMonitor();
    ResultCode openMonitorPort(std::uint64_t speed); // bits per second
    ResultCode onPort(const std::function<ResultCode()>& operation);
    void showPortHeld();
    void tick();
    void showMonitorError(ResultCode result);
    ResultCode portName(char (&name)[260]);
    void waitUntilReading() const;
    ResultCode driveDtr(bool on);
    std::uint64_t releaseReset();
    ResultCode sendBaudRateSet(NSCommandProcessor& cmd, std::uint8_t rateIndex,
                               std::uint8_t voltage, std::uint64_t& sentAt);

    MainThreadQueue m_mainThread; // outlives whatever it is lent to below
    std::shared_ptr<ProgressWindowController> m_progressWindow;
    _CONTEXTINFO m_ContextInfo{};
    _RESULTINFO m_ResultInfo{};
    std::shared_ptr<NSSequenceProcessor> m_SequenceProcessor;
    std::shared_ptr<NSSequenceProcessorForMot> m_SequenceProcessorForMot;
    std::string m_FilePath; // of no use
    bool m_isMonitorOpen = false;
    std::unique_ptr<NSSerialPortProcessor> m_MonitorComPort;
    std::unique_ptr<QTimer> m_MonitorTimer;
    bool m_isInvertDTR = false;
    std::future<PortScan> m_launchScan; // none once it has been shown
    bool m_isMotFile = false;           // of the write that goes on
    bool m_isOpening = false;           // the monitor
    MonitorText m_monitorText;
    Lookup m_imageLookup{m_mainThread};
    std::unique_ptr<StatusLine> m_statusLine;
    PortWork m_portWork;

    // The main window's controls, which belong to it.
    QComboBox* serialPortComboBox = nullptr;
    QComboBox* baudRateComboBox = nullptr;
    NSFileDropTextField* filePathTextField = nullptr;
    NSNonMenuTextView* logDispTextView = nullptr;
    QComboBox* monitorBaudRateComboBox = nullptr;
    QPushButton* monitorOpenButton = nullptr;
    QPushButton* updateButton = nullptr;
    QPushButton* selectButton = nullptr;
    QPushButton* writeButton = nullptr;
    NSFileDropWindow* window = nullptr;

    QObject m_connections; // what the controls are connected to; the first that goes
};

} // namespace flashwriter

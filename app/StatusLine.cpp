#include "app/StatusLine.h"

#include "advice/FormAdvice.h"
#include "advice/MonitorAdvice.h"
#include "sequence/context/Shelter.h"
#include "ui/AnnouncedText.h"

#include <chrono>
#include <utility>

namespace flashwriter {

namespace {

// Long enough for a few letters, or for the files of a device, to be one look.
constexpr std::chrono::milliseconds SOON{150};
constexpr std::chrono::milliseconds LATE{1000};

} // namespace

StatusLine::StatusLine(QLabel& label, const MainThreadQueue& mainThread,
                       std::function<FormEntries()> entries)
    : m_label(label), m_entries(std::move(entries)), m_lookup(mainThread) {
    m_soon.setSingleShot(true);
    m_soon.setInterval(SOON);
    QObject::connect(&m_soon, &QTimer::timeout, &m_soon,
                     [this] { sheltered("status", [this] { look(); }); });
    m_late.setSingleShot(true);
    m_late.setInterval(LATE);
    QObject::connect(&m_late, &QTimer::timeout, &m_late,
                     [this] { sheltered("status", [this] { tellOfWaiting(); }); });
    m_devices.addPath("/dev");
    QObject::connect(&m_devices, &QFileSystemWatcher::directoryChanged, &m_soon,
                     [this] { refresh(); });
}

StatusLine::~StatusLine() = default;

// A look that is due already stays due: things may go on changing for long.
void StatusLine::refresh() {
    const bool looksAtAll = m_heldText.isEmpty() || !m_heldPort.empty();
    if (looksAtAll && !m_soon.isActive()) {
        m_soon.start();
    }
}

void StatusLine::hold(const QString& text, const std::string& port) {
    m_heldText = text;
    m_heldPort = port;
    m_soon.stop();
    m_late.stop();
    m_lookup.forget();
    show(text);
    m_label.repaint(); // what follows may keep the main thread busy
}

void StatusLine::release() {
    if (!m_heldText.isEmpty()) {
        m_heldText.clear();
        m_heldPort.clear();
        show(QString());
    }
    refresh();
}

void StatusLine::look() {
    if (m_heldText.isEmpty()) {
        m_late.start();
    }
    m_lookup.ask(question(), [this](const std::string& text) {
        m_late.stop();
        show(QString::fromStdString(text));
    });
}

// A look that has failed, or could not begin, tells nobody: another one is due then.
void StatusLine::tellOfWaiting() {
    if (m_lookup.isWaiting()) {
        show("Waiting for the system to tell of port and image…");
    } else {
        refresh();
    }
}

// Of what the next look is about; what it needs goes with it to another thread.
std::function<std::string()> StatusLine::question() const {
    if (m_heldText.isEmpty()) {
        return [entries = m_entries()] {
            return formAdvice(formFacts(entries.port, entries.isSpeedChosen, entries.file)).text;
        };
    }
    return [text = m_heldText.toStdString(), port = m_heldPort] {
        const std::string gone = openMonitorAdvice(port);
        return gone.empty() ? text : gone;
    };
}

void StatusLine::show(const QString& text) {
    setAnnouncedText(m_label, text);
}

} // namespace flashwriter

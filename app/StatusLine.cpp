#include "app/StatusLine.h"

#include "advice/FormAdvice.h"
#include "sequence/context/DiagnosticLog.h"
#include "ui/AnnouncedText.h"

#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

namespace flashwriter {

namespace {

// Long enough for a few letters, or for the files of a device, to be one look.
constexpr std::chrono::milliseconds SOON{150};

} // namespace

StatusLine::StatusLine(QLabel& label, const MainThreadQueue& mainThread,
                       std::function<FormEntries()> entries)
    : m_label(label), m_mainThread(mainThread), m_entries(std::move(entries)),
      m_looking(std::make_shared<Looking>(Looking{.line = this})) {
    m_soon.setSingleShot(true);
    m_soon.setInterval(SOON);
    QObject::connect(&m_soon, &QTimer::timeout, &m_soon, [this] { look(); });
    m_devices.addPath("/dev");
    QObject::connect(&m_devices, &QFileSystemWatcher::directoryChanged, &m_soon,
                     [this] { refresh(); });
}

StatusLine::~StatusLine() {
    m_looking->line = nullptr;
}

void StatusLine::refresh() {
    if (!m_isHeld) {
        m_soon.start();
    }
}

void StatusLine::hold(const QString& text) {
    m_isHeld = !text.isEmpty();
    if (m_isHeld) {
        m_soon.stop();
        show(text);
        m_label.repaint(); // what follows may keep the main thread busy
    } else {
        refresh();
    }
}

// One look at a time: where each of them hangs, they would pile up.
void StatusLine::look() {
    if (m_looking->isOn) {
        m_looking->isDue = true;
        return;
    }
    m_looking->isOn = true;
    try {
        startLook();
    } catch (const std::system_error& error) {
        m_looking->isOn = false;
        diagnosticLog("status line: %s", error.what());
    }
}

void StatusLine::startLook() {
    const auto report = [looking = m_looking](const QString& text) {
        looking->isOn = false;
        if (looking->line != nullptr) {
            looking->line->showFound(text);
        }
    };
    std::thread([entries = m_entries(), report, queue = m_mainThread.queue()] {
        const FormFacts facts = formFacts(entries.port, entries.isSpeedChosen, entries.file);
        queue([report, text = QString::fromStdString(formAdvice(facts).text)] { report(text); });
    }).detach();
}

// What has been found is out of date when somebody has asked again meanwhile, and not wanted when a
// text is held.
void StatusLine::showFound(const QString& text) {
    if (m_looking->isDue) {
        m_looking->isDue = false;
        refresh();
    } else if (!m_isHeld) {
        show(text);
    }
}

void StatusLine::show(const QString& text) {
    setAnnouncedText(m_label, text);
}

} // namespace flashwriter

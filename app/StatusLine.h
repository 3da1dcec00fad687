#pragma once

#include "ui/MainThreadQueue.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>

class QLabel;

namespace flashwriter {

// What the form holds.
struct FormEntries {
    std::string port; // UTF-8, as is the file's path
    bool isSpeedChosen = false;
    std::string file;
};

// The line under the form: what stands in the way of a write, if anything. It looks at port and
// file as they are, never opens a port, and keeps nobody from anything. Main thread; what it looks
// at is looked at on a thread of its own, since a disk that has gone can take its time to answer.
//
// It looks when it is told to and when a device comes or goes, and does nothing otherwise.
class StatusLine {
public:
    // All borrowed. entries() is asked for what the form holds at each look.
    StatusLine(QLabel& label, const MainThreadQueue& mainThread,
               std::function<FormEntries()> entries);
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    // Soon looks again, once however often it is told.
    void refresh();

    // Shows this text and looks no more; an empty text ends that.
    void hold(const QString& text);

private:
    // Shared with a look that is under way, and touched on the main thread only.
    struct Looking {
        StatusLine* line;  // null once the line is gone
        bool isOn = false; // a look is under way
        bool isDue = false;
    };

    void look();
    void startLook();
    void showFound(const QString& text);
    void show(const QString& text);

    QLabel& m_label;
    const MainThreadQueue& m_mainThread;
    std::function<FormEntries()> m_entries;
    QTimer m_soon;
    QFileSystemWatcher m_devices;
    std::shared_ptr<Looking> m_looking;
    bool m_isHeld = false;
};

} // namespace flashwriter

#pragma once

#include "ui/Lookup.h"
#include "ui/MainThreadQueue.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

#include <functional>
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
// at is looked at on threads of its own, since a disk that has gone can take its time to answer.
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

    // Shows this text and does not look at the form until release(). With a port (UTF-8) it looks
    // at that, and shows that it has gone when it has.
    void hold(const QString& text, const std::string& port = "");
    void release();

private:
    void look();
    void tellOfWaiting();
    std::function<std::string()> question() const;
    void show(const QString& text);

    QLabel& m_label;
    std::function<FormEntries()> m_entries;
    QTimer m_soon;
    QTimer m_late; // runs while an answer is waited for
    QFileSystemWatcher m_devices;
    QString m_heldText; // empty while nothing is held
    std::string m_heldPort;
    Lookup m_lookup;
};

} // namespace flashwriter

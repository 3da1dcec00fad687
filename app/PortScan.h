#pragma once

#include <QString>
#include <QStringList>

namespace flashwriter {

// What a look for serial ports came to.
struct PortScan {
    bool hasFound = false;
    QStringList ports; // in the order of the listing
    QString output;    // of the last command, as it came
};

// Runs the system's commands that list serial ports until one succeeds, and waits for them. Any
// thread, once there is a QCoreApplication.
PortScan scanPorts();

// The lines of a listing, whose last character ends the last line.
QStringList portsOf(const QString& listing);

} // namespace flashwriter

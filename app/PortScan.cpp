#include "app/PortScan.h"

#include "serial/platform/PortInspection.h"

#include <QProcess>

namespace flashwriter {

namespace {

// A command that cannot even be started says so where its output would be.
bool runShell(const char* command, QString& output) {
    QProcess shell;
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("/bin/sh", {"-c", command}, QIODevice::ReadOnly);
    shell.waitForFinished(-1);
    if (shell.error() == QProcess::FailedToStart) {
        output = shell.errorString();
        return false;
    }
    output = QString::fromUtf8(shell.readAll());
    return shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0;
}

} // namespace

PortScan scanPorts() {
    PortScan scan;
    for (const char* command : platform::portListCommands()) {
        scan.hasFound = runShell(command, scan.output);
        if (scan.hasFound) {
            scan.ports = portsOf(scan.output);
            break;
        }
    }
    return scan;
}

QStringList portsOf(const QString& listing) {
    return listing.chopped(std::min<qsizetype>(listing.size(), 1)).split('\n');
}

} // namespace flashwriter

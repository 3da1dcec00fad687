#pragma once

#include "app/AppDelegate.h"
#include "serial/StandardStreams.h"
#include "tests/sequence/DiagnosticLines.h"
#include "ui/NSFileDropTextField.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QStringList>

#include <string>

namespace flashwriter::testing {

// Closing a port that was never opened closes standard input, and a controller that goes closes
// those of its drivers. In a test program life goes on: nothing else may get that number.
struct StandardInput {
    StandardInput() { secureStandardStreams(); }
    ~StandardInput() { secureStandardStreams(); }
    StandardInput(const StandardInput&) = delete;
    StandardInput& operator=(const StandardInput&) = delete;
};

// The main window with its controller, started on a system without a serial port.
class MainWindowFixture {
public:
    MainWindowFixture();

    // Types text into a combo box, as a person would.
    static void type(QComboBox& comboBox, const QString& text);
    static QStringList items(const QComboBox& comboBox);

    void choosePort(const std::string& path) const;
    QString log() const { return logView.toPlainText(); }
    // Whether the controls for writing are enabled: all of them, or none; anything else is neither.
    bool areControls(bool enabled) const;
    // How often the diagnostic log has this line.
    static std::ptrdiff_t count(const std::string& line);

    StandardInput standardInput; // the last that goes
    DiagnosticLines lines;
    NSFileDropWindow window;
    AppDelegate delegate;
    QComboBox& ports;
    QComboBox& speeds;
    QComboBox& monitorSpeeds;
    NSFileDropTextField& path;
    NSNonMenuTextView& logView;
    QPushButton& monitorButton;
    QPushButton& updateButton;
    QPushButton& selectButton;
    QPushButton& writeButton;
    QLabel& status;
};

} // namespace flashwriter::testing

#include "tests/ui/app/MainWindowFixture.h"

#include "tests/ui/app/PortCommands.h"

#include <QLineEdit>
#include <QTest>

#include <algorithm>
#include <initializer_list>

namespace flashwriter::testing {

namespace {

template <class Control>
Control& control(const QWidget& window, const char* name) {
    auto* found = window.findChild<Control*>(name);
    if (found == nullptr) {
        qFatal("the window has no %s", name);
    }
    return *found;
}

} // namespace

MainWindowFixture::MainWindowFixture()
    : delegate(window), ports(control<QComboBox>(window, "serialPortComboBox")),
      speeds(control<QComboBox>(window, "baudRateComboBox")),
      monitorSpeeds(control<QComboBox>(window, "monitorBaudRateComboBox")),
      path(control<NSFileDropTextField>(window, "filePathTextField")),
      logView(control<NSNonMenuTextView>(window, "logDispTextView")),
      monitorButton(control<QPushButton>(window, "monitorOpenButton")),
      updateButton(control<QPushButton>(window, "updateButton")),
      selectButton(control<QPushButton>(window, "selectButton")),
      writeButton(control<QPushButton>(window, "writeButton")),
      status(control<QLabel>(window, "statusLabel")) {
    portCommands.emplace(); // no command, and so none that succeeds
    delegate.applicationDidFinishLaunching(nullptr);
}

void MainWindowFixture::type(QComboBox& comboBox, const QString& text) {
    comboBox.lineEdit()->selectAll();
    QTest::keyClick(comboBox.lineEdit(), Qt::Key_Delete);
    QTest::keyClicks(comboBox.lineEdit(), text);
}

QStringList MainWindowFixture::items(const QComboBox& comboBox) {
    QStringList texts;
    for (int i = 0; i < comboBox.count(); ++i) {
        texts.append(comboBox.itemText(i));
    }
    return texts;
}

void MainWindowFixture::choosePort(const std::string& portPath) const {
    ports.setEditText(QString::fromStdString(portPath));
}

bool MainWindowFixture::areControls(bool enabled) const {
    const std::initializer_list<const QWidget*> ofWriting{
        &ports, &updateButton, &speeds, &path, &selectButton, &writeButton, &monitorSpeeds};
    return std::ranges::all_of(
        ofWriting, [&](const QWidget* widget) { return widget->isEnabled() == enabled; });
}

std::ptrdiff_t MainWindowFixture::count(const std::string& line) {
    return std::ranges::count(DiagnosticLines::all(), line);
}

} // namespace flashwriter::testing

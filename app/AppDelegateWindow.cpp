// The main window: its controls, and what they are connected to.
#include "app/AppDelegate.h"
#include "sequence/context/Shelter.h"
#include "ui/NSFileDropWindow.h"
#include "ui/NSNonMenuTextView.h"
#include "ui/ReturnKey.h"
#include "ui/WheelGuard.h"
#include "ui_MainWindow.h"

#include <QApplication>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QMessageBox>
#include <QShortcut>
#include <QTimer>

namespace flashwriter {

namespace {

// A text that is typed is no item of the list, whatever item was chosen before it, and whatever the
// text is: the box would look for an item of that text when the typing ends.
void forgetItemWhenTyped(QComboBox& comboBox) {
    QLineEdit& field = *comboBox.lineEdit();
    QObject::disconnect(&field, &QLineEdit::editingFinished, &comboBox, nullptr);
    QObject::disconnect(&field, &QLineEdit::returnPressed, &comboBox, nullptr);
    QObject::connect(&field, &QLineEdit::textEdited, &comboBox, [&](const QString& text) {
        if (comboBox.currentIndex() == -1) {
            return;
        }
        const int cursor = field.cursorPosition();
        const QString item = comboBox.itemText(comboBox.currentIndex());
        comboBox.setCurrentIndex(-1); // which empties the field
        field.setText(item);
        field.selectAll();
        field.insert(text); // again, so that it can be undone
        field.setCursorPosition(cursor);
    });
}

void prepareField(QComboBox& comboBox) {
    comboBox.setCompleter(nullptr);             // a text stays as it is typed
    comboBox.lineEdit()->setAcceptDrops(false); // files are dropped on the field that is for them
    comboBox.lineEdit()->setAccessibleDescription(comboBox.accessibleDescription());
}

} // namespace

AppDelegate::AppDelegate(NSFileDropWindow& mainWindow)
    : m_portWork(mainWindow, [this] { showPortHeld(); }), window(&mainWindow) {
    Ui::MainWindow controls;
    controls.setupUi(window);
    serialPortComboBox = controls.serialPortComboBox;
    baudRateComboBox = controls.baudRateComboBox;
    filePathTextField = controls.filePathTextField;
    logDispTextView = controls.logDispTextView;
    monitorBaudRateComboBox = controls.monitorBaudRateComboBox;
    monitorOpenButton = controls.monitorOpenButton;
    updateButton = controls.updateButton;
    selectButton = controls.selectButton;
    writeButton = controls.writeButton;
    for (QComboBox* comboBox : {serialPortComboBox, baudRateComboBox, monitorBaudRateComboBox}) {
        prepareField(*comboBox);
        guardFromWheel(*comboBox);
    }
    forgetItemWhenTyped(*baudRateComboBox);
    logDispTextView->setAcceptDrops(false);
    logDispTextView->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    QObject::connect(controls.quitAction, &QAction::triggered, &m_connections,
                     [this] { window->close(); });
    QObject::connect(controls.aboutAction, &QAction::triggered, &m_connections,
                     [this] { sheltered("about", [this] { showAbout(); }); });
    connectControls();
    connectStatusLine(*controls.statusLabel);
}

AppDelegate::~AppDelegate() {
    window->whenSheetEnds(nullptr);
}

// A window over the main one keeps mouse and keys from it, but not a screen reader's presses. Nor
// does a port that is being waited for, and a window that opened then would keep that from its end.
bool AppDelegate::isBlocked() const {
    return QApplication::activeModalWidget() != nullptr || m_portWork.isBusy();
}

void AppDelegate::showAbout() {
    if (isBlocked()) {
        return;
    }
    QMessageBox::about(window, "About Flash Writer",
                       QString("Flash Writer %1\n\nWrites firmware into a microcontroller board "
                               "over a USB-serial adapter.")
                           .arg(QCoreApplication::applicationVersion()));
}

void AppDelegate::connectControls() {
    const auto connect = [this](QPushButton* button, void (AppDelegate::*push)(const QObject*)) {
        QObject::connect(button, &QPushButton::clicked, &m_connections, [this, button, push] {
            sheltered("push", [&] { (this->*push)(button); });
        });
    };
    connect(updateButton, &AppDelegate::pushUpdating);
    connect(selectButton, &AppDelegate::pushSelect);
    connect(writeButton, &AppDelegate::pushWrite);
    connect(monitorOpenButton, &AppDelegate::pushMonitorOpen);
    for (QPushButton* button : {updateButton, selectButton, writeButton, monitorOpenButton}) {
        ignoreRepeatedReturn(*button);
    }
    pressOnReturn(*monitorBaudRateComboBox->lineEdit(), *monitorOpenButton);
    // The button's title changes, and leaves no room for a mnemonic.
    auto* open = new QShortcut(QKeySequence("Alt+O"), window);
    open->setAutoRepeat(false);
    QObject::connect(open, &QShortcut::activated, monitorOpenButton, &QPushButton::click);
}

void AppDelegate::connectStatusLine(QLabel& label) {
    m_statusLine = std::make_unique<StatusLine>(label, m_mainThread, [this] {
        return FormEntries{.port = serialPortComboBox->currentText().toStdString(),
                           .isSpeedChosen = baudRateComboBox->currentIndex() >= 0,
                           .file = filePathTextField->text().toStdString()};
    });
    window->whenSheetEnds([this] { m_statusLine->release(); });
    const auto refresh = [this] { m_statusLine->refresh(); };
    QObject::connect(serialPortComboBox, &QComboBox::currentTextChanged, &m_connections, refresh);
    QObject::connect(baudRateComboBox, &QComboBox::currentTextChanged, &m_connections, refresh);
    QObject::connect(filePathTextField, &QLineEdit::textChanged, &m_connections, refresh);
    // Whoever comes back from another program may have changed something there.
    QObject::connect(qGuiApp, &QGuiApplication::applicationStateChanged, &m_connections, refresh);
}

} // namespace flashwriter

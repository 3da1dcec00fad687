// Where the panel for images begins.
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "ui/ImageOpenPanel.h"

#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace flashwriter::testing {

namespace {

// What the panel shows when it comes up, before it is answered.
struct PanelStart {
    QString folder;
    QString name; // in its line
    QStringList selected;
};

PanelStart openPanel(MainWindowFixture& main, const char* answer) {
    PanelStart start;
    QTimer::singleShot(0, [&] {
        auto* panel = dynamic_cast<ImageOpenPanel*>(QApplication::activeModalWidget());
        start.folder = panel->directory().absolutePath();
        start.name = panel->findChild<QLineEdit*>("fileNameEdit")->text();
        start.selected = panel->selectedFiles();
        QMetaObject::invokeMethod(panel, answer);
        if (panel->isVisible()) {
            panel->reject(); // it has not accepted that
        }
    });
    main.delegate.pushSelect(nullptr);
    return start;
}

} // namespace

class PanelStartTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void beginsAtTheFileOfTheField_data();
    void beginsAtTheFileOfTheField();
    void selectsNoFileThatIsNotThere();

private:
    QTemporaryDir m_settings;
};

// The toolkit would keep the folder last used in a file of the person's.
void PanelStartTest::initTestCase() {
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope, m_settings.path());
    }
}

void PanelStartTest::beginsAtTheFileOfTheField_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"image.bin", "my image.bin", "FIRMWARE.MOT", "100%25.bin"}) {
        QTest::newRow(name) << QString(name);
    }
}

void PanelStartTest::beginsAtTheFileOfTheField() {
    QFETCH(const QString, name);
    MainWindowFixture main;
    const ImageFile file(name.toStdString(), std::string("image"));
    const QString path = QString::fromStdString(file.path());
    main.path.setText(path);
    const PanelStart start = openPanel(main, "accept"); // what is selected is what is taken
    QCOMPARE(start.folder, QFileInfo(path).absolutePath());
    QCOMPARE(start.name, name);
    QCOMPARE(start.selected, QStringList{path});
    QCOMPARE(main.path.text(), path);
    QCOMPARE(main.count("Cancel button was pressed."), 0);
}

void PanelStartTest::selectsNoFileThatIsNotThere() {
    MainWindowFixture main;
    for (const char* path : {"", "/none/image.bin", "image.bin"}) {
        main.path.setText(path);
        QCOMPARE(openPanel(main, "reject").name, "");
        QCOMPARE(main.path.text(), path);
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::PanelStartTest)
#include "PanelStartTest.moc"

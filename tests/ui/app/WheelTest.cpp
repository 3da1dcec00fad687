// Whoever turns the wheel over the form to scroll must not change a port or a speed by it.
#include "tests/ui/app/MainWindowFixture.h"

#include <QLineEdit>
#include <QTest>
#include <QWheelEvent>

namespace flashwriter::testing {

namespace {

void turnWheel(QWidget& widget, int angle) {
    const QPointF at = widget.rect().center();
    QWheelEvent event(at, widget.mapToGlobal(at), {}, {0, angle}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class WheelTest : public QObject {
    Q_OBJECT

private slots:
    void changesNothingWithoutFocus_data();
    void changesNothingWithoutFocus();
};

void WheelTest::changesNothingWithoutFocus_data() {
    QTest::addColumn<QString>("name");
    for (const char* name : {"serialPortComboBox", "baudRateComboBox", "monitorBaudRateComboBox"}) {
        QTest::newRow(name) << QString(name);
    }
}

void WheelTest::changesNothingWithoutFocus() {
    QFETCH(const QString, name);
    MainWindowFixture main;
    main.ports.addItems({"/dev/one", "/dev/two"});
    main.window.show();
    main.window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&main.window));
    main.path.setFocus();
    auto& comboBox = *main.window.findChild<QComboBox*>(name);
    for (const int index : {0, 1}) {
        comboBox.setCurrentIndex(index);
        for (const int angle : {-120, 120, 120, -120}) {
            turnWheel(comboBox, angle);
            QCOMPARE(comboBox.currentIndex(), index);
            turnWheel(*comboBox.lineEdit(), angle);
            QCOMPARE(comboBox.currentIndex(), index);
        }
        QCOMPARE(comboBox.currentText(), comboBox.itemText(index));
    }
    comboBox.setEditText("/dev/typed");
    turnWheel(comboBox, -120);
    QCOMPARE(comboBox.currentText(), "/dev/typed");
    QVERIFY(comboBox.focusPolicy() != Qt::WheelFocus); // which would give it the focus
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::WheelTest)
#include "WheelTest.moc"

// A speed that is typed, even as one of the list has it, has not been chosen.
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QTest>

namespace flashwriter::testing {

namespace {

// A window with the keyboard, whose port is not there: a write that starts ends at once.
struct TypedFixture : MainWindowFixture {
    TypedFixture() {
        choosePort("/dev/none");
        path.setText("/tmp/image.bin");
        window.show();
        window.activateWindow();
    }
    ~TypedFixture() {
        const ResultWindowAnswer answer;
        static_cast<void>(QTest::qWaitFor([this] { return !window.isSheetUp(); }, 10000));
    }
    TypedFixture(const TypedFixture&) = delete;
    TypedFixture& operator=(const TypedFixture&) = delete;

    QLineEdit& field() const { return *speeds.lineEdit(); }
    bool hasKeyboard() {
        field().setFocus();
        return QTest::qWaitForWindowActive(&window) && field().hasFocus();
    }
    void leave(const QString& way) const {
        if (way == "Write") {
            writeButton.setFocus();
        } else {
            QTest::keyClick(&field(), way == "Tab" ? Qt::Key_Tab : Qt::Key_Return);
        }
    }
};

} // namespace

class TypedSpeedTest : public QObject {
    Q_OBJECT

private slots:
    void isRefusedHoweverTheFieldIsLeft_data();
    void isRefusedHoweverTheFieldIsLeft();
    void countsOnceChosenWithTheKeyboard();
    void countsOnceChosenInThePopup();
    void canBeUndone();
};

void TypedSpeedTest::isRefusedHoweverTheFieldIsLeft_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("way");
    for (const char* text : {"115,200 bps", "500,000 bps"}) {
        for (const char* way : {"Return", "Tab", "Write"}) {
            QTest::addRow("%s, %s", text, way) << QString(text) << QString(way);
        }
    }
}

void TypedSpeedTest::isRefusedHoweverTheFieldIsLeft() {
    QFETCH(const QString, text);
    QFETCH(const QString, way);
    TypedFixture main;
    QVERIFY(main.hasKeyboard());
    main.type(main.speeds, text);
    main.leave(way);
    QCOMPARE(main.speeds.currentIndex(), -1);
    QCOMPARE(main.speeds.currentText(), text);
    main.writeButton.click();
    QVERIFY(!main.window.isSheetUp());
    QVERIFY(main.window.isMiniaturizeEnabled());
    QCOMPARE(main.speeds.currentIndex(), -1);
}

void TypedSpeedTest::countsOnceChosenWithTheKeyboard() {
    TypedFixture main;
    QVERIFY(main.hasKeyboard());
    main.type(main.speeds, "500,000 bps");
    main.leave("Tab");
    main.field().setFocus();
    QTest::keyClick(&main.field(), Qt::Key_Down);
    QCOMPARE(main.speeds.currentIndex(), 0);
    QTest::keyClick(&main.field(), Qt::Key_Down);
    QCOMPARE(main.speeds.currentIndex(), 1);
    main.leave("Tab");
    main.writeButton.click();
    QVERIFY(main.window.isSheetUp());
    QCOMPARE(static_cast<int>(main.delegate.contextInfo().BaudRate), 2);
}

void TypedSpeedTest::countsOnceChosenInThePopup() {
    TypedFixture main;
    QVERIFY(main.hasKeyboard());
    main.type(main.speeds, "115,200 bps");
    main.leave("Tab");
    main.speeds.showPopup();
    QAbstractItemView& list = *main.speeds.view();
    list.setCurrentIndex(list.model()->index(0, 0));
    QTest::keyClick(&list, Qt::Key_Return);
    QTRY_COMPARE(main.speeds.currentIndex(), 0);
    main.writeButton.click();
    QVERIFY(main.window.isSheetUp());
    QCOMPARE(static_cast<int>(main.delegate.contextInfo().BaudRate), 0);
}

void TypedSpeedTest::canBeUndone() {
    TypedFixture main;
    QVERIFY(main.hasKeyboard());
    const QString before = main.field().text();
    QTest::keyClick(&main.field(), Qt::Key_End);
    QTest::keyClicks(&main.field(), "xy");
    QCOMPARE(main.field().text(), before + "xy");
    QTest::keyClick(&main.field(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(main.field().text(), before);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::TypedSpeedTest)
#include "TypedSpeedTest.moc"

#include "ui/SheetWindow.h"
#include "ui/NSFileDropWindow.h"

#include <QAccessible>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace flashwriter::testing {

class SheetWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void staysWhateverThePersonDoes_data();
    void staysWhateverThePersonDoes();
    void keepsTheMainWindowFromClosing();
    void keepsTheMainWindowFromBeingMinimised();
    void blocksTheMainWindowOnly();
    void hangsOnTheMainWindowsForm();
    void followsTheMainWindow();
    void movesToAnotherMainWindow();
    void goesWithItsMainWindow();
    void isADialogToScreenReaders();

private:
    void beginSheet();
    bool hangs() const {
        const QRect sheet = m_sheet->geometry();
        const QRect form = m_main->geometry();
        return sheet.top() == form.top() && qAbs(sheet.center().x() - form.center().x()) <= 1;
    }

    std::unique_ptr<NSFileDropWindow> m_main;
    QPointer<SheetWindow> m_sheet; // belongs to the main window
};

void SheetWindowTest::init() {
    m_main = std::make_unique<NSFileDropWindow>();
    m_main->setGeometry(100, 80, 600, 400);
    m_main->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    m_sheet = new SheetWindow;
    m_sheet->setMinimumSize(300, 120);
}

void SheetWindowTest::beginSheet() {
    m_sheet->beginSheet(*m_main);
    QVERIFY(QTest::qWaitForWindowExposed(m_sheet));
}

void SheetWindowTest::staysWhateverThePersonDoes_data() {
    QTest::addColumn<int>("key");
    QTest::newRow("Escape") << int{Qt::Key_Escape};
    QTest::newRow("Return") << int{Qt::Key_Return};
    QTest::newRow("Enter") << int{Qt::Key_Enter};
    QTest::newRow("closing") << 0;
}

void SheetWindowTest::staysWhateverThePersonDoes() {
    QFETCH(int, key);
    beginSheet();
    const QSignalSpy finished(m_sheet, &QDialog::finished);
    if (key != 0) {
        QTest::keyClick(m_sheet, static_cast<Qt::Key>(key));
    } else {
        QVERIFY(!m_sheet->close());
    }
    QVERIFY(m_sheet->isVisible());
    QVERIFY(m_main->isSheetUp());
    QCOMPARE(finished.size(), 0);
    m_sheet->endSheet();
    QVERIFY(!m_sheet->isVisible());
}

void SheetWindowTest::keepsTheMainWindowFromClosing() {
    beginSheet();
    QVERIFY(!m_main->close());
    QVERIFY(m_main->isVisible());
    m_sheet->endSheet();
    QVERIFY(!m_main->isSheetUp());
    QVERIFY(m_main->close());
}

void SheetWindowTest::keepsTheMainWindowFromBeingMinimised() {
    beginSheet();
    m_main->showMinimized();
    QTRY_VERIFY(!m_main->isMinimized());
    QVERIFY(m_sheet->isVisible());
    m_sheet->endSheet();
    m_main->showMinimized();
    QVERIFY(m_main->isMinimized());
}

// Clicks as the window system reports them.
void SheetWindowTest::blocksTheMainWindowOnly() {
    QPushButton ofAnother;
    ofAnother.show();
    QPushButton button(m_main.get());
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&ofAnother));
    beginSheet();
    const QSignalSpy clicked(&button, &QPushButton::clicked);
    const QSignalSpy clickedOther(&ofAnother, &QPushButton::clicked);
    const QPoint middle = button.geometry().center();
    QTest::mouseClick(m_main->windowHandle(), Qt::LeftButton, {}, middle);
    QTest::mouseClick(ofAnother.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(clicked.size(), 0);
    QCOMPARE(clickedOther.size(), 1);
    m_sheet->endSheet();
    QTest::mouseClick(m_main->windowHandle(), Qt::LeftButton, {}, middle);
    QCOMPARE(clicked.size(), 1);
}

// In the middle of its upper edge.
void SheetWindowTest::hangsOnTheMainWindowsForm() {
    beginSheet();
    QVERIFY(hangs());
    QVERIFY(m_sheet->windowFlags().testFlag(Qt::FramelessWindowHint));
}

void SheetWindowTest::followsTheMainWindow() {
    beginSheet();
    m_main->move(180, 130);
    QTRY_VERIFY(m_sheet->geometry().top() > 100 && hangs());
    m_main->resize(700, 420);
    QTRY_VERIFY(m_main->width() == 700 && hangs());
    m_main->setGeometry(60, 50, 500, 380);
    QTRY_VERIFY(m_main->width() == 500 && hangs());
    m_sheet->endSheet();
    const QRect before = m_sheet->geometry();
    m_main->move(200, 90);
    QTest::qWait(50);
    QCOMPARE(m_sheet->geometry(), before);
    QVERIFY(!m_sheet->isVisible());
    beginSheet();
    QVERIFY(hangs());
}

void SheetWindowTest::movesToAnotherMainWindow() {
    beginSheet();
    m_sheet->endSheet();
    NSFileDropWindow other;
    other.show();
    m_sheet->beginSheet(other);
    QVERIFY(m_sheet->isVisible());
    QVERIFY(other.isSheetUp());
    QVERIFY(!m_main->isSheetUp());
    QCOMPARE(m_sheet->windowModality(), Qt::WindowModal);
    m_sheet->endSheet();
    QVERIFY(!other.isSheetUp());
}

void SheetWindowTest::goesWithItsMainWindow() {
    beginSheet();
    m_main.reset();
    QVERIFY(m_sheet.isNull());
}

void SheetWindowTest::isADialogToScreenReaders() {
    beginSheet();
    QAccessibleInterface* sheet = QAccessible::queryAccessibleInterface(m_sheet);
    QVERIFY(sheet != nullptr);
    QCOMPARE(sheet->role(), QAccessible::Dialog);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::SheetWindowTest)
#include "SheetWindowTest.moc"

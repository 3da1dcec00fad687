#include "tests/ui/windows/Drags.h"
#include "ui/NSFileDropTextField.h"
#include "ui/NSFileDropWindow.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTest>

namespace flashwriter::testing {

// What the field looks like, and who has the keyboard's focus, while a drag hovers over it.
class FileDropHoverTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void framesTheFieldWhileADragHovers();
    void framesTheFieldInEveryPalette();
    void isDisabledWhileADragHovers();
    void staysAsItIsWhenADragLeavesTwice();
    void givesTheFocusBack();
    void givesTheFocusBackInAWindowBehind();
    void leavesTheFocusElsewhere();
    void followsADragAcrossTheWindow();
    void isEnabledWhenADragLeavesTheWindowFromIt();

private:
    QRgb highlight() const {
        return m_field->palette().color(QPalette::Active, QPalette::Highlight).rgb();
    }
    void expectFrame(bool isFramed);

    std::unique_ptr<NSFileDropWindow> m_window;
    NSFileDropTextField* m_field = nullptr;
    QPushButton* m_button = nullptr;
};

void FileDropHoverTest::init() {
    m_window = std::make_unique<NSFileDropWindow>();
    auto* form = new QWidget;
    auto* layout = new QHBoxLayout(form);
    m_button = new QPushButton("Write");
    m_field = new NSFileDropTextField;
    layout->addWidget(m_field);
    layout->addWidget(m_button);
    m_window->setCentralWidget(form);
    m_window->setTrgetTextField(m_field);
    m_window->resize(500, 120);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_field->setFocus();
    QVERIFY(m_field->hasFocus());
}

// Exactly five pixels on each side are of the colour of selected text, and nothing within.
void FileDropHoverTest::expectFrame(bool isFramed) {
    const QImage seen = m_field->grab().toImage();
    QCOMPARE(seen.size(), m_field->size());
    int framed = 0;
    for (int y = 0; y < seen.height(); ++y) {
        for (int x = 0; x < seen.width(); ++x) {
            const int fromSide =
                std::min(std::min(x, seen.width() - 1 - x), std::min(y, seen.height() - 1 - y));
            const bool isHighlight = seen.pixel(x, y) == highlight();
            framed += isHighlight ? 1 : 0;
            QVERIFY2(!isHighlight || fromSide < 5, qPrintable(QString("%1, %2").arg(x).arg(y)));
        }
    }
    const int inner = (seen.width() - 10) * (seen.height() - 10);
    QCOMPARE(framed, isFramed ? seen.width() * seen.height() - inner : 0);
}

void FileDropHoverTest::framesTheFieldWhileADragHovers() {
    const QMimeData dragging;
    m_button->setFocus(); // some styles draw a focus in the same colour
    expectFrame(false);
    const QImage plain = m_field->grab().toImage();
    enter(*m_field, dragging);
    expectFrame(true);
    moveOn(*m_field, dragging);
    expectFrame(true);
    leave(*m_field);
    expectFrame(false);
    QCOMPARE(m_field->grab().toImage(), plain);
    enter(*m_field, dragging);
    drop(*m_field, dragging);
    QCOMPARE(m_field->grab().toImage(), plain);
}

void FileDropHoverTest::framesTheFieldInEveryPalette() {
    m_button->setFocus();
    QPalette palette;
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(1, 200, 3));
    palette.setColor(QPalette::Disabled, QPalette::Highlight, Qt::gray);
    m_field->setPalette(palette);
    enter(*m_field, QMimeData());
    QCOMPARE(highlight(), qRgb(1, 200, 3));
    expectFrame(true);
}

void FileDropHoverTest::isDisabledWhileADragHovers() {
    m_field->setInDragging(true);
    QVERIFY(!m_field->isEnabled());
    m_field->setInDragging(false);
    QVERIFY(m_field->isEnabled());
    enter(*m_field, QMimeData());
    QVERIFY(!m_field->isEnabled());
    m_field->concludeDragOperation();
    QVERIFY(m_field->isEnabled());
    QVERIFY(m_field->acceptDrops());
}

void FileDropHoverTest::staysAsItIsWhenADragLeavesTwice() {
    m_button->setFocus();
    m_field->draggingExited(); // without having been there
    QVERIFY(m_field->isEnabled());
    enter(*m_field, QMimeData());
    enter(*m_field, QMimeData());
    leave(*m_field);
    m_field->draggingExited();
    QVERIFY(m_field->isEnabled());
    QVERIFY(m_button->hasFocus());
    expectFrame(false);
}

void FileDropHoverTest::givesTheFocusBack() {
    enter(*m_field, QMimeData());
    QVERIFY(!m_field->hasFocus());
    enter(*m_field, QMimeData()); // again, as when a window system has lost a leaving
    leave(*m_field);
    QVERIFY(m_field->hasFocus());
    enter(*m_window, QMimeData());
    QVERIFY(m_field->hasFocus());
}

// While a file is dragged out of another program's window, that one is the active window.
void FileDropHoverTest::givesTheFocusBackInAWindowBehind() {
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    QCOMPARE(m_window->focusWidget(), m_field);
    enter(*m_field, QMimeData());
    leave(*m_field);
    QCOMPARE(m_window->focusWidget(), m_field);
    enter(*m_window, QMimeData());
    QCOMPARE(m_window->focusWidget(), m_field);
    QVERIFY(other.isActiveWindow());
}

void FileDropHoverTest::leavesTheFocusElsewhere() {
    m_button->setFocus();
    enter(*m_field, QMimeData());
    leave(*m_field);
    enter(*m_window, QMimeData());
    QVERIFY(m_button->hasFocus());
}

// Through the window system's window, which finds out what is under the pointer.
void FileDropHoverTest::followsADragAcrossTheWindow() {
    const QMimeData dragging;
    QWindow& window = *m_window->windowHandle();
    const QPoint onField = m_field->mapTo(m_window.get(), m_field->rect().center());
    QVERIFY(enter(window, dragging, onField).isAccepted);
    QVERIFY(!m_field->isEnabled());
    QVERIFY(moveOn(window, dragging, onField + QPoint(2, 0)).isAccepted);
    QVERIFY(!m_field->isEnabled());
    QVERIFY(!moveOn(window, dragging, QPoint(1, 1)).isAccepted); // beside it
    QVERIFY(m_field->isEnabled());
    QVERIFY(moveOn(window, dragging, onField).isAccepted);
    QVERIFY(!m_field->isEnabled());
    QVERIFY(!drop(window, dragging, onField).isAccepted);
    QVERIFY(m_field->isEnabled());
    QVERIFY(m_field->hasFocus());
    expectFrame(false);
}

void FileDropHoverTest::isEnabledWhenADragLeavesTheWindowFromIt() {
    QWindow& window = *m_window->windowHandle();
    enter(window, QMimeData(), m_field->mapTo(m_window.get(), m_field->rect().center()));
    QVERIFY(!m_field->isEnabled());
    leave(window);
    QVERIFY(m_field->isEnabled());
    QVERIFY(m_field->hasFocus());
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::FileDropHoverTest)
#include "FileDropHoverTest.moc"

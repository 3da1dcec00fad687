#include "ui/NSFileDropWindow.h"
#include "tests/ui/windows/Drags.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWindow>

namespace flashwriter::testing {

class NSFileDropWindowTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void answersNoneWithoutATarget();
    void answersNoneAndEnablesTheTarget();
    void takesNoDrop();
    void forgetsATargetThatHasGone();
    void pressesItsDefaultButton_data();
    void pressesItsDefaultButton();
    void pressesNoOtherButton();
    void allowsToMinimise();
    void keepsItsMinimiseButtonUntilItIsShown();

private:
    std::unique_ptr<NSFileDropWindow> m_window;
    NSFileDropTextField* m_field = nullptr;
    QPushButton* m_write = nullptr;
    QPushButton* m_select = nullptr;
};

void NSFileDropWindowTest::init() {
    m_window = std::make_unique<NSFileDropWindow>();
    auto* form = new QWidget;
    auto* layout = new QHBoxLayout(form);
    m_field = new NSFileDropTextField;
    m_select = new QPushButton("Select");
    m_write = new QPushButton("Write");
    m_write->setDefault(true);
    for (QWidget* widget : std::initializer_list<QWidget*>{m_select, m_field, m_write}) {
        layout->addWidget(widget);
    }
    m_window->setCentralWidget(form);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
}

void NSFileDropWindowTest::answersNoneWithoutATarget() {
    m_field->setEnabled(false);
    const QMimeData dragging;
    QCOMPARE(m_window->draggingEntered(dragging), DragOperation::None);
    QVERIFY(!enter(*m_window, dragging).isAccepted);
    QVERIFY(!m_field->isEnabled());
}

void NSFileDropWindowTest::answersNoneAndEnablesTheTarget() {
    m_window->setTrgetTextField(m_field);
    m_field->setText("/image.bin");
    const QMimeData dragging;
    for (const bool wasEnabled : {true, false}) {
        m_field->setEnabled(wasEnabled);
        QCOMPARE(m_window->draggingEntered(dragging), DragOperation::None);
        QVERIFY(m_field->isEnabled());
        m_field->setEnabled(wasEnabled);
        QVERIFY(!enter(*m_window, dragging).isAccepted);
        QVERIFY(m_field->isEnabled());
    }
    QCOMPARE(m_field->text(), QString("/image.bin"));
}

// Not even of a file that the field would take.
void NSFileDropWindowTest::takesNoDrop() {
    m_window->setTrgetTextField(m_field);
    const auto dragging = dragOfFiles({QCoreApplication::applicationFilePath()});
    QWindow& window = *m_window->windowHandle();
    QVERIFY(!enter(window, *dragging, {1, 1}).isAccepted);
    QVERIFY(!moveOn(window, *dragging, {2, 2}).isAccepted);
    QVERIFY(!drop(window, *dragging, {2, 2}).isAccepted);
    QCOMPARE(m_field->text(), QString());
    QVERIFY(m_field->isEnabled());
}

void NSFileDropWindowTest::forgetsATargetThatHasGone() {
    m_window->setTrgetTextField(m_field);
    delete m_field;
    QCOMPARE(m_window->draggingEntered(QMimeData()), DragOperation::None);
}

void NSFileDropWindowTest::pressesItsDefaultButton_data() {
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("isPressing");
    QTest::newRow("Return") << int{Qt::Key_Return} << 0 << true;
    QTest::newRow("Enter") << int{Qt::Key_Enter} << int{Qt::KeypadModifier} << true;
    QTest::newRow("Space") << int{Qt::Key_Space} << 0 << false;
    QTest::newRow("Escape") << int{Qt::Key_Escape} << 0 << false;
    QTest::newRow("Control-Return") << int{Qt::Key_Return} << int{Qt::ControlModifier} << false;
    QTest::newRow("Shift-Return") << int{Qt::Key_Return} << int{Qt::ShiftModifier} << false;
    QTest::newRow("Alt-Return") << int{Qt::Key_Return} << int{Qt::AltModifier} << false;
}

void NSFileDropWindowTest::pressesItsDefaultButton() {
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, isPressing);
    const QSignalSpy pressed(m_write, &QPushButton::clicked);
    const auto press = [&](QWidget* where) {
        QTest::keyClick(where, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    };
    press(m_window.get());
    press(m_field); // which does nothing of its own with it
    QCOMPARE(pressed.size(), isPressing ? 2 : 0);
    m_write->setEnabled(false);
    press(m_window.get());
    m_write->setEnabled(true);
    m_write->hide();
    press(m_window.get());
    QCOMPARE(pressed.size(), isPressing ? 2 : 0);
}

// One that is no default, and one of a window of its own.
void NSFileDropWindowTest::pressesNoOtherButton() {
    QDialog dialog(m_window.get());
    QPushButton ok("OK", &dialog);
    ok.setDefault(true);
    dialog.show();
    const QSignalSpy okPressed(&ok, &QPushButton::clicked);
    const QSignalSpy selectPressed(m_select, &QPushButton::clicked);
    const QSignalSpy writePressed(m_write, &QPushButton::clicked);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QCOMPARE(writePressed.size(), 1);
    QCOMPARE(okPressed.size(), 0);
    m_write->setDefault(false);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QCOMPARE(writePressed.size(), 1);
    QCOMPARE(selectPressed.size(), 0);
}

void NSFileDropWindowTest::allowsToMinimise() {
    const auto hasButton = [this] {
        return m_window->windowHandle()->flags().testFlag(Qt::WindowMinimizeButtonHint);
    };
    QVERIFY(m_window->isMiniaturizeEnabled());
    m_window->setMiniaturizeEnabled(false);
    QVERIFY(!m_window->isMiniaturizeEnabled());
    QVERIFY(!hasButton());
    QVERIFY(m_window->isVisible());
    m_window->setMiniaturizeEnabled(true);
    QVERIFY(m_window->isMiniaturizeEnabled());
    QVERIFY(hasButton());
    QVERIFY(m_window->isVisible());
}

void NSFileDropWindowTest::keepsItsMinimiseButtonUntilItIsShown() {
    NSFileDropWindow hidden;
    hidden.setMiniaturizeEnabled(false);
    hidden.setMiniaturizeEnabled(true);
    hidden.show();
    QVERIFY(hidden.windowHandle()->flags().testFlag(Qt::WindowMinimizeButtonHint));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::NSFileDropWindowTest)
#include "NSFileDropWindowTest.moc"

#include "tests/ui/windows/Outcomes.h"
#include "ui/AnnouncedText.h"
#include "ui/NSFileDropWindow.h"
#include "ui/ProgressWindowController.h"

#include <QAccessible>
#include <QTest>

namespace flashwriter::testing {

// What a screen reader finds in the result and progress windows. Each control's name is the one
// that it has in the program; what there is to read is its description.
class WindowAccessibilityTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void describesALabelByItsText();
    void describesTheResultWindow_data();
    void describesTheResultWindow();
    void describesTheResult();
    void pressesOK();
    void describesTheProgressWindow_data();
    void describesTheProgressWindow();
    void describesTheProgress();

private:
    QWidget* sheet() const { return m_main->findChild<SheetWindow*>(); }
    QWidget* resultWindow() const { return &m_controller->result().resultWindow(); }
    static QAccessibleInterface* find(QWidget* window, const QString& name);

    MainThreadQueue m_queue;
    std::unique_ptr<NSFileDropWindow> m_main;
    std::unique_ptr<ProgressWindowController> m_controller;
};

void WindowAccessibilityTest::init() {
    m_controller.reset();
    m_main = std::make_unique<NSFileDropWindow>();
    m_main->show();
    m_controller = std::make_unique<ProgressWindowController>(m_queue);
    m_controller->setMainWindow(m_main.get());
    m_controller->beginSheet();
}

QAccessibleInterface* WindowAccessibilityTest::find(QWidget* window, const QString& name) {
    QWidget* widget = window->objectName() == name ? window : window->findChild<QWidget*>(name);
    return widget != nullptr ? QAccessible::queryAccessibleInterface(widget) : nullptr;
}

void WindowAccessibilityTest::describesALabelByItsText() {
    QLabel label;
    label.setAccessibleName("label");
    const QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(&label);
    for (const QString text : {"one", "two\nlines", "<b>bold</b>", ""}) {
        setAnnouncedText(label, text);
        QCOMPARE(label.text(), text);
        QCOMPARE(seen->text(QAccessible::Name), QString("label"));
        QCOMPARE(seen->text(QAccessible::Description), text);
    }
}

void WindowAccessibilityTest::describesTheResultWindow_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("role");
    QTest::newRow("window") << "resultWindow" << int{QAccessible::Dialog};
    QTest::newRow("icon") << "resultIcon" << int{QAccessible::StaticText};
    QTest::newRow("message") << "resultMessage" << int{QAccessible::StaticText};
    QTest::newRow("advice") << "resultAdvice" << int{QAccessible::StaticText};
    QTest::newRow("button") << "okButton" << int{QAccessible::Button};
}

void WindowAccessibilityTest::describesTheResultWindow() {
    QFETCH(QString, name);
    QFETCH(int, role);
    setResult(*m_controller, failure(0x2005, 2));
    const QAccessibleInterface* control = find(resultWindow(), name);
    QVERIFY(control != nullptr);
    QCOMPARE(control->text(QAccessible::Name), name);
    if (name != "resultIcon") { // which has no words, and whose role follows what it shows
        QCOMPARE(int{control->role()}, role);
    }
}

void WindowAccessibilityTest::describesTheResult() {
    setResult(*m_controller, failure(0x2005, 2));
    const QString message = "The writing processing failed\nERROR:0x00002005\n"
                            "COM = 0x40, Retry = 3\nST1 = 0x0A, DST1 = 0xFF, DST2 = 0x06\n";
    const auto described = [this](const char* name) {
        return find(resultWindow(), name)->text(QAccessible::Description);
    };
    QCOMPARE(described("resultMessage"), message);
    QCOMPARE(described("resultWindow"), message);
    m_controller->result().setAdvice("Do this.");
    QCOMPARE(described("resultAdvice"), QString("Do this."));
    setResult(*m_controller, {});
    QCOMPARE(described("resultMessage"), QString("The writing processing succeeded. "));
    QCOMPARE(described("resultAdvice"), QString());
}

void WindowAccessibilityTest::pressesOK() {
    resultWindow()->show();
    QVERIFY(find(resultWindow(), "okButton")->state().defaultButton);
    find(resultWindow(), "okButton")
        ->actionInterface()
        ->doAction(QAccessibleActionInterface::pressAction());
    QTRY_VERIFY(!resultWindow()->isVisible());
}

void WindowAccessibilityTest::describesTheProgressWindow_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("role");
    QTest::newRow("window") << "progressWindow" << int{QAccessible::Dialog};
    QTest::newRow("label") << "progressLabel" << int{QAccessible::StaticText};
    QTest::newRow("bar") << "progressBar" << int{QAccessible::ProgressBar};
    QTest::newRow("hint") << "progressHint" << int{QAccessible::StaticText};
}

void WindowAccessibilityTest::describesTheProgressWindow() {
    QFETCH(QString, name);
    const QAccessibleInterface* control = find(sheet(), name);
    QVERIFY(control != nullptr);
    QTEST(int{control->role()}, "role");
    QCOMPARE(control->text(QAccessible::Name), name);
}

void WindowAccessibilityTest::describesTheProgress() {
    m_controller->UpdateProgress(103, 45);
    QCOMPARE(find(sheet(), "progressLabel")->text(QAccessible::Description),
             QString("Writing data. (45 %)"));
    QAccessibleValueInterface* value = find(sheet(), "progressBar")->valueInterface();
    QVERIFY(value != nullptr);
    QCOMPARE(value->currentValue().toInt(), 45);
    QCOMPARE(value->minimumValue().toInt(), 0);
    QCOMPARE(value->maximumValue().toInt(), 100);
    QCOMPARE(find(sheet(), "progressHint")->text(QAccessible::Description),
             QString("Leave the board connected until the result appears."));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::WindowAccessibilityTest)
#include "WindowAccessibilityTest.moc"

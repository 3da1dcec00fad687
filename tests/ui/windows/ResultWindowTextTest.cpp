#include "tests/ui/windows/DiagnosticLines.h"
#include "tests/ui/windows/Outcomes.h"
#include "ui/ResultWindowController.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTextLayout>
#include <QTimer>

#include <algorithm>
#include <functional>

namespace flashwriter::testing {

namespace {

constexpr int WIDEST = 700;            // pixels
constexpr char16_t MAY_BREAK = 0x200B; // a character that shows nothing

// A name as long as file systems allow, without a place to break it. Each part of it is another.
QString longName() {
    QString name;
    for (int i = 0; name.size() < 255; ++i) {
        name += QString("x%1").arg(i);
    }
    return name.left(255);
}

// How wide the label's text is as the label breaks it, in pixels.
qreal widestLine(const QLabel& label) {
    QTextLayout layout(label.text(), label.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WordWrap);
    layout.setTextOption(option);
    qreal widest = 0;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(label.width());
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    return widest;
}

} // namespace

// What the person can do with the result window's texts.
class ResultWindowTextTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void isSelectedByMouse_data();
    void isSelectedByMouse();
    void isSelectedByKeyboard_data();
    void isSelectedByKeyboard();
    void returnPressesOkFromAText_data();
    void returnPressesOkFromAText();
    void aRepeatedReturnClosesNothing();
    void breaksALongName_data();
    void breaksALongName();

private:
    static void addTexts() {
        QTest::addColumn<QString>("name");
        QTest::newRow("message") << "resultMessage";
        QTest::newRow("advice") << "resultAdvice";
    }
    QLabel& label(const QString& name) {
        return *m_controller->resultWindow().findChild<QLabel*>(name);
    }
    // Shows the window, and does this to it once it has the keyboard.
    void runModal(const std::function<void()>& act);

    MainThreadQueue m_queue;
    std::unique_ptr<DiagnosticLines> m_log;
    std::unique_ptr<ResultWindowController> m_controller;
};

void ResultWindowTextTest::init() {
    m_log = std::make_unique<DiagnosticLines>();
    m_controller = std::make_unique<ResultWindowController>(m_queue);
    setResult(*m_controller, failure(0x2005, 0));
    m_controller->setAdvice("Some words of advice.");
}

void ResultWindowTextTest::cleanup() {
    m_controller.reset();
    m_log.reset();
}

void ResultWindowTextTest::runModal(const std::function<void()>& act) {
    bool hasActed = false;
    QTimer::singleShot(0, &m_controller->resultWindow(), [&] {
        hasActed = QTest::qWaitForWindowActive(&m_controller->resultWindow());
        act();
        m_controller->pushOK(nullptr); // whatever has come of it
    });
    m_controller->runModal(nullptr);
    QVERIFY(hasActed);
}

void ResultWindowTextTest::isSelectedByMouse_data() {
    addTexts();
}

void ResultWindowTextTest::isSelectedByMouse() {
    QFETCH(const QString, name);
    runModal([&] {
        QLabel& text = label(name);
        QTest::mouseDClick(&text, Qt::LeftButton, {}, QPoint(12, text.height() / 2));
        QVERIFY(!text.selectedText().isEmpty());
        QVERIFY(text.text().contains(text.selectedText()));
    });
}

void ResultWindowTextTest::isSelectedByKeyboard_data() {
    addTexts();
}

void ResultWindowTextTest::isSelectedByKeyboard() {
    QFETCH(const QString, name);
    runModal([&] {
        QLabel& text = label(name);
        QVERIFY(text.focusPolicy() & Qt::TabFocus);
        text.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&text, Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClick(&text, Qt::Key_Right, Qt::ShiftModifier);
        QTest::keyClick(&text, Qt::Key_Right, Qt::ShiftModifier);
        QCOMPARE(text.selectedText(), text.text().left(2));
    });
}

void ResultWindowTextTest::returnPressesOkFromAText_data() {
    addTexts();
}

void ResultWindowTextTest::returnPressesOkFromAText() {
    QFETCH(const QString, name);
    runModal([&] {
        label(name).setFocus();
        QVERIFY(label(name).hasFocus());
        QTest::keyClick(&label(name), Qt::Key_Return);
        QVERIFY(!m_controller->resultWindow().isVisible());
    });
}

// One that the person has been holding since the window before.
void ResultWindowTextTest::aRepeatedReturnClosesNothing() {
    runModal([&] {
        NSCenteringWindow& window = m_controller->resultWindow();
        auto& ok = *window.findChild<QPushButton*>("okButton");
        for (QWidget* widget : std::initializer_list<QWidget*>{
                 &window, &ok, &label("resultMessage"), &label("resultAdvice")}) {
            for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
                QTest::simulateEvent(widget, true, key, Qt::NoModifier, "\r", true);
                QVERIFY2(window.isVisible(), qPrintable(widget->objectName()));
            }
        }
        QTest::keyClick(&window, Qt::Key_Return);
        QVERIFY(!window.isVisible());
    });
}

void ResultWindowTextTest::breaksALongName_data() {
    QTest::addColumn<QString>("advice");
    QTest::newRow("name") << "The file /tmp/" + longName() + " is not there: choose it again.";
    QTest::newRow("wide letters") << "No " + QString(255, 'W') + ".";
}

void ResultWindowTextTest::breaksALongName() {
    QFETCH(const QString, advice);
    m_controller->setAdvice(advice.toStdString());
    runModal([&] {
        QLabel& text = label("resultAdvice");
        QVERIFY2(m_controller->resultWindow().width() <= WIDEST,
                 qPrintable(QString::number(m_controller->resultWindow().width())));
        QCOMPARE(text.accessibleDescription(), advice);
        QString shown = text.text();
        QCOMPARE(shown.remove(QChar(MAY_BREAK)), advice);
        QVERIFY(text.height() >= text.heightForWidth(text.width()));
        QVERIFY(widestLine(text) <= text.width());
    });
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ResultWindowTextTest)
#include "ResultWindowTextTest.moc"

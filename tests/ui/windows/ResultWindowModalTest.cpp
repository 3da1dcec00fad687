#include "tests/ui/windows/DiagnosticLines.h"
#include "tests/ui/windows/Outcomes.h"
#include "ui/ResultWindowController.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace flashwriter::testing {

class ResultWindowModalTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void isClosedInEveryWay_data();
    void isClosedInEveryWay();
    void isApplicationModal();
    void standsInTheMiddleOfTheMainWindow();
    void outlivesTheMainWindow();
    void goesWithTheMainWindowWhileItIsShown();

private:
    QString message() {
        return m_controller->resultWindow().findChild<QLabel*>("resultMessage")->text();
    }
    // Shows the window and does this to it once it is there.
    void runModal(QWidget* mainWindow, const std::function<void()>& act);

    MainThreadQueue m_queue;
    std::unique_ptr<ResultWindowController> m_controller;
    std::unique_ptr<DiagnosticLines> m_log;
};

void ResultWindowModalTest::init() {
    m_log = std::make_unique<DiagnosticLines>();
    m_controller = std::make_unique<ResultWindowController>(m_queue);
}

void ResultWindowModalTest::cleanup() {
    m_controller.reset();
    m_log.reset();
}

void ResultWindowModalTest::runModal(QWidget* mainWindow, const std::function<void()>& act) {
    int times = 0;
    QTimer::singleShot(0, &m_controller->resultWindow(), [&] {
        ++times;
        QVERIFY(m_controller->resultWindow().isVisible());
        QVERIFY(DiagnosticLines::take().isEmpty());
        act();
    });
    m_controller->runModal(mainWindow);
    QCOMPARE(times, 1);
    QVERIFY(!m_controller->resultWindow().isVisible());
    QCOMPARE(DiagnosticLines::take(), QStringList("Result Window closed!!"));
}

void ResultWindowModalTest::isClosedInEveryWay_data() {
    QTest::addColumn<QString>("way");
    for (const char* way : {"OK", "Return", "Enter", "Escape", "title bar", "pushOK"}) {
        QTest::newRow(way) << QString(way);
    }
}

void ResultWindowModalTest::isClosedInEveryWay() {
    QFETCH(QString, way);
    setResult(*m_controller, failure(0x2005, 0));
    NSCenteringWindow& window = m_controller->resultWindow();
    for (int time = 0; time < 2; ++time) {
        runModal(nullptr, [&] {
            if (way == "OK") {
                QTest::mouseClick(window.findChild<QPushButton*>("okButton"), Qt::LeftButton);
            } else if (way == "title bar") {
                QVERIFY(window.windowHandle()->close());
            } else if (way == "pushOK") {
                m_controller->pushOK(nullptr);
            } else {
                QTest::keyClick(&window, way == "Return"  ? Qt::Key_Return
                                         : way == "Enter" ? Qt::Key_Enter
                                                          : Qt::Key_Escape);
            }
        });
    }
}

void ResultWindowModalTest::isApplicationModal() {
    QWidget main;
    main.show();
    runModal(&main, [&] {
        QCOMPARE(QApplication::activeModalWidget(), &m_controller->resultWindow());
        QCOMPARE(m_controller->resultWindow().windowModality(), Qt::ApplicationModal);
        m_controller->pushOK(nullptr);
    });
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

// With texts of different lengths one after the other.
void ResultWindowModalTest::standsInTheMiddleOfTheMainWindow() {
    QWidget main;
    main.setGeometry(90, 70, 610, 430);
    main.show();
    for (const _RESULTINFO& result : {failure(0x2005, 0), _RESULTINFO{}, failure(1, 1)}) {
        setResult(*m_controller, result);
        runModal(&main, [&] {
            const QRect frame = m_controller->resultWindow().frameGeometry();
            const QPoint difference = frame.center() - main.frameGeometry().center();
            QVERIFY2(difference.manhattanLength() <= 2, qPrintable(QDebug::toString(frame)));
            m_controller->pushOK(nullptr);
        });
    }
    runModal(nullptr, [&] { // of an all-zero rectangle
        const QSizeF size = m_controller->resultWindow().frameGeometry().size();
        QCOMPARE(m_controller->resultWindow().dispPoint(),
                 QPointF(size.width() * -0.5, size.height() * -0.5));
        m_controller->pushOK(nullptr);
    });
}

void ResultWindowModalTest::outlivesTheMainWindow() {
    setResult(*m_controller, failure(0x2005, 0));
    {
        QWidget main;
        main.show();
        runModal(&main, [&] { m_controller->pushOK(nullptr); });
    }
    QVERIFY(message().contains("0x00002005")); // loaded anew
    setResult(*m_controller, {});
    runModal(nullptr, [&] { m_controller->pushOK(nullptr); });
    QCOMPARE(message(), QString("The writing processing succeeded. "));
}

void ResultWindowModalTest::goesWithTheMainWindowWhileItIsShown() {
    auto main = std::make_unique<QWidget>();
    main->show();
    QVERIFY(QTest::qWaitForWindowActive(main.get()));
    QTimer::singleShot(0, this, [&] { main.reset(); });
    m_controller->runModal(main.get());
    QVERIFY(main == nullptr);
    runModal(nullptr, [&] { m_controller->pushOK(nullptr); });
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ResultWindowModalTest)
#include "ResultWindowModalTest.moc"

#include "ui/ProgressWindowController.h"
#include "tests/ui/windows/DiagnosticLines.h"
#include "tests/ui/windows/Outcomes.h"
#include "ui/NSFileDropWindow.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QTimer>

#include <thread>

namespace flashwriter::testing {

class ProgressWindowControllerTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void namesTheStep_data();
    void namesTheStep();
    void showsWhatIsBeyondAWhole_data();
    void showsWhatIsBeyondAWhole();
    void showsAWorkersProgressInItsOrder();
    void beginsWithoutAWord();
    void saysWhatItWaitsFor();
    void endsWithTheResultFirst();
    void endsWithoutAMainWindow();
    void endsWithoutASheet();
    void canBeUsedAgain();
    void outlivesTheMainWindow();

private:
    SheetWindow* sheet() { return m_main->findChild<SheetWindow*>(); }
    QString hint() { return sheet()->findChild<QLabel*>("progressHint")->text(); }
    QString label() { return sheet()->findChild<QLabel*>("progressLabel")->text(); }
    QProgressBar* bar() { return sheet()->findChild<QProgressBar*>("progressBar"); }
    void write(const QString& message);

    MainThreadQueue m_queue;
    std::unique_ptr<NSFileDropWindow> m_main;
    std::unique_ptr<ProgressWindowController> m_controller;
    std::unique_ptr<DiagnosticLines> m_log;
};

void ProgressWindowControllerTest::init() {
    m_log = std::make_unique<DiagnosticLines>();
    m_main = std::make_unique<NSFileDropWindow>();
    m_main->setGeometry(100, 80, 300, 200);
    m_main->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_main.get()));
    m_controller = std::make_unique<ProgressWindowController>(m_queue);
    m_controller->setMainWindow(m_main.get());
}

void ProgressWindowControllerTest::cleanup() {
    m_controller.reset();
    m_main.reset();
    m_log.reset();
}

void ProgressWindowControllerTest::namesTheStep_data() {
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("percentage");
    QTest::addColumn<QString>("text");
    QTest::newRow("100") << 100 << 5 << "Reading file. (5 %)";
    QTest::newRow("101") << 101 << 10 << "Changing to programming mode. (10 %)";
    QTest::newRow("102") << 102 << 20 << "Erasing block data. (20 %)";
    QTest::newRow("103") << 103 << 45 << "Writing data. (45 %)";
    QTest::newRow("at the end") << 103 << 100 << "Writing data. (100 %)";
    QTest::newRow("at the beginning") << 100 << 0 << "Reading file. (0 %)";
    QTest::newRow("104") << 104 << 7 << " (7 %)";
    QTest::newRow("99") << 99 << 7 << " (7 %)";
    QTest::newRow("0") << 0 << 7 << " (7 %)";
    QTest::newRow("-1") << -1 << 7 << " (7 %)";
}

void ProgressWindowControllerTest::namesTheStep() {
    QFETCH(int, step);
    QFETCH(int, percentage);
    m_controller->beginSheet();
    QCOMPARE(m_controller->UpdateProgress(step, percentage), std::uint64_t{0});
    QTEST(label(), "text");
    QCOMPARE(bar()->value(), percentage);
}

void ProgressWindowControllerTest::showsWhatIsBeyondAWhole_data() {
    QTest::addColumn<int>("percentage");
    QTest::addColumn<int>("shown");
    QTest::newRow("101") << 101 << 100;
    QTest::newRow("-1") << -1 << 0;
    QTest::newRow("largest") << INT_MAX << 100;
    QTest::newRow("smallest") << INT_MIN << 0;
}

void ProgressWindowControllerTest::showsWhatIsBeyondAWhole() {
    QFETCH(int, percentage);
    m_controller->beginSheet();
    m_controller->UpdateProgress(103, 50);
    m_controller->UpdateProgress(103, percentage);
    QCOMPARE(label(), QString("Writing data. (%1 %)").arg(percentage));
    QTEST(bar()->value(), "shown");
}

void ProgressWindowControllerTest::showsAWorkersProgressInItsOrder() {
    m_controller->beginSheet();
    QStringList seen;
    QObject::connect(bar(), &QProgressBar::valueChanged, bar(),
                     [&](int value) { seen.append(QString::number(value) + ' ' + label()); });
    std::thread worker([this] {
        for (int percentage = 1; percentage <= 100; ++percentage) {
            m_controller->UpdateProgress(100 + percentage % 4, percentage);
        }
        setResult(*m_controller, failure(0x2005, 0));
    });
    worker.join();
    QVERIFY(seen.isEmpty());
    QTRY_COMPARE(seen.size(), 100);
    for (int percentage = 1; percentage <= 100; ++percentage) {
        const QString start = QString("%1 ").arg(percentage);
        QVERIFY(seen[percentage - 1].startsWith(start));
        QVERIFY(seen[percentage - 1].endsWith(QString(" (%1 %)").arg(percentage)));
    }
    QCOMPARE(seen[98], QString("99 Writing data. (99 %)"));
}

void ProgressWindowControllerTest::beginsWithoutAWord() {
    m_controller->beginSheet();
    QVERIFY(sheet()->isVisible());
    QVERIFY(m_main->isSheetUp());
    QCOMPARE(label(), QString());
    QCOMPARE(bar()->value(), 0);
    QCOMPARE(bar()->minimum(), 0);
    QCOMPARE(bar()->maximum(), 100);
}

// The board has no part in it while the image is read, and unplugging it would be no help.
void ProgressWindowControllerTest::saysWhatItWaitsFor() {
    m_controller->beginSheet();
    for (const int step : {100, 103, 100}) {
        m_controller->UpdateProgress(step, 5);
        QVERIFY(!hint().contains("for a while"));
        QTRY_VERIFY(hint().contains("for a while"));
        QCOMPARE(hint().contains("adapter"), step != 100);
        QCOMPARE(hint().contains("reading the image"), step == 100);
    }
}

// Until the result is closed the sheet stays up and the main window cannot be minimised.
void ProgressWindowControllerTest::endsWithTheResultFirst() {
    m_main->setMiniaturizeEnabled(false);
    m_controller->beginSheet();
    std::thread([this] { setResult(*m_controller, failure(0x2005, 2)); }).join();
    bool wasUp = false;
    m_queue.queue()([&] { m_controller->close(); });
    QTimer::singleShot(0, m_main.get(), [&] {
        NSCenteringWindow& result = m_controller->result().resultWindow();
        wasUp = result.isVisible() && sheet()->isVisible() && m_main->isSheetUp() &&
                !m_main->isMiniaturizeEnabled() && DiagnosticLines::take().isEmpty();
        QVERIFY(result.findChild<QLabel*>("resultMessage")->text().contains("0x00002005"));
        const QPoint apart = result.frameGeometry().center() - m_main->frameGeometry().center();
        QVERIFY(apart.manhattanLength() <= 2);
        result.close();
    });
    QTRY_VERIFY(wasUp);
    QCOMPARE(DiagnosticLines::take(),
             QStringList({"Result Window closed!!", "Progresswindow closed!!"}));
    QVERIFY(m_main->isMiniaturizeEnabled());
    QVERIFY(!sheet()->isVisible());
    QVERIFY(!m_main->isSheetUp());
}

void ProgressWindowControllerTest::write(const QString& message) {
    m_controller->beginSheet();
    m_controller->UpdateProgress(103, 45);
    QString shown;
    QTimer::singleShot(0, [&] {
        NSCenteringWindow& result = m_controller->result().resultWindow();
        shown = result.findChild<QLabel*>("resultMessage")->text();
        result.close();
    });
    m_controller->close();
    QVERIFY2(shown.contains(message), qPrintable(shown));
    QCOMPARE(DiagnosticLines::take(),
             QStringList({"Result Window closed!!", "Progresswindow closed!!"}));
}

void ProgressWindowControllerTest::endsWithoutAMainWindow() {
    m_controller->setMainWindow(nullptr);
    setResult(*m_controller, failure(0x2005, 0));
    write("0x00002005");
    QVERIFY(sheet() == nullptr);
    QVERIFY(m_controller->result().resultWindow().dispPoint().x() < 0);
}

void ProgressWindowControllerTest::endsWithoutASheet() {
    setResult(*m_controller, failure(0x2005, 0));
    m_controller->UpdateProgress(103, 45);
    QTimer::singleShot(0, [this] { m_controller->result().pushOK(nullptr); });
    m_controller->close();
    QVERIFY(DiagnosticLines::take().contains("Progresswindow closed!!"));
}

void ProgressWindowControllerTest::canBeUsedAgain() {
    setResult(*m_controller, failure(0x2005, 0));
    write("0x00002005");
    setResult(*m_controller, {});
    write("succeeded");
    m_controller->beginSheet();
    QCOMPARE(label(), QString());
    QCOMPARE(bar()->value(), 0);
}

void ProgressWindowControllerTest::outlivesTheMainWindow() {
    setResult(*m_controller, failure(0x2005, 0));
    write("0x00002005");
    m_main.reset();
    setResult(*m_controller, {});
    write("succeeded");
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ProgressWindowControllerTest)
#include "ProgressWindowControllerTest.moc"

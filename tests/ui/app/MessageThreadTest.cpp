// Messages of Qt's logging, whose reader may take its time.
#include "app/MessageThread.h"

#include "tests/sequence/DiagnosticLines.h"
#include "tests/support/FailingNew.h"
#include "tests/support/FailingThread.h"
#include "tests/ui/app/MessageReader.h"

#include <QElapsedTimer>
#include <QLoggingCategory>
#include <QTest>

#include <memory>
#include <thread>
#include <vector>

namespace flashwriter::testing {

namespace {

constexpr int MOST_WAITING = 20000;

Q_LOGGING_CATEGORY(sample, "sample")

} // namespace

// Its thread lasts as long as the process, as in the program: all but the first of these share one.
class MessageThreadTest : public QObject {
    Q_OBJECT

private slots:
    void leavesMessagesAloneWithoutAThread();
    void bringsMessagesOnAThread();
    void countsWhatIsLost();
    void countsWhatThereIsNoMemoryFor();
    void countsWhatCannotBeKept();
    void bringsAFatalMessageLast();
    void doesNotWaitForAMessageReaderAtTheEnd();

private:
    std::unique_ptr<MessageReader> m_reader;
    std::unique_ptr<MessageThread> m_messages;
};

void MessageThreadTest::leavesMessagesAloneWithoutAThread() {
    const DiagnosticLines lines;
    MessageReader reader;
    failThreadCreation = true;
    {
        const MessageThread messages;
        failThreadCreation = false;
        QCOMPARE(DiagnosticLines::all().size(), 1);
        QVERIFY(DiagnosticLines::all()[0].starts_with("messages: "));
        qCInfo(sample, "with it");
        QCOMPARE(reader.count(), 1);
    }
    qCInfo(sample, "after it");
    QCOMPARE(reader.count(), 2);
    for (const TakenMessage& message : reader.all()) {
        QVERIFY(message.thread == std::this_thread::get_id());
    }
}

void MessageThreadTest::bringsMessagesOnAThread() {
    m_reader = std::make_unique<MessageReader>();
    m_messages = std::make_unique<MessageThread>();
    qCInfo(sample, "first");
    qCCritical(sample, "second");
    QTRY_COMPARE(m_reader->count(), 2);
    const std::vector<TakenMessage> messages = m_reader->all();
    QCOMPARE(messages[0].text, "first");
    QCOMPARE(messages[0].type, QtInfoMsg);
    QCOMPARE(messages[1].text, "second");
    QCOMPARE(messages[1].type, QtCriticalMsg);
    for (const TakenMessage& message : messages) {
        QCOMPARE(message.category, "sample");
        QVERIFY(message.thread != std::this_thread::get_id());
    }
}

// One is on its way, as many wait as may, and the next ones find no room: they are missed where
// they would have stood.
void MessageThreadTest::countsWhatIsLost() {
    constexpr int LOST = 3;
    const std::size_t before = m_reader->count();
    m_reader->hold(true);
    qCInfo(sample, "held");
    QTRY_VERIFY(m_reader->isWaitedFor());
    for (int i = 0; i < MOST_WAITING + LOST; ++i) {
        qCInfo(sample, "%d", i);
    }
    m_reader->hold(false);
    QTRY_COMPARE(m_reader->count(), before + 1 + MOST_WAITING + 1);
    const std::vector<TakenMessage> messages = m_reader->all();
    QCOMPARE(messages[before].text, "held");
    for (int i = 0; i < MOST_WAITING; ++i) {
        QCOMPARE(messages[before + 1 + static_cast<std::size_t>(i)].text, QString::number(i));
    }
    QCOMPARE(messages.back().text, "(messages that were lost: 3)");
    QCOMPARE(messages.back().type, QtWarningMsg);
    QCOMPARE(messages.back().category, "flashwriter");
    qCInfo(sample, "there is room again");
    QTRY_COMPARE(m_reader->count(), before + 1 + MOST_WAITING + 2);
    QCOMPARE(m_reader->all().back().text, "there is room again");
}

// The thread that reads them has none.
void MessageThreadTest::countsWhatThereIsNoMemoryFor() {
    for (const int failures : {1, 2}) { // the second is that of the count
        const std::size_t before = m_reader->count();
        m_reader->fail(failures);
        qCInfo(sample, "lost");
        qCInfo(sample, "last");
        QTRY_COMPARE(m_reader->count(), before + 2);
        const std::vector<TakenMessage> messages = m_reader->all();
        QCOMPARE(messages[before].text, "(messages that were lost: 1)");
        QCOMPARE(messages[before + 1].text, "last");
    }
}

// Whoever has them to say has none.
void MessageThreadTest::countsWhatCannotBeKept() {
    const std::size_t before = m_reader->count();
    m_reader->hold(true);
    int said = 0;
    {
        const FailingNew failing(1);
        for (; !FailingNew::hasFailed(); ++said) {
            QVERIFY(said < 1000);
            qCInfo(sample, "%d", said);
        }
    }
    qCInfo(sample, "last");
    m_reader->hold(false);
    QTRY_COMPARE(m_reader->count(), before + static_cast<std::size_t>(said) + 1);
    const std::vector<TakenMessage> messages = m_reader->all();
    QCOMPARE(messages[messages.size() - 2].text, "(messages that were lost: 1)");
    QCOMPARE(messages.back().text, "last");
}

// Nobody brings anything after one that ends the program, and so whoever has it brings it, after
// those that are waiting. Qt's own function would end the test.
void MessageThreadTest::bringsAFatalMessageLast() {
    constexpr std::size_t WAITING = 1000;
    const std::size_t before = m_reader->count();
    for (std::size_t i = 0; i < WAITING; ++i) {
        qCInfo(sample, "%zu", i);
    }
    const QtMessageHandler handler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handler);
    handler(QtFatalMsg, QMessageLogContext(nullptr, 0, nullptr, "sample"), "the end");
    QCOMPARE(m_reader->count(), before + WAITING + 1);
    const TakenMessage last = m_reader->all().back();
    QCOMPARE(last.text, "the end");
    QCOMPARE(last.type, QtFatalMsg);
    QVERIFY(last.thread == std::this_thread::get_id());
}

void MessageThreadTest::doesNotWaitForAMessageReaderAtTheEnd() {
    m_reader->hold(true);
    qCInfo(sample, "last");
    QElapsedTimer elapsed;
    elapsed.start();
    m_messages.reset();
    QVERIFY(elapsed.elapsed() < 5000);
    m_reader->hold(false);
    QTRY_COMPARE(m_reader->all().back().text, "last");
    qCInfo(sample, "by itself");
    QVERIFY(m_reader->all().back().thread == std::this_thread::get_id());
    m_reader.reset();
}

} // namespace flashwriter::testing

QTEST_GUILESS_MAIN(flashwriter::testing::MessageThreadTest)
#include "MessageThreadTest.moc"

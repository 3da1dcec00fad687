#include "ui/LogText.h"

#include <QElapsedTimer>
#include <QTest>

namespace flashwriter::testing {

namespace {

constexpr int LIMIT = 65536;

} // namespace

// The text itself, and how much of it is kept.
class LogTextTest : public QObject {
    Q_OBJECT

private slots:
    void init();
    void appends();
    void takesTextAsItIs_data();
    void takesTextAsItIs();
    void keepsItsLimit_data();
    void keepsItsLimit();
    void keepsTheEndOfALongText();
    void countsUnitsOfCharacters();
    void keepsAllWithoutALimit();
    void takesAMegabyteAtOnce_data();
    void takesAMegabyteAtOnce();

private:
    QString text() const { return m_view->toPlainText(); }

    std::unique_ptr<QPlainTextEdit> m_view;
};

void LogTextTest::init() {
    m_view = std::make_unique<QPlainTextEdit>();
}

void LogTextTest::appends() {
    appendLogText(*m_view, "one");
    appendLogText(*m_view, " two\n");
    appendLogText(*m_view, "");
    appendLogText(*m_view, "three");
    QCOMPARE(text(), QString("one two\nthree"));
}

void LogTextTest::takesTextAsItIs_data() {
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("shown");
    QTest::newRow("line ends") << "a\r\nb\nc\r\n"
                               << "a\nb\nc\n";
    QTest::newRow("markup") << "<b>a</b> &amp;"
                            << "<b>a</b> &amp;";
    QTest::newRow("blanks") << "  a \t b  "
                            << "  a \t b  ";
    QTest::newRow("characters") << QString::fromUtf8("\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80")
                                << QString::fromUtf8("\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80");
}

void LogTextTest::takesTextAsItIs() {
    QFETCH(QString, given);
    appendLogText(*m_view, given);
    QTEST(text(), "shown");
}

void LogTextTest::keepsItsLimit_data() {
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("added");
    QTest::newRow("one less") << LIMIT - 2 << 1;
    QTest::newRow("exactly") << LIMIT - 1 << 1;
    QTest::newRow("one more") << LIMIT << 1;
    QTest::newRow("two more") << LIMIT << 2;
    QTest::newRow("nothing added") << LIMIT << 0;
    QTest::newRow("all of it") << 0 << LIMIT;
    QTest::newRow("more than all of it") << 10 << LIMIT + 3;
}

// A text in which each place differs from its neighbours.
void LogTextTest::keepsItsLimit() {
    QFETCH(int, before);
    QFETCH(int, added);
    QString whole;
    while (whole.size() < before + added) {
        whole += QString::number(whole.size()) + (whole.size() % 3 == 0 ? '\n' : ' ');
    }
    whole.truncate(before + added);
    appendLogText(*m_view, whole.left(before), LIMIT);
    QCOMPARE(text(), whole.left(before));
    appendLogText(*m_view, whole.mid(before), LIMIT);
    QCOMPARE(text(), whole.right(LIMIT));
}

void LogTextTest::keepsTheEndOfALongText() {
    appendLogText(*m_view, "abc\ndef", 5);
    QCOMPARE(text(), QString("c\ndef"));
    appendLogText(*m_view, "\n", 5);
    QCOMPARE(text(), QString("\ndef\n"));
    appendLogText(*m_view, "12345678", 1);
    QCOMPARE(text(), QString("8"));
}

// A character beyond the first 65536 of Unicode is two of them.
void LogTextTest::countsUnitsOfCharacters() {
    const QString smile = QString::fromUtf8("\xF0\x9F\x98\x80");
    appendLogText(*m_view, smile + smile, 4);
    QCOMPARE(text(), smile + smile);
    appendLogText(*m_view, "ab", 4);
    QCOMPARE(text(), smile + "ab");
    appendLogText(*m_view, "c", 4);
    QCOMPARE(text(), smile.right(1) + "abc");
    appendLogText(*m_view, "d", 4);
    QCOMPARE(text(), QString("abcd"));
}

void LogTextTest::keepsAllWithoutALimit() {
    const QString lines = QString("a line\n").repeated(LIMIT / 7);
    appendLogText(*m_view, lines);
    appendLogText(*m_view, lines, 0);
    QCOMPARE(text(), lines + lines);
}

void LogTextTest::takesAMegabyteAtOnce_data() {
    QTest::addColumn<QString>("whole");
    QTest::addColumn<int>("limit");
    constexpr qsizetype MEGABYTE = qsizetype{1} << 20;
    QTest::newRow("lines, all of them")
        << QString("0123456789abcde\n").repeated(MEGABYTE / 16) << 0;
    QTest::newRow("lines, the last")
        << QString("0123456789abcde\n").repeated(MEGABYTE / 16) << LIMIT;
    QTest::newRow("one line, its end") << QString(MEGABYTE, 'x') << LIMIT;
}

// With the time that the window needs to show it: nobody takes it for dead.
void LogTextTest::takesAMegabyteAtOnce() {
    QFETCH(const QString, whole);
    QFETCH(const int, limit);
    m_view->resize(600, 300);
    m_view->show();
    QElapsedTimer timer;
    timer.start();
    appendLogText(*m_view, whole, limit);
    m_view->repaint();
    const qint64 taken = timer.elapsed();
    QVERIFY(text() == (limit == 0 ? whole : whole.right(limit)));
    QVERIFY2(taken < MOST_MILLISECONDS, qPrintable(QString::number(taken)));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::LogTextTest)
#include "LogTextTest.moc"

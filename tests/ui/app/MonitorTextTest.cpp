#include "app/MonitorText.h"

#include <QTest>

#include <string>
#include <string_view>

namespace flashwriter::testing {

namespace {

QString decodePiece(MonitorText& text, std::string_view bytes) {
    return text.decode(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

// The text of bytes that come in two pieces, cut at a position.
QString decodeCut(std::string_view bytes, std::size_t cut) {
    MonitorText text;
    const QString first = decodePiece(text, bytes.substr(0, cut));
    return first + decodePiece(text, bytes.substr(cut));
}

const QString BAD(QChar(0xFFFD));

} // namespace

class MonitorTextTest : public QObject {
    Q_OBJECT

private slots:
    void joinsWhatIsCut_data();
    void joinsWhatIsCut();
    void joinsSingleBytes();
    void aNulEndsThePiece();
    void aNulEndsACharacterThatHasBegun();
    void resetForgetsHalves();
};

void MonitorTextTest::joinsWhatIsCut_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const QString wide = QString::fromUcs4(U"\u00E9\u20AC\U0001F600");
    QTest::newRow("1 to 4 bytes") << QByteArray("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z")
                                  << "a" + wide + "z";
    QTest::newRow("line ends") << QByteArray("a\r\nb\nc\rd\r\r\ne\n\nf\n\rg")
                               << "a\nb\nc\nd\n\ne\n\nf\n\ng";
    QTest::newRow("ends in a line end") << QByteArray("a\r\n") << "a\n";
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a\xEF\xBB\xBF")
                                     << QChar(0xFEFF) + QString("a") + QChar(0xFEFF);
    QTest::newRow("control characters") << QByteArray("\x01\t\x1B[0m\x7F") << "\x01\t\x1B[0m\x7F";
    QTest::newRow("stray bytes") << QByteArray("a\xFF"
                                               "b\x80"
                                               "c")
                                 << "a" + BAD + "b" + BAD + "c";
    QTest::newRow("lead without its end") << QByteArray("\xC3(") << BAD + "(";
    QTest::newRow("lead behind lead") << QByteArray("\xC3\xC3\xA9") << BAD + QChar(0xE9);
    QTest::newRow("three bytes without the fourth") << QByteArray("\xF0\x9F\x98"
                                                                  "ab")
                                                    << BAD + BAD + BAD + "ab";
    QTest::newRow("no character") << QByteArray("\xE0\x80\x80\xED\xA0\x80\xF4\x90\x80\x80.")
                                  << BAD.repeated(10) + ".";
}

void MonitorTextTest::joinsWhatIsCut() {
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, text);
    const std::string_view whole(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    for (std::size_t cut = 0; cut <= whole.size(); ++cut) {
        QVERIFY2(decodeCut(whole, cut) == text, QByteArray::number(qulonglong{cut}).constData());
    }
}

void MonitorTextTest::joinsSingleBytes() {
    const std::string_view bytes = "\xF0\x9F\x98\x80\r\n\xE2\x82\xAC";
    MonitorText text;
    QString all;
    for (const char byte : bytes) {
        all += decodePiece(text, std::string_view(&byte, 1));
        all += decodePiece(text, "");
    }
    QCOMPARE(all, QString::fromUcs4(U"\U0001F600\n\u20AC"));
}

void MonitorTextTest::aNulEndsThePiece() {
    using namespace std::string_view_literals;
    MonitorText text;
    QCOMPARE(decodePiece(text, "AB\0CD"sv), "AB");
    QCOMPARE(decodePiece(text, "EF"), "EF");
    QCOMPARE(decodePiece(text, "\0GH"sv), "");
    QCOMPARE(decodePiece(text, "I\0\0\0"sv), "I");
    QCOMPARE(decodePiece(text, "\0\xC3"sv), ""); // lost, and so is its beginning
    QCOMPARE(decodePiece(text, "J"), "J");
}

void MonitorTextTest::aNulEndsACharacterThatHasBegun() {
    using namespace std::string_view_literals;
    MonitorText text;
    QVERIFY(decodePiece(text, "A\xE2\0\x82\xAC"sv).startsWith("A" + BAD));
    QCOMPARE(decodePiece(text, "B\xE2\x82"sv), "B");
    const QString rest = decodePiece(text, "\0\xAC"sv);
    QVERIFY(rest.startsWith(BAD));
    QVERIFY(!rest.contains(QChar(0)));
    QCOMPARE(decodePiece(text, "C"), "C");
}

void MonitorTextTest::resetForgetsHalves() {
    MonitorText text;
    decodePiece(text, "\xE2\x82");
    text.reset();
    QCOMPARE(decodePiece(text, "a"), "a");
    decodePiece(text, "\r");
    text.reset();
    QCOMPARE(decodePiece(text, "\na"), "\na");
    text.reset();
    QCOMPARE(decodePiece(text, "\xEF\xBB\xBF"), QString(QChar(0xFEFF)));
}

} // namespace flashwriter::testing

QTEST_GUILESS_MAIN(flashwriter::testing::MonitorTextTest)
#include "MonitorTextTest.moc"

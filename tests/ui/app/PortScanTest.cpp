#include "app/PortScan.h"

#include "tests/support/FewDescriptors.h"
#include "tests/ui/app/PortCommands.h"

#include <QTest>

#include <fcntl.h>
#include <glob.h>

namespace flashwriter::testing {

namespace {

PortScan scanWith(std::vector<const char*> commands) {
    portCommands = std::move(commands);
    return scanPorts();
}

QStringList entriesLike(const char* pattern) {
    QStringList paths;
    glob_t found{};
    if (::glob(pattern, 0, nullptr, &found) == 0) {
        for (std::size_t i = 0; i < found.gl_pathc; ++i) {
            paths.append(found.gl_pathv[i]);
        }
    }
    ::globfree(&found);
    return paths;
}

// What the first pattern that matches anything matches.
QStringList portsOfThisMachine() {
    const QStringList links = entriesLike("/dev/cu.u*");
    return links.isEmpty() ? entriesLike("/dev/ttyACM*") + entriesLike("/dev/ttyUSB*") : links;
}

} // namespace

class PortScanTest : public QObject {
    Q_OBJECT

private slots:
    void splitsAListing_data();
    void splitsAListing();
    void keepsTheOrderOfTheListing();
    void takesStandardErrorForOutput();
    void goesByTheExitStatusAlone();
    void countsACommandThatIsKilledAsFailed();
    void triesTheNextCommandOnlyWhenOneFails();
    void reportsTheLastOutputWhenAllFail();
    void decodesUtf8();
    void readsMoreThanAPipeHolds();
    void saysWhyAShellCouldNotBeStarted();
    void findsThePortsOfThisMachine();
};

void PortScanTest::splitsAListing_data() {
    QTest::addColumn<QString>("listing");
    QTest::addColumn<QStringList>("ports");
    QTest::newRow("one") << "/dev/cu.usb1\n" << QStringList{"/dev/cu.usb1"};
    QTest::newRow("two") << "b\na\n" << QStringList{"b", "a"};
    QTest::newRow("empty line") << "a\n\nb\n" << QStringList{"a", "", "b"};
    QTest::newRow("ends in an empty line") << "a\n\n" << QStringList{"a", ""};
    QTest::newRow("last line not ended") << "a\nbc" << QStringList{"a", "b"};
    QTest::newRow("wide last character") << QString::fromUtf8("a\xC3\xA9") << QStringList{"a"};
    QTest::newRow("carriage returns stay") << "a\r\nb\r\n" << QStringList{"a\r", "b\r"};
    QTest::newRow("blanks stay") << " a b \n" << QStringList{" a b "};
    QTest::newRow("only a line end") << "\n" << QStringList{""};
    QTest::newRow("nothing") << "" << QStringList{""};
}

void PortScanTest::splitsAListing() {
    QFETCH(const QString, listing);
    QFETCH(const QStringList, ports);
    QCOMPARE(portsOf(listing), ports);
}

void PortScanTest::keepsTheOrderOfTheListing() {
    const PortScan scan = scanWith({"echo /dev/z; echo /dev/a; echo /dev/m"});
    QVERIFY(scan.hasFound);
    QCOMPARE(scan.ports, (QStringList{"/dev/z", "/dev/a", "/dev/m"}));
    QCOMPARE(scan.output, "/dev/z\n/dev/a\n/dev/m\n");
}

void PortScanTest::takesStandardErrorForOutput() {
    const PortScan scan = scanWith({"echo one; echo two >&2; echo three"});
    QVERIFY(scan.hasFound);
    QCOMPARE(scan.ports, (QStringList{"one", "two", "three"}));
}

void PortScanTest::goesByTheExitStatusAlone() {
    PortScan scan = scanWith({"echo /dev/a; exit 1"});
    QVERIFY(!scan.hasFound);
    QVERIFY(scan.ports.isEmpty());
    QCOMPARE(scan.output, "/dev/a\n");

    scan = scanWith({"exit 0"});
    QVERIFY(scan.hasFound);
    QCOMPARE(scan.ports, QStringList{""});
}

void PortScanTest::countsACommandThatIsKilledAsFailed() {
    const PortScan scan = scanWith({"echo /dev/a; kill -9 $$"});
    QVERIFY(!scan.hasFound);
    QCOMPARE(scan.output, "/dev/a\n");
}

void PortScanTest::triesTheNextCommandOnlyWhenOneFails() {
    QCOMPARE(scanWith({"echo first", "echo second"}).ports, QStringList{"first"});
    const PortScan scan = scanWith({"echo first; exit 2", "echo second", "echo third"});
    QVERIFY(scan.hasFound);
    QCOMPARE(scan.ports, QStringList{"second"});
    QCOMPARE(scan.output, "second\n");
}

void PortScanTest::reportsTheLastOutputWhenAllFail() {
    const PortScan scan = scanWith({"echo first; exit 2", "echo second >&2; exit 2"});
    QVERIFY(!scan.hasFound);
    QCOMPARE(scan.output, "second\n");
}

void PortScanTest::decodesUtf8() {
    QCOMPARE(scanWith({"printf '\\303\\251\\377\\n'"}).ports,
             QStringList{QString(QChar(0xE9)) + QChar(0xFFFD)});
}

void PortScanTest::readsMoreThanAPipeHolds() {
    const PortScan scan = scanWith({"seq 1 50000"});
    QCOMPARE(scan.ports.size(), 50000);
    QCOMPARE(scan.ports.back(), "50000");
}

void PortScanTest::saysWhyAShellCouldNotBeStarted() {
    PortScan scan;
    {
        const FewDescriptors none;
        scan = scanWith({"echo /dev/a"});
    }
    QVERIFY(!scan.hasFound);
    QVERIFY(scan.ports.isEmpty());
    QVERIFY(!scan.output.isEmpty());
}

// Somebody may plug an adapter in, or out, at just this moment.
void PortScanTest::findsThePortsOfThisMachine() {
    portCommands.reset();
    QStringList expected;
    PortScan scan;
    do {
        expected = portsOfThisMachine();
        scan = scanPorts();
    } while (portsOfThisMachine() != expected);
    QCOMPARE(scan.hasFound, !expected.isEmpty());
    scan.ports.sort(); // the listing is in the order of the person's language
    expected.sort();
    QCOMPARE(scan.ports, expected);
    QVERIFY(scan.hasFound || scan.output.contains("/dev/"));
}

} // namespace flashwriter::testing

QTEST_GUILESS_MAIN(flashwriter::testing::PortScanTest)
#include "PortScanTest.moc"

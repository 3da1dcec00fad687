// Files under any name that a system allows, as bytes: the path that a drop puts into the line
// leads to the file that was dropped, or the drop is refused.
#include "advice/FormAdvice.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/ui/windows/Drags.h"
#include "ui/NSFileDropTextField.h"

#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

namespace flashwriter::testing {

namespace {

const char* const BEFORE = "/what/was/there.bin";

// As file managers name the file: a list of addresses.
std::unique_ptr<QMimeData> dragOfBytes(const std::string& path) {
    auto dragging = std::make_unique<QMimeData>();
    const QByteArray bytes = QByteArray::fromStdString(path);
    dragging->setData("text/uri-list", "file://" + bytes.toPercentEncoding("/") + "\r\n");
    return dragging;
}

bool takesDrop(NSFileDropTextField& field, const std::string& path) {
    const auto dragging = dragOfBytes(path);
    enter(field, *dragging);
    return drop(field, *dragging).isAccepted;
}

bool isSameFile(const std::string& one, const std::string& other) {
    struct stat first {};
    struct stat second {};
    return ::stat(one.c_str(), &first) == 0 && ::stat(other.c_str(), &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

} // namespace

class DroppedNamesTest : public QObject {
    Q_OBJECT

private slots:
    void cleanupTestCase();
    void leadToTheFile_data();
    void leadToTheFile();
    void areRefusedWhenTheyAreNoText_data();
    void areRefusedWhenTheyAreNoText();
    void mayBeTooLongForAWrite();

private:
    std::string create(const std::string& name) const;
    const QTemporaryDir m_folder;
};

// Returns its path; any folder that the name has is made.
std::string DroppedNamesTest::create(const std::string& name) const {
    const std::string path = m_folder.path().toStdString() + "/" + name;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    ::close(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    return path;
}

// The toolkit does not remove what it cannot name.
void DroppedNamesTest::cleanupTestCase() {
    std::filesystem::remove_all(m_folder.path().toStdString());
}

void DroppedNamesTest::leadToTheFile_data() {
    QTest::addColumn<QByteArray>("name");
    for (const char* name :
         {"line\nfeed.bin", "\nfirst.bin", "return\rcarried.bin", "tab\t.mot", "'single'.bin",
          "\"double\".bin", "`back`.bin", "mixed'\"`.mot", "escape\x1b[2J.bin", "\x7f.bin",
          "back\\slash.bin", "caf\xC3\xA9.bin", "cafe\xCC\x81.bin", "\xE2\x80\xAEnib.bin",
          "\xEF\xBB\xBFmark.bin", "\xEF\xBF\xBD.bin", "%41%FF.bin", "a:b?c#d&e.bin"}) {
        QTest::newRow(name) << QByteArray(name);
    }
    QTest::newRow("255 bytes") << QByteArray(251, 'n') + ".bin";
    QTest::newRow("255 bytes, not ASCII") << QByteArray("\xE7\x94\xBB").repeated(83) + "nn.bin";
}

void DroppedNamesTest::leadToTheFile() {
    QFETCH(const QByteArray, name);
    const std::string path = create(name.toStdString());
    NSFileDropTextField field;
    QVERIFY(takesDrop(field, path));
    QCOMPARE(field.text().toStdString(), path);
    QVERIFY(isSameFile(field.text().toStdString(), path));
}

void DroppedNamesTest::areRefusedWhenTheyAreNoText_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("shown");
    const QByteArray unknown("\xEF\xBF\xBD"); // what a reader of text puts for such bytes
    QTest::newRow("byte") << QByteArray("not\xFFtext.bin") << "not" + unknown + "text.bin";
    QTest::newRow("cut off") << QByteArray("not\xC3.bin") << "not" + unknown + ".bin";
    QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80.bin") << unknown.repeated(3) + ".bin";
    QTest::newRow("too long a form") << QByteArray("\xC0\xAF.bin") << unknown.repeated(2) + ".bin";
}

// Another file stands where the text would lead.
void DroppedNamesTest::areRefusedWhenTheyAreNoText() {
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, shown);
    const std::string path = create(name.toStdString());
    create(shown.toStdString());
    NSFileDropTextField field;
    field.setText(BEFORE);
    QVERIFY(!takesDrop(field, path));
    QCOMPARE(field.text(), BEFORE);
    QVERIFY(field.isEnabled());
}

void DroppedNamesTest::mayBeTooLongForAWrite() {
    const std::string folder = std::string(199, 'f') + "/";
    const std::string path =
        create(folder + folder + folder + folder + std::string(196, 'n') + ".bin");
    QVERIFY(path.size() > 1000);
    NSFileDropTextField field;
    QVERIFY(takesDrop(field, path));
    QCOMPARE(field.text().toStdString(), path);
    const PseudoTerminal terminal;
    const FormAdvice advice =
        formAdvice(formFacts(terminal.portPath(), true, field.text().toStdString()));
    QVERIFY(advice.standsInTheWay);
    QCOMPARE(QString::fromStdString(advice.text),
             QString("The path of the image file has %1 bytes, and at most 259 fit: use a shorter "
                     "one, such as that of a link to it.")
                 .arg(path.size()));
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::DroppedNamesTest)
#include "DroppedNamesTest.moc"

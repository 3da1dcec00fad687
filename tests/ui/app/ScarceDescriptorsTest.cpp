// The window in a process that may open few files more, and then none: whatever is begun ends, and
// says how.
#include "tests/support/ChildProcess.h"
#include "tests/support/FewDescriptors.h"
#include "tests/support/ImageFile.h"
#include "tests/ui/app/MainWindowFixture.h"
#include "tests/ui/app/ResultWindowAnswer.h"

#include <QApplication>
#include <QTest>

#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace flashwriter::testing {

namespace {

constexpr int ENOUGH = 8;
constexpr std::size_t FLASH_SIZE = std::size_t{16} * 1024;

// A board in a process of its own, which has all the descriptors that it wants.
class BoardProcess {
public:
    BoardProcess() {
        const std::string beginning = "port ";
        if (!m_process.waitFor([this] { return m_process.output().ends_with('\n'); })) {
            throw std::runtime_error("no board: " + m_process.error());
        }
        const std::string& line = m_process.output();
        m_port = line.substr(beginning.size(), line.size() - beginning.size() - 1);
    }
    const std::string& port() const { return m_port; }

    // What is in its flash, once and at the end.
    std::vector<std::uint8_t> codeFlash() {
        m_process.signal(SIGTERM);
        m_process.wait();
        std::ifstream file(m_flash.path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    static ChildOptions options(const std::string& flash) {
        ChildOptions options;
        options.arguments = {VIRTUAL_BOARD,  "--no-pace", "--flash-kib", "16",
                             "--flash-fill", "90",        "--flash-out", flash};
        return options;
    }

    const ImageFile m_flash{"flash.bin", std::string()};
    ChildProcess m_process{options(m_flash.path())};
    std::string m_port;
};

struct DescriptorsFixture : MainWindowFixture {
    DescriptorsFixture() {
        choosePort(board.port());
        window.show();
    }
    bool isIdle() const {
        return !window.isSheetUp() && areControls(true) && !delegate.isMonitorOpen() &&
               QApplication::activeModalWidget() == nullptr;
    }
    BoardProcess board;
};

bool saysWhy(const ResultWindowAnswer& answer) {
    return answer.messages.value(0).contains("ERROR:0x0000") && !answer.advice.value(0).isEmpty();
}

} // namespace

class ScarceDescriptorsTest : public QObject {
    Q_OBJECT

private slots:
    void endsAWrite();
    void endsAWriteOnceThereAreSomeAgain();
    void opensTheMonitorOrSaysWhyNot();
    void looksAtTheForm();
};

void ScarceDescriptorsTest::endsAWrite() {
    const std::vector<std::uint8_t> image = patternImage(100);
    const ImageFile file("image.bin", image);
    for (int free = ENOUGH; free >= 0; --free) {
        DescriptorsFixture main;
        main.path.setText(QString::fromStdString(file.path()));
        const ResultWindowAnswer answer;
        {
            const FewDescriptors few(static_cast<rlim_t>(free));
            main.writeButton.click();
            QTRY_VERIFY_WITH_TIMEOUT(answer.messages.size() == 1 && main.isIdle(), 20000);
        }
        const bool isWritten = answer.messages[0].contains("succeeded");
        QVERIFY2(isWritten || saysWhy(answer), qPrintable(answer.messages[0]));
        QVERIFY(isWritten || free < ENOUGH);
        QVERIFY(!isWritten || free > 0);
        const std::vector<std::uint8_t> before(FLASH_SIZE, 90);
        QVERIFY(main.board.codeFlash() == (isWritten ? flashAfter(image, before) : before));
    }
}

void ScarceDescriptorsTest::endsAWriteOnceThereAreSomeAgain() {
    const ImageFile file("image.bin", patternImage(100));
    DescriptorsFixture main;
    main.path.setText(QString::fromStdString(file.path()));
    const ResultWindowAnswer answer;
    {
        const FewDescriptors none;
        main.writeButton.click();
        QTRY_VERIFY(answer.messages.size() == 1 && main.isIdle());
    }
    main.writeButton.click();
    QTRY_VERIFY_WITH_TIMEOUT(answer.messages.size() == 2 && main.isIdle(), 20000);
    QVERIFY2(answer.messages[1].contains("succeeded"), qPrintable(answer.messages[1]));
}

void ScarceDescriptorsTest::opensTheMonitorOrSaysWhyNot() {
    DescriptorsFixture main;
    for (int free = ENOUGH; free >= 0; --free) {
        const ResultWindowAnswer answer;
        {
            const FewDescriptors few(static_cast<rlim_t>(free));
            main.monitorButton.click();
        }
        const bool isOpen = main.delegate.isMonitorOpen();
        QCOMPARE(answer.messages.size(), isOpen ? 0 : 1);
        QVERIFY(isOpen || saysWhy(answer));
        QVERIFY(isOpen || free < ENOUGH);
        QVERIFY(!isOpen || free > 0);
        main.delegate.MonitorPortClose();
        QVERIFY(main.isIdle());
    }
    main.monitorButton.click();
    QVERIFY(main.delegate.isMonitorOpen());
}

void ScarceDescriptorsTest::looksAtTheForm() {
    const ImageFile file("image.bin", patternImage(100));
    const QString path = QString::fromStdString(file.path());
    const DescriptorsFixture main;
    for (int free = ENOUGH; free >= 0; --free) {
        const FewDescriptors few(static_cast<rlim_t>(free));
        main.path.setText(path + ".no");
        QTRY_VERIFY2(main.status.text().contains("No such"), qPrintable(main.status.text()));
        main.path.setText(path);
        QTRY_VERIFY2(main.status.text().contains(free > 0 ? "Ready" : "cannot be opened now"),
                     qPrintable(main.status.text()));
    }
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::ScarceDescriptorsTest)
#include "ScarceDescriptorsTest.moc"

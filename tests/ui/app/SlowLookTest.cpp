// The status line while the system takes its time to tell what the form is about.
#include "tests/ui/app/StatusFixture.h"

#include <QTest>

#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <new>
#include <thread>

namespace flashwriter::testing {

namespace {

std::atomic<bool> isLookHeld = false;
bool isMemoryForTexts = true;
bool hasFailed = false;

const QString WAITING = "Waiting for the system to tell of port and image…";

} // namespace

// The names by which the linker knows setAnnouncedText() and the system's call, and what stands in
// for them.
void announceText(QLabel& label, const QString& text) asm(
    "__real__ZN11flashwriter16setAnnouncedTextER6QLabelRK7QString");
void announceTextIfItCan(QLabel& label, const QString& text) asm(
    "__wrap__ZN11flashwriter16setAnnouncedTextER6QLabelRK7QString");

void announceTextIfItCan(QLabel& label, const QString& text) {
    if (!isMemoryForTexts) {
        hasFailed = true;
        throw std::bad_alloc();
    }
    announceText(label, text);
}

extern "C" {
int __real_stat(const char* path, struct stat* result);

int __wrap_stat(const char* path, struct stat* result) {
    while (isLookHeld) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return __real_stat(path, result);
}
}

class SlowLookTest : public QObject {
    Q_OBJECT

private slots:
    static void init() { isLookHeld = true; }
    static void cleanup() { isLookHeld = false; }
    void saysWhatItWaitsFor();
    void goesOnWhenThatCannotBeSaid();
};

void SlowLookTest::saysWhatItWaitsFor() {
    const StatusFixture form;
    form.line->refresh();
    QTRY_COMPARE(form.label.text(), WAITING);
    QCOMPARE(form.label.accessibleDescription(), WAITING);
    isLookHeld = false;
    QTRY_COMPARE(form.label.text(), NO_SPEED);
    QTest::qWait(1500);
    QCOMPARE(form.label.text(), NO_SPEED);
}

void SlowLookTest::goesOnWhenThatCannotBeSaid() {
    const StatusFixture form;
    isMemoryForTexts = false;
    form.line->refresh();
    QTRY_VERIFY(hasFailed);
    isMemoryForTexts = true;
    isLookHeld = false;
    QTRY_COMPARE(form.label.text(), NO_SPEED);
}

} // namespace flashwriter::testing

QTEST_MAIN(flashwriter::testing::SlowLookTest)
#include "SlowLookTest.moc"

#include "tests/kernel/runs/KernelFixture.h"

#include "board/Transcript.h"
#include "tests/support/HeldUp.h"

#include <algorithm>

namespace flashwriter::kernel {

namespace {

constexpr int ATTEMPTS = 3;
const char* const DIAGNOSTICS = "/run/diagnostics";

// Ends by itself, should the port never come or go.
std::string until(const std::string& condition) {
    return "i=0; until " + condition + "; do sleep 0.02; i=$((i+1)); test $i -lt 1000; done";
}

} // namespace

KernelFixture::KernelFixture() {
    m_board.target.flash.codeKib = 64;
    m_board.target.flash.fill = 0x5A;
}

KernelFixture::~KernelFixture() {
    unplug();
}

void KernelFixture::plugIn() {
    adapter().plug({.kind = Machine::the().kind(), .board = m_board, .looseAt = m_looseAt});
    m_attempt = 0;
    guest().shell("set -e; " + until("test -c " + port()) + "; chmod 666 " + port());
}

void KernelFixture::unplug() {
    adapter().unplug();
    waitUntilPortHasGone();
}

void KernelFixture::waitUntilPortHasGone() {
    guest().shell("set -e; " + until("test ! -e " + port()));
}

std::unique_ptr<GuestProcess>
KernelFixture::flashwrite(const std::string& speed, const std::string& file,
                          const std::vector<std::string>& environment) {
    // A pipe's reader would take turns with the program on the machine's only processor.
    const std::string line = std::string("exec \"$0\" \"$@\" 2>") + DIAGNOSTICS;
    return guest().start({.arguments = {"/bin/sh", "-c", line, FLASHWRITE, port(), speed, file},
                          .environment = environment});
}

void KernelFixture::untilNotHeldUp(const std::function<bool()>& attempt) {
    for (int attempts = 1;; ++attempts) {
        if (m_attempt) {
            m_attempt = adapter().transcript().size();
        }
        if (attempt() || attempts == ATTEMPTS ||
            !board::wasHeldUp(adapter().transcript(), m_attempt.value())) {
            return;
        }
        Machine::the().noteRepeat();
    }
}

void KernelFixture::expectWritten(const std::vector<std::uint8_t>& image,
                                  const std::function<Outcome()>& write) {
    const std::vector<std::uint8_t> before = adapter().codeFlash();
    std::size_t violations = 0;
    Outcome outcome;
    untilNotHeldUp([&] {
        violations = adapter().violations();
        outcome = write();
        return outcome.succeeded;
    });
    EXPECT_TRUE(outcome.succeeded) << story();
    EXPECT_EQ(outcome.said, SUCCESS_SAID);
    EXPECT_EQ(adapter().violations(), violations) << story();
    EXPECT_TRUE(adapter().codeFlash() == testing::flashAfter(image, before)) << "the flash differs";
}

void KernelFixture::writeAndReadBack(const std::string& speed, const std::string& file,
                                     const std::vector<std::uint8_t>& image,
                                     const std::vector<std::string>& environment) {
    SCOPED_TRACE(file + " at " + speed);
    expectWritten(image, [&] {
        const auto program = flashwrite(speed, file, environment);
        const bool succeeded = program->wait() == 0;
        return Outcome{.succeeded = succeeded, .said = program->output()};
    });
}

bool KernelFixture::hasHappened(const std::string& what) {
    const board::Transcript transcript = adapter().transcript();
    return std::ranges::any_of(transcript, [&](const board::TranscriptRecord& record) {
        return record.meaning.find(what) != std::string::npos;
    });
}

std::string KernelFixture::story() {
    return "The board:\n" + board::transcriptText(adapter().transcript()) + "The program:\n" +
           guest().shell(std::string("tail -n 200 ") + DIAGNOSTICS);
}

} // namespace flashwriter::kernel

#include "tests/kernel/runs/KernelFixture.h"

#include "board/Transcript.h"
#include "tests/kernel/runs/HeldUp.h"

#include <iostream>

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
    adapter().plug({.kind = Machine::the().kind(), .board = m_board});
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

void KernelFixture::untilNotHeldUp(std::size_t from, const std::function<bool()>& attempt) {
    int attempts = 1;
    while (!attempt() && attempts < ATTEMPTS && wasHeldUp(adapter().transcript(), from)) {
        std::cout << "The machine was held up: once more.\n";
        ++attempts;
    }
}

void KernelFixture::writeAndReadBack(const std::string& speed, const std::string& file,
                                     const std::vector<std::uint8_t>& image) {
    SCOPED_TRACE(file + " at " + speed);
    const std::vector<std::uint8_t> before = adapter().codeFlash();
    std::unique_ptr<GuestProcess> program;
    std::size_t violations = 0;
    untilNotHeldUp(adapter().transcript().size(), [&] {
        violations = adapter().violations();
        program = flashwrite(speed, file);
        return program->wait() == 0;
    });
    EXPECT_EQ(program->wait(), 0) << story();
    EXPECT_EQ(program->output(), "## Programming Mode\n"
                                 "## Block Blank Check & Erace... OK\n"
                                 "## Programming... OK\n"
                                 "## Write Complete\n"
                                 "The writing processing succeeded. \n");
    EXPECT_EQ(adapter().violations(), violations) << story();
    EXPECT_TRUE(adapter().codeFlash() == testing::flashAfter(image, before)) << "the flash differs";
}

std::string KernelFixture::story() {
    return "The board:\n" + board::transcriptText(adapter().transcript()) + "The program:\n" +
           guest().shell(std::string("tail -n 200 ") + DIAGNOSTICS);
}

} // namespace flashwriter::kernel

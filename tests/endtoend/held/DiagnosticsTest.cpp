// Nobody reads the desktop program's standard error: a write and the window go on as if somebody
// did.
#include "board/VirtualBoard.h"
#include "tests/kernel/hands/WindowHands.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace flashwriter::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

class UnreadDiagnostics : public ::testing::Test {
protected:
    UnreadDiagnostics() {
        board::BoardOptions options;
        options.pace = false;
        options.target.flash.codeKib = 128;
        m_board.start(options);
    }
    ChildOptions program(const std::string& errorFile = "") const {
        ChildOptions options;
        options.arguments = {FLASH_WRITER};
        options.environment = {"LD_PRELOAD=" WINDOW_HANDS_PRELOAD ":" LINES_PRELOAD,
                               "WINDOW_HANDS=" + m_socket, "QT_QPA_PLATFORM=offscreen",
                               "QT_FORCE_STDERR_LOGGING=1"};
        options.errorFile = errorFile;
        return options;
    }
    // More lines than a pipe takes.
    void expectWrite() {
        kernel::WindowHands hands(m_socket);
        const auto before = m_board.codeFlash();
        hands.type("serialPortComboBox", m_board.portPath());
        hands.type("filePathTextField", m_file.path());
        hands.click("writeButton");
        EXPECT_LT(hands.alive(), 1s);
        EXPECT_EQ(hands.waitText("resultMessage", "."), "The writing processing succeeded. ");
        EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before)) << "the flash differs";
        hands.press("Return");
        hands.waitGone("progressWindow");
        hands.close("window");
    }

    const std::vector<std::uint8_t> m_image = patternImage(80000);
    const ImageFile m_file{"image.bin", m_image};
    const std::string m_socket = std::filesystem::path(m_file.path()).parent_path() / "hands";
    board::VirtualBoard m_board;
};

TEST_F(UnreadDiagnostics, OfAReaderThatHasStopped) {
    ChildProcess program(this->program());
    expectWrite();
    EXPECT_EQ(program.wait(), 0);
    EXPECT_GT(program.error().size(), 65000U) << "otherwise the pipe was never full";
    EXPECT_THAT(program.error(), HasSubstr("flashwriter: ## Programming Mode\n"));
}

TEST_F(UnreadDiagnostics, OfAReaderThatHasGone) {
    ChildProcess program(this->program());
    program.stopReadingError();
    expectWrite();
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(UnreadDiagnostics, OnADiskThatIsFull) {
    ChildProcess program(this->program("/dev/full"));
    expectWrite();
    EXPECT_EQ(program.wait(), 0);
}

} // namespace
} // namespace flashwriter::testing

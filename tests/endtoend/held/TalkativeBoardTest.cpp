// A board that never stops talking, and a window that is closed at a bad moment.
#include "board/VirtualBoard.h"
#include "tests/kernel/hands/WindowHands.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <thread>

namespace flashwriter::testing {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t FASTEST = 921600;
constexpr std::size_t LOG_LIMIT = 65536;

// 64 lines at a time, as fast as the port takes them.
board::BoardOptions talkative() {
    board::BoardOptions options;
    std::string text;
    for (int i = 0; i < 64; ++i) {
        text += "All work.\r\n";
    }
    options.target.monitor = {text, 1ms, FASTEST};
    options.pace = false;
    return options;
}

class TalkativeBoard : public ::testing::Test {
protected:
    void start(const board::BoardOptions& boardOptions) {
        m_board.start(boardOptions);
        ChildOptions options;
        options.arguments = {FLASH_WRITER};
        options.environment = {"LD_PRELOAD=" WINDOW_HANDS_PRELOAD ":" LINES_PRELOAD,
                               "WINDOW_HANDS=" + m_socket, "QT_QPA_PLATFORM=offscreen",
                               "QT_FORCE_STDERR_LOGGING=1"};
        options.errorFile = m_socket + ".err";
        m_program.emplace(options);
        m_hands.emplace(m_socket);
        m_hands->type("serialPortComboBox", m_board.portPath());
        m_hands->type("monitorBaudRateComboBox", std::to_string(FASTEST));
        m_hands->type("filePathTextField", m_file.path());
    }
    // Until the log is as long as it may become.
    void fillLog() {
        m_hands->click("monitorOpenButton");
        m_hands->waitText("logDispTextView", "All work.\n(.|\n)*All work.\n");
        const auto start = std::chrono::steady_clock::now();
        while (m_hands->text("logDispTextView").size() < LOG_LIMIT) {
            ASSERT_LT(m_hands->alive(), 500ms);
            ASSERT_LT(std::chrono::steady_clock::now() - start, 60s) << "it does not fill";
        }
    }

    const ImageFile m_file{"image.bin", patternImage(2000)};
    const std::string m_socket = std::filesystem::path(m_file.path()).parent_path() / "hands";
    board::VirtualBoard m_board;
    std::optional<ChildProcess> m_program;
    std::optional<kernel::WindowHands> m_hands;
};

TEST_F(TalkativeBoard, LeavesTheWindowToThePerson) {
    start(talkative());
    fillLog();
    for (int i = 0; i < 20; ++i) {
        EXPECT_LT(m_hands->alive(), 500ms);
        EXPECT_EQ(m_hands->text("logDispTextView").size(), LOG_LIMIT);
        std::this_thread::sleep_for(50ms);
    }
    m_hands->click("monitorOpenButton");
    m_hands->waitText("monitorOpenButton", "Open");
    const std::string last = m_hands->text("logDispTextView");
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(m_hands->text("logDispTextView"), last) << "nothing is read any more";
}

TEST_F(TalkativeBoard, GoesInTheMiddleOfAWord) {
    start(talkative());
    fillLog();
    m_board.stop();
    for (int i = 0; i < 10; ++i) {
        EXPECT_LT(m_hands->alive(), 500ms);
        std::this_thread::sleep_for(50ms);
    }
    m_hands->click("monitorOpenButton");
    m_hands->waitText("monitorOpenButton", "Open");
    m_hands->waitEnabled("writeButton");
}

TEST_F(TalkativeBoard, IsLeftWithTheWindow) {
    start(talkative());
    fillLog();
    m_hands->close("window");
    EXPECT_EQ(m_program->wait(), 0);
}

// Asking takes a second and a half: the window closes then.
TEST_F(TalkativeBoard, IsLeftWhileItIsAsked) {
    board::BoardOptions silent;
    silent.faults = {board::parseFault("silence")};
    start(silent);
    m_hands->click("monitorOpenButton");
    EXPECT_EQ(m_hands->waitText("statusLabel", "^Asking"), "Asking the board…");
    m_hands->close("window");
    EXPECT_TRUE(m_hands->visible("window"));
    EXPECT_EQ(m_program->wait(), 0);
}

TEST_F(TalkativeBoard, IsNotLeftAmidAWrite) {
    start({});
    m_hands->click("writeButton");
    m_hands->close("window");
    m_hands->waitText("progressLabel", "^Writing data");
    m_hands->close("window");
    EXPECT_EQ(m_hands->waitText("resultMessage", "."), "The writing processing succeeded. ");
    m_hands->close("window");
    EXPECT_TRUE(m_hands->visible("window")) << "the result is to be read first";
    m_hands->press("Return");
    m_hands->waitGone("progressWindow");
    m_hands->close("window");
    EXPECT_EQ(m_program->wait(), 0);
}

} // namespace
} // namespace flashwriter::testing

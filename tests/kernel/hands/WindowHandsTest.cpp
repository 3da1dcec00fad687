// The hands themselves: the shipped desktop program, without a screen, worked through its window.
#include "tests/kernel/hands/WindowHands.h"

#include "board/VirtualBoard.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace flashwriter::kernel {
namespace {

using testing::ChildOptions;
using testing::ChildProcess;
using ::testing::ElementsAre;
using testing::flashAfter;
using ::testing::HasSubstr;
using testing::ImageFile;
using testing::patternImage;

constexpr std::uint32_t MONITOR_BPS = 9600;

ChildOptions program(const std::string& socket) {
    ChildOptions options;
    options.arguments = {FLASH_WRITER};
    options.environment = {"LD_PRELOAD=" WINDOW_HANDS_PRELOAD ":" LINES_PRELOAD,
                           "WINDOW_HANDS=" + socket, "QT_QPA_PLATFORM=offscreen",
                           "QT_FORCE_STDERR_LOGGING=1"};
    return options;
}

class WindowHandsTest : public ::testing::Test {
protected:
    WindowHandsTest() {
        board::BoardOptions options;
        options.target.monitor = {"Hi, ho!\r\n", std::chrono::milliseconds(100), MONITOR_BPS};
        m_board.start(options);
    }
    void write();
    void listen();

    const std::vector<std::uint8_t> m_image = patternImage(3000);
    const ImageFile m_file{"an \\image bär.bin", m_image};
    const std::string m_socket = std::filesystem::path(m_file.path()).parent_path() / "hands";
    board::VirtualBoard m_board;
    ChildProcess m_program{program(m_socket)};
    WindowHands m_hands{m_socket};
};

void WindowHandsTest::write() {
    m_hands.type("serialPortComboBox", m_board.portPath());
    m_hands.type("filePathTextField", m_file.path());
    EXPECT_EQ(m_hands.text("filePathTextField"), m_file.path());
    EXPECT_EQ(m_hands.items("baudRateComboBox"),
              (std::vector<std::string>{"115,200 bps", "500,000 bps"}));
    m_hands.choose("baudRateComboBox", "500,000 bps");
    EXPECT_EQ(m_hands.waitText("statusLabel", "^Ready"), "Ready to write.");
    m_hands.click("writeButton");
    m_hands.waitText("progressLabel", "^Writing data");
    EXPECT_THAT(m_hands.windows(), ElementsAre("window", "progressWindow"));
    EXPECT_EQ(m_hands.waitText("resultMessage", "."), "The writing processing succeeded. ");
}

void WindowHandsTest::listen() {
    EXPECT_EQ(m_hands.text("monitorOpenButton"), "Open");
    m_hands.type("monitorBaudRateComboBox", std::to_string(MONITOR_BPS));
    m_hands.click("monitorOpenButton");
    m_hands.waitText("logDispTextView", "Hi, ho!\nHi, ho!\n");
    EXPECT_EQ(m_hands.text("monitorOpenButton"), "Close");
    EXPECT_FALSE(m_hands.enabled("writeButton"));
}

TEST_F(WindowHandsTest, WriteAndListenAndClose) {
    const auto before = m_board.codeFlash();
    write();
    m_hands.click("writeButton"); // the result keeps it from being pressed
    EXPECT_LT(m_hands.alive(), std::chrono::seconds(1)) << "in the result's own loop";
    m_hands.click("okButton");
    m_hands.waitGone("resultMessage");
    m_hands.waitGone("progressWindow");
    EXPECT_THAT(m_hands.text("logDispTextView"), HasSubstr("## Write Complete"));
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before)) << "the flash differs";
    EXPECT_EQ(m_board.closings(), 1U) << "one write";
    listen();
    m_hands.close("window");
    EXPECT_EQ(m_program.wait(), 0) << m_program.error();
}

TEST_F(WindowHandsTest, PressKeysWhereTheKeyboardIs) {
    m_hands.type("serialPortComboBox", "/dev/nowhere");
    m_hands.press("Alt+O");
    EXPECT_THAT(m_hands.waitText("resultMessage", "."), HasSubstr("ERROR:0x00001002"));
    m_hands.press("Return");
    m_hands.waitGone("resultMessage");
}

TEST_F(WindowHandsTest, SayWhatCannotBeDone) {
    EXPECT_THROW(m_hands.click("noSuchButton"), std::runtime_error);
    EXPECT_THROW(m_hands.text("resultMessage"), std::runtime_error);
    EXPECT_THROW(m_hands.choose("baudRateComboBox", "9 bps"), std::runtime_error);
    EXPECT_THROW(m_hands.items("writeButton"), std::runtime_error);
    EXPECT_THROW(m_hands.ask({"sing"}), std::runtime_error);
    EXPECT_FALSE(m_hands.visible("resultMessage"));
    EXPECT_THROW(WindowHands(m_socket, std::chrono::milliseconds(100)).waitText("logLabel", "no"),
                 std::runtime_error);
    m_program.signal(SIGKILL);
    EXPECT_THROW(m_hands.alive(), std::runtime_error);
}

TEST_F(WindowHandsTest, TakePictures) {
    const std::string picture = m_socket + ".png";
    m_hands.shot(picture);
    std::ifstream file(picture, std::ios::binary);
    std::string start(4, '\0');
    file.read(start.data(), 4);
    EXPECT_EQ(start, "\x89PNG");
    EXPECT_THROW(m_hands.shot("/nowhere/picture.png"), std::runtime_error);
}

TEST(WindowHandsMessage, KeepsWordsAsTheyAre) {
    const Words words{"", "two words", "a\ttab, a\nline, a \\n", ""};
    EXPECT_EQ(wordsOf(lineOf(words)), words);
    EXPECT_EQ(lineOf({"a\nb", "c\\"}), "a\\nb\tc\\\\");
}

// The program that moves them from a shell.
TEST_F(WindowHandsTest, MoveFromAShell) {
    ChildOptions options;
    options.arguments = {WINDOW_HANDS, m_socket, "text", "writeButton"};
    ChildProcess one(options);
    EXPECT_EQ(one.wait(), 0);
    EXPECT_EQ(one.output(), "ok\t&Write\n");
    options.arguments = {WINDOW_HANDS, m_socket, "click", "noSuchButton"};
    ChildProcess refused(options);
    EXPECT_EQ(refused.wait(), 1);
    EXPECT_EQ(refused.output(), "error\tno noSuchButton is to be seen\n");
    const std::string script =
        "printf 'visible\\twindow\\nalive\\n' | " WINDOW_HANDS " " + m_socket;
    options.arguments = {"/bin/sh", "-c", script};
    ChildProcess several(options);
    EXPECT_EQ(several.wait(), 0);
    EXPECT_THAT(several.output(), ::testing::MatchesRegex("ok\tyes\nok\t[0-9]+\n"));
}

} // namespace
} // namespace flashwriter::kernel

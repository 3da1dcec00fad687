// The system takes its time with the port: the window answers all the same, says what is waited
// for, and goes on when it is over.
#include "board/VirtualBoard.h"
#include "tests/kernel/hands/WindowHands.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <thread>

namespace flashwriter::testing {
namespace {

using namespace std::chrono_literals;

const char* const STILL_WAITING = "^Still waiting for the port: .* Unplug the adapter";

// A call is held for as long as this lives.
class Hold {
public:
    explicit Hold(std::string file) : m_file(std::move(file)) { std::ofstream{m_file}; }
    ~Hold() { end(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    void end() const { std::filesystem::remove(m_file); }

private:
    std::string m_file;
};

class HeldCalls : public ::testing::Test {
protected:
    HeldCalls() {
        board::BoardOptions options;
        options.target.monitor = {"Hi, ho!\r\n", std::chrono::milliseconds(100), 9600};
        m_board.start(options);
    }
    void start(const std::string& heldCall) {
        ChildOptions options;
        options.arguments = {FLASH_WRITER};
        options.environment = {"LD_PRELOAD=" WINDOW_HANDS_PRELOAD ":" HOLD_CALLS_PRELOAD
                               ":" LINES_PRELOAD,
                               "WINDOW_HANDS=" + besides("hands"),
                               "HELD_CALL=" + heldCall,
                               "HELD_WHILE=" + besides("held"),
                               "HELD_FILE=" + m_file.path(),
                               "QT_QPA_PLATFORM=offscreen",
                               "QT_FORCE_STDERR_LOGGING=1"};
        options.errorFile = besides("errors");
        m_program.emplace(options);
        m_hands.emplace(besides("hands"));
        m_hands->type("serialPortComboBox", m_board.portPath());
        m_hands->type("filePathTextField", m_file.path());
    }
    std::string besides(const std::string& name) const {
        return std::filesystem::path(m_file.path()).parent_path() / name;
    }
    void openMonitor() {
        m_hands->click("monitorOpenButton");
        m_hands->waitText("logDispTextView", "Hi, ho!\n");
    }
    // Over a second of time.
    void expectAlive() {
        for (int i = 0; i < 20; ++i) {
            EXPECT_LT(m_hands->alive(), 500ms);
            std::this_thread::sleep_for(50ms);
        }
    }
    // What is pressed meanwhile by means that do not wait, as a screen reader does.
    void expectNothingBegins() {
        for (const char* button : {"writeButton", "monitorOpenButton", "updateButton"}) {
            m_hands->click(button);
        }
        EXPECT_THAT(m_hands->windows(), ::testing::ElementsAre("window"));
        EXPECT_EQ(m_hands->text("serialPortComboBox"), m_board.portPath());
    }

    const std::vector<std::uint8_t> m_image = patternImage(2000);
    const ImageFile m_file{"image.bin", m_image};
    board::VirtualBoard m_board;
    std::optional<ChildProcess> m_program;
    std::optional<kernel::WindowHands> m_hands;
};

TEST_F(HeldCalls, CloseOfTheMonitor) {
    start("close");
    openMonitor();
    const Hold hold(besides("held"));
    m_hands->click("monitorOpenButton");
    expectAlive();
    m_hands->waitText("statusLabel", STILL_WAITING);
    EXPECT_EQ(m_hands->text("monitorOpenButton"), "Close") << "not yet";
    expectNothingBegins();
    hold.end();
    m_hands->waitText("monitorOpenButton", "Open");
    m_hands->waitText("statusLabel", "^Ready to write");
    EXPECT_TRUE(m_hands->enabled("writeButton"));
    openMonitor(); // as well as ever
}

TEST_F(HeldCalls, BreakOfTheProbe) {
    start("break");
    const Hold hold(besides("held"));
    m_hands->click("monitorOpenButton");
    expectAlive();
    m_hands->waitText("statusLabel", STILL_WAITING);
    expectNothingBegins();
    hold.end();
    m_hands->waitText("logDispTextView", "Hi, ho!\n");
    EXPECT_EQ(m_hands->text("statusLabel"), "The serial monitor is open. Close it to write.");
}

TEST_F(HeldCalls, FlushOfTheProbe) {
    start("flush");
    const Hold hold(besides("held"));
    m_hands->click("monitorOpenButton");
    expectAlive();
    m_hands->waitText("statusLabel", STILL_WAITING);
    hold.end();
    m_hands->waitText("logDispTextView", "Hi, ho!\n");
}

TEST_F(HeldCalls, WindowClosesWhenTheMonitorHas) {
    start("close");
    openMonitor();
    const Hold hold(besides("held"));
    m_hands->click("monitorOpenButton");
    m_hands->waitText("statusLabel", STILL_WAITING);
    m_hands->close("window");
    expectAlive();
    EXPECT_TRUE(m_hands->visible("window"));
    hold.end();
    EXPECT_EQ(m_program->wait(), 0);
}

TEST_F(HeldCalls, CloseOfAWrite) {
    start("close");
    const auto before = m_board.codeFlash();
    const Hold hold(besides("held"));
    const std::string hint = "^Leave the board connected";
    m_hands->click("writeButton");
    m_hands->waitText("progressHint", hint);
    m_hands->waitText("progressLabel", "^Writing data. \\(100 %\\)$");
    m_hands->waitText("progressHint", "^Nothing has happened for a while.*Unplug");
    expectAlive();
    EXPECT_FALSE(m_hands->visible("resultMessage"));
    hold.end();
    EXPECT_EQ(m_hands->waitText("resultMessage", "."), "The writing processing succeeded. ");
    m_hands->press("Return");
    m_hands->waitGone("progressWindow");
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(m_image, before)) << "the flash differs";
    m_hands->click("writeButton");
    m_hands->waitText("progressHint", hint);
    m_hands->waitText("resultMessage", ".");
}

// Of the image on a disk that has gone: another one can be chosen.
TEST_F(HeldCalls, LookAtTheImage) {
    start("look");
    const Hold hold(besides("held"));
    m_hands->waitText("statusLabel", "^Waiting for the system to tell of port and image");
    m_hands->click("selectButton");
    m_hands->waitText("fileNameEdit", "^$");
    expectAlive();
    m_hands->press("Escape");
    m_hands->waitGone("fileNameEdit");
    EXPECT_EQ(m_hands->text("filePathTextField"), m_file.path());
    m_hands->close("window");
    EXPECT_EQ(m_program->wait(), 0);
}

} // namespace
} // namespace flashwriter::testing

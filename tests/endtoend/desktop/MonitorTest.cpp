// The serial monitor: what the board's own program says, at the speed that was asked for.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include "tests/support/Eventually.h"

#include <filesystem>

namespace flashwriter::testing {
namespace {

class DesktopMonitor : public DesktopFixture {
protected:
    DesktopMonitor() { m_options.pace = true; }

    // Enters a port where a board talks, and the speed; presses the button.
    void open(std::uint32_t speed) {
        m_options.target.monitor = {"Hi, ho!\r\n", std::chrono::milliseconds(200), speed};
        m_program.enter(PORT, plugIn());
        m_program.enter(MONITOR_SPEED, std::to_string(speed));
        m_program.clickOn("monitorOpenButton");
    }
    void close() const {
        m_program.clickOn("monitorOpenButton");
        EXPECT_TRUE(m_program.waitUntilEnabled("writeButton"));
    }
    bool boardIsHeard() const {
        return screen().waitUntil(LOG, [](const Accessible& log) {
            return log.text().find("Hi, ho!\nHi, ho!\n") != std::string::npos;
        });
    }
    bool diagnosticsHave(const std::string& text) const {
        return eventually([&] { return m_program.diagnostics().find(text) != std::string::npos; });
    }
    // The button as it is painted: its title is no more than that. With the keyboard elsewhere.
    std::string picture() const {
        m_program.clickOn(LOG);
        EXPECT_TRUE(m_program.waitUntilFocused(LOG));
        const std::string path = m_program.home() + ".png";
        screenshot(path, screen().get("monitorOpenButton").place());
        const std::string signature = toolOutput({"identify", "-format", "%#", path});
        std::filesystem::remove(path);
        return signature;
    }
    void openAndClose(std::uint32_t speed, const char* dtr);
    void expectWritingEnabled(bool enabled) const {
        for (const char* name : {PORT, "updateButton", SPEED, IMAGE_FILE, "selectButton",
                                 "writeButton", MONITOR_SPEED}) {
            EXPECT_TRUE(m_program.waitUntilEnabled(name, enabled)) << name;
        }
        EXPECT_TRUE(m_program.waitUntilEnabled("monitorOpenButton"));
    }
    // What the program left DTR at, before the system let go of the port.
    std::string lastDtr() const {
        std::string last;
        for (const board::TranscriptRecord& record : m_board.transcript()) {
            if (record.meaning == "DTR on" || record.meaning == "DTR off") {
                last = record.meaning;
            }
        }
        return last;
    }
};

void DesktopMonitor::openAndClose(std::uint32_t speed, const char* dtr) {
    SCOPED_TRACE(speed);
    open(speed);
    ASSERT_TRUE(boardIsHeard()) << screen().everything();
    EXPECT_TRUE(diagnosticsHave(dtr)) << m_program.diagnostics();
    expectWritingEnabled(false);
    close();
    expectWritingEnabled(true);
    EXPECT_TRUE(m_board.waitForClosings(2, std::chrono::seconds(20))) << "of the probe, and this";
}

TEST_F(DesktopMonitor, ShowsWhatABoardOfEitherDtrSays) {
    openAndClose(921600, "DTR=true");
    EXPECT_EQ(lastDtr(), "DTR on");
    m_options.target.invertedDtr = true;
    openAndClose(110, "DTR=false");
    EXPECT_EQ(lastDtr(), "DTR off");
}

TEST_F(DesktopMonitor, KeepsWritingAwayWhileItIsOpen) {
    const std::string title = picture();
    open(9600);
    EXPECT_TRUE(boardIsHeard());
    expectWritingEnabled(false);
    EXPECT_NE(picture(), title) << "Close";
    m_program.clickOn("writeButton");
    press("alt+w");
    EXPECT_TRUE(boardIsHeard());
    EXPECT_FALSE(screen().find(PROGRESS));
    EXPECT_EQ(m_board.closings(), 1U) << "of the probe alone";
    close();
    EXPECT_EQ(picture(), title) << "Open";
}

TEST_F(DesktopMonitor, RefusesSpeedsThatAreNone) {
    m_program.enter(PORT, plugIn());
    for (const char* speed : {"109", "921601", "9600 bps", "", "0x100", "99999999999999999999"}) {
        SCOPED_TRACE(speed);
        m_program.enter(MONITOR_SPEED, speed);
        m_program.clickOn("monitorOpenButton");
        EXPECT_EQ(m_program.result(), failure("200B", NO_COMMAND));
        m_program.dismissResult();
        expectWritingEnabled(true);
    }
    for (const char* port : {"/dev/nowhere", ""}) {
        m_program.enter(PORT, port);
        m_program.enter(MONITOR_SPEED, "9600");
        m_program.clickOn("monitorOpenButton");
        EXPECT_EQ(m_program.result(), failure("1002", NO_COMMAND));
        m_program.dismissResult();
    }
}

TEST_F(DesktopMonitor, IsClosedWithTheWindow) {
    open(9600);
    EXPECT_TRUE(boardIsHeard());
    EXPECT_EQ(quit(), 0) << m_program.diagnostics();
    EXPECT_TRUE(m_board.waitForClosings(2, std::chrono::seconds(20)));
}

TEST_F(DesktopMonitor, OutlivesItsBoard) {
    open(9600);
    EXPECT_TRUE(boardIsHeard());
    m_board.stop();
    close();
    expectWritingEnabled(true);
    open(9600); // another board, or the same again
    EXPECT_TRUE(boardIsHeard());
    close();
    EXPECT_EQ(quit(), 0);
}

} // namespace
} // namespace flashwriter::testing

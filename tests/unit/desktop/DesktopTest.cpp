// That the tests' hands and screen reader do and see what is really there.
#include "tests/support/desktop/Desktop.h"
#include "tests/support/Eventually.h"
#include "tests/support/desktop/ScreenReader.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace flashwriter::testing {
namespace {

ChildOptions program(const std::vector<std::string>& arguments) {
    ChildOptions options;
    options.arguments = arguments;
    return options;
}

// Processes whose environment leads to a directory: the desktop's own and all that they started.
int processesOf(const std::string& directory) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "environ", std::ios::binary);
        const std::string environment(std::istreambuf_iterator<char>(file), {});
        count +=
            environment.find("XDG_RUNTIME_DIR=" + directory + "/") != std::string::npos ? 1 : 0;
    }
    return count;
}

class SampleOnDesktop : public ::testing::Test {
protected:
    // A window that has just come may still be moved by the window manager.
    void SetUp() override {
        ASSERT_TRUE(eventually([] { return activeWindow() == "Sample (1)"; }));
    }

    bool fieldHolds(const std::string& text) const {
        return m_reader.waitUntil("field",
                                  [&](const Accessible& field) { return field.text() == text; });
    }

    const std::string m_picture = desktop().directory() + "/picture.png";
    ChildProcess m_program{program({SAMPLE_WINDOW})};
    ScreenReader m_reader{m_program.pid()};
};

// In a process of its own, because each has one desktop at the most.
TEST(DesktopOfATest, LeavesNothingBehind) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        std::string report;
        {
            const Desktop desktop;
            report = desktop.directory() + "\n" + std::getenv("DISPLAY") +
                     "\n" + // NOLINT: no threads
                     std::to_string(processesOf(desktop.directory())) + "\n";
        }
        const ssize_t written = ::write(pipe[1], report.data(), report.size());
        ::_exit(written == static_cast<ssize_t>(report.size()) ? 0 : 1);
    }
    ::close(pipe[1]);
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    std::array<char, 1000> report{};
    EXPECT_GT(::read(pipe[0], report.data(), report.size() - 1), 0);
    ::close(pipe[0]);
    std::istringstream lines(report.data());
    std::string directory;
    std::string display;
    int processes = 0;
    lines >> directory >> display >> processes;
    EXPECT_GE(processes, 4) << "screen, window manager and two buses";
    EXPECT_TRUE(eventually([&] { return processesOf(directory) == 0; }));
    EXPECT_FALSE(std::filesystem::exists(directory));
    EXPECT_FALSE(std::filesystem::exists("/tmp/.X11-unix/X" + display.substr(1)));
}

TEST_F(SampleOnDesktop, IsReadAsItIs) {
    const Accessible button = m_reader.get("button");
    EXPECT_EQ(button.role(), "push button");
    EXPECT_TRUE(button.enabled());
    EXPECT_FALSE(button.focused());
    EXPECT_TRUE(m_reader.waitUntil("field", [](const Accessible& it) { return it.focused(); }));
    EXPECT_EQ(m_reader.get("field").role(), "text");
    const auto inList = m_reader.get("List:").children();
    ASSERT_EQ(inList.size(), 2U) << m_reader.everything();
    EXPECT_EQ(inList[0].children().at(1).name(), "second");
    EXPECT_EQ(inList[1].text(), "first");
    EXPECT_EQ(m_reader.get("bar").value(), 45.0);
    EXPECT_FALSE(m_reader.find("no such thing"));
    EXPECT_TRUE(windowIsShown("Sample (1)"));
    EXPECT_FALSE(windowIsShown("Sample"));
}

TEST_F(SampleOnDesktop, IsWorkedByMouseAndKeys) {
    const std::string text = "Caf\xC3\xA9 \xE6\x9B\xB8 /tmp/A b_1.bin";
    click(m_reader.get("field").place().centre());
    type(text);
    EXPECT_TRUE(fieldHolds(text)) << m_reader.everything();
    click(m_reader.get("button").place().centre());
    EXPECT_TRUE(
        m_reader.waitUntil("log", [&](const Accessible& log) { return log.text() == text; }));
    click(m_reader.get("field").place().centre());
    press("ctrl+a");
    press("Delete");
    EXPECT_TRUE(fieldHolds("")) << m_reader.everything();
}

// As a busy machine does, which lets go of it late.
TEST_F(SampleOnDesktop, TypesOnceWhatIsHeldDownForLong) {
    click(m_reader.get("field").place().centre());
    toolOutput({"xdotool", "keydown", "x", "sleep", "1", "keyup", "x", "key", "y"});
    EXPECT_TRUE(m_reader.waitUntil(
        "field", [](const Accessible& field) { return field.text().ends_with("y"); }));
    EXPECT_EQ(m_reader.get("field").text(), "xy");
}

TEST_F(SampleOnDesktop, TakesWhatIsDraggedFromAnotherProgram) {
    ChildProcess source(program({DRAG_SOURCE, "/tmp/a file.bin"}));
    ASSERT_TRUE(eventually([] { return activeWindow() == "Files"; }));
    const Accessible files = ScreenReader(source.pid()).get("Drag me");
    bool hovered = false;
    drag(files.place().centre(), m_reader.get("field").place().centre(), [&] { hovered = true; });
    EXPECT_TRUE(hovered);
    EXPECT_TRUE(fieldHolds("file:///tmp/a file.bin")) << m_reader.everything();
}

TEST_F(SampleOnDesktop, IsPhotographed) {
    const auto size = [&] { return toolOutput({"identify", "-format", "%m %w %h", m_picture}); };
    screenshot(m_picture);
    EXPECT_EQ(size(), "PNG 1280 800");
    screenshot(m_picture, {10, 20, 30, 40});
    EXPECT_EQ(size(), "PNG 30 40");
    screenshotOfWindow(m_picture, waitForWindow("Sample (1)"));
    const Rectangle place = m_reader.windows().at(0).place();
    EXPECT_EQ(size().find("PNG " + std::to_string(place.width + 2) + " "), 0U) << "and its frame";
    EXPECT_NE(toolOutput({"identify", "-format", "%k", m_picture}), "1") << "one colour only";
}

TEST_F(SampleOnDesktop, EndsWhenItsWindowIsClosed) {
    press("alt+F4");
    EXPECT_EQ(m_program.wait(), 0);
    EXPECT_TRUE(m_reader.windows().empty());
}

} // namespace
} // namespace flashwriter::testing

// A write and the serial monitor without a mouse.
#include "tests/endtoend/desktop/DesktopFixture.h"

namespace flashwriter::testing {
namespace {

class DesktopKeyboardWrite : public DesktopFixture {
protected:
    // Into the field that these keys lead to.
    static void enter(const char* keys, const std::string& text) {
        press(keys);
        press("ctrl+a");
        type(text);
    }
};

TEST_F(DesktopKeyboardWrite, WritesAnImage) {
    const std::vector<std::uint8_t> image = patternImage(100);
    const ImageFile file("image.bin", image);
    const std::string port = plugIn();
    const auto before = m_board.codeFlash();
    enter("alt+p", port);
    enter("alt+i", file.path());
    press("Return");
    EXPECT_EQ(m_program.result(), SUCCESS) << m_program.diagnostics();
    m_program.dismissResult();
    EXPECT_TRUE(m_program.waitUntilFocused(IMAGE_FILE)) << "back where it was";
    m_board.stop();
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before));

    plugIn();
    enter("alt+p", m_board.portPath());
    press("alt+w");
    EXPECT_EQ(m_program.result(), SUCCESS) << m_program.diagnostics();
    press("Escape");
    EXPECT_TRUE(screen().waitUntilGone(RESULT));
}

TEST_F(DesktopKeyboardWrite, OpensTheMonitorAndEndsTheProgram) {
    m_options.target.monitor = {"Hi, ho!\n", std::chrono::milliseconds(100), 9600};
    enter("alt+p", plugIn());
    press("alt+o");
    EXPECT_TRUE(screen().waitUntil(
        LOG, [](const Accessible& log) { return log.text().starts_with("Hi, ho!\nHi, ho!\n"); }));
    press("alt+o");
    EXPECT_TRUE(m_program.waitUntilEnabled("writeButton"));
    press("ctrl+q");
    EXPECT_EQ(m_program.process().wait(), 0);
}

} // namespace
} // namespace flashwriter::testing

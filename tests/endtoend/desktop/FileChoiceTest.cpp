#include "tests/endtoend/desktop/DesktopFixture.h"
#include "tests/support/Eventually.h"

namespace flashwriter::testing {
namespace {

const char* const OPEN_PANEL = "Select an image";

class DesktopFileChoice : public DesktopFixture {
protected:
    void openPanel(const char* keys) const {
        press(keys);
        ASSERT_TRUE(eventually([] { return activeWindow() == OPEN_PANEL; }))
            << screen().everything();
    }
    void expectPanelGone() const {
        EXPECT_TRUE(eventually([] { return activeWindow() == MAIN_WINDOW; }));
        EXPECT_FALSE(windowIsShown(OPEN_PANEL));
    }
    // A list of completions may have come up over what was typed, and takes a first Escape.
    void escapeFromPanel() const {
        EXPECT_TRUE(eventually([] {
            press("Escape");
            return !windowIsShown(OPEN_PANEL);
        }));
        expectPanelGone();
    }
};

TEST_F(DesktopFileChoice, TakesOverWhatIsSelected) {
    const ImageFile file("firmware.MOT", std::string());
    m_program.clickOn("selectButton");
    openPanel("shift"); // it has the keyboard already
    type(file.path());
    press("Return");
    expectPanelGone();
    EXPECT_TRUE(m_program.waitUntilShown(IMAGE_FILE, file.path()));
}

TEST_F(DesktopFileChoice, ChangesNothingWhenCancelled) {
    m_program.enter(IMAGE_FILE, "/typed by hand.bin");
    openPanel("alt+s");
    press("Escape");
    expectPanelGone();
    EXPECT_EQ(m_program.shown(IMAGE_FILE), "/typed by hand.bin");
    EXPECT_TRUE(eventually([this] {
        return m_program.diagnostics().find("Cancel button was pressed.") != std::string::npos;
    }));
}

TEST_F(DesktopFileChoice, DoesNotTakeFilesThatAreNoImages) {
    const ImageFile file("notes.txt", std::string());
    openPanel("alt+s");
    type(file.path());
    press("Return");
    EXPECT_TRUE(windowIsShown(OPEN_PANEL));
    escapeFromPanel();
    EXPECT_EQ(m_program.shown(IMAGE_FILE), "");
}

} // namespace
} // namespace flashwriter::testing

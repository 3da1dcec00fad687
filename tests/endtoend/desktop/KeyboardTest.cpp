// Everything without a mouse, and by ear.
#include "tests/endtoend/desktop/DesktopFixture.h"

namespace flashwriter::testing {
namespace {

using DesktopKeyboard = DesktopFixture;

struct Control {
    const char* name;
    const char* role;
};

const std::vector<Control> IN_ORDER{
    {PORT, "combo box"},
    {"updateButton", "push button"},
    {SPEED, "combo box"},
    {IMAGE_FILE, "text"},
    {"selectButton", "push button"},
    {"writeButton", "push button"},
    {MONITOR_SPEED, "combo box"},
    {"monitorOpenButton", "push button"},
    {LOG, "text"},
};

TEST_F(DesktopKeyboard, GoesThroughTheControlsAsTheEyeDoes) {
    ASSERT_TRUE(m_program.waitUntilFocused(PORT)) << screen().everything();
    Rectangle before;
    for (const Control& control : IN_ORDER) {
        SCOPED_TRACE(control.name);
        EXPECT_TRUE(m_program.waitUntilFocused(control.name)) << screen().everything();
        const Accessible heard = screen().get(control.name);
        EXPECT_EQ(heard.role(), control.role);
        EXPECT_FALSE(heard.description().empty()) << "what it is for";
        const Rectangle place = heard.place();
        const bool isBelow = place.y >= before.y + before.height / 2;
        const bool isBeside = place.x >= before.x + before.width;
        EXPECT_TRUE(isBelow || isBeside);
        before = place;
        press("Tab");
    }
    EXPECT_TRUE(m_program.waitUntilFocused(PORT)) << "and around";
    press("shift+Tab");
    EXPECT_TRUE(m_program.waitUntilFocused(LOG));
}

TEST_F(DesktopKeyboard, ReachesFieldsByTheLettersOfTheirLabels) {
    for (const auto& [keys, name] : {std::pair{"alt+b", MONITOR_SPEED},
                                     {"alt+i", IMAGE_FILE},
                                     {"alt+e", SPEED},
                                     {"alt+p", PORT}}) {
        press(keys);
        EXPECT_TRUE(m_program.waitUntilFocused(name)) << keys;
    }
}

} // namespace
} // namespace flashwriter::testing

// What is not even tried.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include <chrono>
#include <thread>

namespace flashwriter::testing {
namespace {

using DesktopRefusal = DesktopFixture;

TEST_F(DesktopRefusal, OfASpeedThatIsNoneOfTheList) {
    const ImageFile file("image.bin", patternImage(10));
    m_program.enter(IMAGE_FILE, file.path());
    for (const char* speed : {"250,000 bps", "115200", ""}) {
        SCOPED_TRACE(speed);
        m_program.enter(SPEED, speed);
        m_program.startWrite("/dev/nowhere", file.path());
        // Long enough for a write to this port to fail, were there one.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        EXPECT_FALSE(screen().find(PROGRESS));
        EXPECT_FALSE(screen().find(RESULT));
        EXPECT_EQ(m_program.shown(LOG), "");
        EXPECT_EQ(m_program.diagnostics().find("## "), std::string::npos);
    }
    m_program.enter(SPEED, "");
    m_program.choose(SPEED, 1);
    EXPECT_EQ(m_program.write("/dev/nowhere", file.path()), failure("1002", NO_COMMAND));
}

} // namespace
} // namespace flashwriter::testing

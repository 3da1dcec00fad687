// What the program takes of the machine while nothing is asked of it, and what it leaves there.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include <chrono>
#include <filesystem>
#include <thread>

namespace flashwriter::testing {
namespace {

class DesktopIdle : public DesktopFixture {
protected:
    long processorTimeOfTwoIdleSeconds() {
        std::this_thread::sleep_for(std::chrono::seconds(1)); // the last of what was before
        const long before = m_program.processorTime();
        std::this_thread::sleep_for(std::chrono::seconds(2));
        return m_program.processorTime() - before;
    }
    std::vector<std::string> filesAtHome() {
        std::vector<std::string> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_program.home())) {
            files.push_back(entry.path());
        }
        return files;
    }
};

TEST_F(DesktopIdle, TakesNoTimeAndLeavesNoFiles) {
    EXPECT_LE(processorTimeOfTwoIdleSeconds(), 1);
    const ImageFile file("image.bin", patternImage(10));
    m_program.write("/dev/nowhere", file.path());
    m_program.clickOn(LOG);
    EXPECT_LE(processorTimeOfTwoIdleSeconds(), 1) << "after a write";
    press("alt+s");
    press("Escape");
    EXPECT_EQ(quit(), 0);
    EXPECT_EQ(filesAtHome(), std::vector<std::string>());
}

} // namespace
} // namespace flashwriter::testing

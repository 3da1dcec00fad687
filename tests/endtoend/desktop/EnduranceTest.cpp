// Many writes by one and the same program.
#include "tests/endtoend/desktop/DesktopFixture.h"
#include "tests/support/HeldUp.h"

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace flashwriter::testing {
namespace {

// The C library gives a thread a heap of its own, a megabyte and more, when two allocate at the
// same moment, early or late: that tells nothing of what a write leaves behind.
struct OneHeap {
    OneHeap() { ::setenv("MALLOC_ARENA_MAX", "1", 1); }
};

class DesktopEndurance : private OneHeap, public DesktopFixture {
protected:
    std::string proc(const std::string& name) {
        return "/proc/" + std::to_string(m_program.process().pid()) + "/" + name;
    }
    // A figure of the process, for example "VmRSS" in KiB.
    long status(const std::string& name) {
        std::ifstream file(proc("status"));
        for (std::string word; file >> word;) {
            if (word == name + ":") {
                long value = 0;
                file >> value;
                return value;
            }
        }
        return -1;
    }
    std::ptrdiff_t descriptors() {
        return std::distance(std::filesystem::directory_iterator(proc("fd")), {});
    }
    // With the keyboard, where a person stays for a row of boards.
    void writeAgain() {
        const std::size_t before = m_board.transcript().size();
        press("Return");
        const std::string result = m_program.result();
        // In so many writes the machine, too, may have a moment in which it does something else;
        // more than a few would be the program's.
        if (result != SUCCESS && board::wasHeldUp(m_board.transcript(), before)) {
            ++m_heldUp;
        } else {
            ASSERT_EQ(result, SUCCESS) << m_program.diagnostics();
        }
        press("Return");
        ASSERT_TRUE(screen().waitUntilGone(RESULT));
        ASSERT_TRUE(m_program.waitUntilFocused(IMAGE_FILE)) << activeWindow();
    }

    int m_heldUp = 0;
};

TEST_F(DesktopEndurance, AHundredWritesInARowLeaveNothingBehind) {
    const ImageFile file("image.bin", patternImage(10));
    m_program.enter(PORT, plugIn());
    m_program.enter(IMAGE_FILE, file.path());
    long memory = 0;
    long threads = 0;
    std::ptrdiff_t descriptorsBefore = 0;
    int heldUpBefore = 0;
    for (int i = 1; i <= 100; ++i) {
        SCOPED_TRACE(i);
        writeAgain();
        if (HasFatalFailure()) {
            return;
        }
        // Everything has been used several times; a failure uses more, what tells of it.
        if (i == 20 || (i > 20 && m_heldUp != heldUpBefore)) {
            memory = status("VmRSS");
            threads = status("Threads");
            descriptorsBefore = descriptors();
            heldUpBefore = m_heldUp;
        }
    }
    EXPECT_GE(m_board.sessions() + static_cast<std::size_t>(m_heldUp), 100U);
    EXPECT_LE(m_heldUp, 2);
    EXPECT_LT(status("VmRSS"), memory + 1024) << "KiB";
    EXPECT_EQ(status("Threads"), threads);
    EXPECT_EQ(descriptors(), descriptorsBefore);
    RecordProperty("memory", std::to_string(memory) + " to " + std::to_string(status("VmRSS")));
}

} // namespace
} // namespace flashwriter::testing

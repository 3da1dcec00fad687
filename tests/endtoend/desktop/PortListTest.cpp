// The list of ports against the devices that there really are. These tests add some to /dev.
#include "tests/endtoend/desktop/DesktopFixture.h"

#include <algorithm>
#include <filesystem>
#include <unistd.h>

namespace flashwriter::testing {
namespace {

// A device under a name of an adapter's; gone at the end.
class Link {
public:
    Link(const std::string& name, const std::string& device) : m_path("/dev/" + name) {
        std::filesystem::create_symlink(device, m_path);
    }
    ~Link() { remove(); }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;
    void remove() const {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }
    const std::string& path() const { return m_path; }

private:
    std::string m_path;
};

// What belongs into the list: the adapters of one kind of names, in order, or one empty item.
std::vector<std::string> portsOfMachine() {
    std::vector<std::string> found;
    for (const std::string kinds : {"cu.u", "ttyUSB ttyACM"}) {
        for (const auto& entry : std::filesystem::directory_iterator("/dev")) {
            const std::string name = entry.path().filename();
            const bool isOne = kinds == "cu.u"
                                   ? name.starts_with("cu.u")
                                   : name.starts_with("ttyUSB") || name.starts_with("ttyACM");
            if (isOne) {
                found.push_back(entry.path());
            }
        }
        if (!found.empty()) {
            break;
        }
    }
    std::ranges::sort(found);
    return found.empty() ? std::vector<std::string>{""} : found;
}

class DesktopPortList : public DesktopFixture {
protected:
    void SetUp() override {
        if (::geteuid() != 0) {
            GTEST_SKIP() << "only root may add to /dev";
        }
    }
    void expectList() const {
        const std::vector<std::string> expected = portsOfMachine();
        EXPECT_TRUE(m_program.waitUntilShown(PORT, expected.back())) << "the last one";
        EXPECT_EQ(m_program.items(PORT), expected);
    }
};

TEST_F(DesktopPortList, FollowsTheDevicesWhenAsked) {
    expectList();
    const Link second("cu.uzz-of-a-test-2", "/dev/null");
    m_program.clickOn("updateButton");
    expectList();
    const Link first("cu.uzz-of-a-test-1", "/dev/null");
    m_program.clickOn("updateButton");
    expectList();
    first.remove();
    second.remove();
    m_program.clickOn("updateButton");
    expectList();
}

TEST_F(DesktopPortList, LeadsToTheBoard) {
    const Link link("cu.uzz-of-a-test", plugIn());
    const ImageFile file("image.bin", patternImage(100));
    m_program.clickOn("updateButton");
    ASSERT_TRUE(m_program.waitUntilShown(PORT, link.path()));
    m_program.enter(IMAGE_FILE, file.path());
    m_program.clickOn("writeButton");
    EXPECT_EQ(m_program.result(), SUCCESS) << m_program.diagnostics();
}

} // namespace
} // namespace flashwriter::testing

// Files dragged out of another program's window.
#include "tests/endtoend/desktop/DesktopFixture.h"
#include "tests/support/Eventually.h"

#include <filesystem>
#include <functional>

namespace flashwriter::testing {
namespace {

class DesktopDrop : public DesktopFixture {
protected:
    // Until something is so. A drag may begin late, and only movements tell a target of it.
    static bool hovers(Point target, const std::function<bool()>& isSo) {
        int moves = 0;
        return eventually([&] {
            moveTo({target.x + moves++ % 2, target.y});
            return isSo();
        });
    }
    // Drags these files onto a control, where the button is let go.
    void drop(const std::vector<std::string>& files, const std::string& name = IMAGE_FILE) {
        ChildOptions options;
        options.arguments = {DRAG_SOURCE};
        options.arguments.insert(options.arguments.end(), files.begin(), files.end());
        ChildProcess source(options);
        ASSERT_TRUE(eventually([] { return activeWindow() == "Files"; }));
        const Accessible window = ScreenReader(source.pid()).get("Drag me");
        const Point target = screen().get(name).place().centre();
        drag(window.place().centre(), target, [&] {
            EXPECT_TRUE(hovers(target, [&] {
                return screen().get(IMAGE_FILE).enabled() == (name != IMAGE_FILE);
            })) << "disabled while a drag is over it";
        });
        EXPECT_TRUE(m_program.waitUntilEnabled(IMAGE_FILE));
    }
    void expectTaken(const std::string& file) {
        drop({file});
        EXPECT_TRUE(m_program.waitUntilShown(IMAGE_FILE, file)) << screen().everything();
    }
    void expectRefused(const std::vector<std::string>& files) {
        SCOPED_TRACE(files.empty() ? "no file" : files.back());
        drop(files);
        EXPECT_EQ(m_program.shown(IMAGE_FILE), "as it was");
    }

    const ImageFile m_bin{"image.bin", patternImage(10)};
    const ImageFile m_mot{"firmware 書.MOT", motText(patternImage(10))};
    const ImageFile m_hex{"image.hex", patternImage(10)};
};

TEST_F(DesktopDrop, OfAnImageFillsTheField) {
    expectTaken(m_bin.path());
    expectTaken(m_mot.path());
}

TEST_F(DesktopDrop, OfAnythingElseLeavesTheFieldAsItWas) {
    const std::string folder = desktop().directory() + "/x.bin";
    std::filesystem::create_directory(folder);
    m_program.enter(IMAGE_FILE, "as it was");
    expectRefused({m_bin.path(), m_mot.path()});
    expectRefused({folder});
    expectRefused({m_hex.path()});
    expectRefused({});
    std::filesystem::remove(folder);
}

TEST_F(DesktopDrop, BesideTheFieldIsRefused) {
    m_program.enter(IMAGE_FILE, "as it was");
    for (const char* name : {LOG, PORT, "statusLabel"}) {
        drop({m_bin.path()}, name);
        EXPECT_EQ(m_program.shown(IMAGE_FILE), "as it was") << name;
        EXPECT_EQ(m_program.shown(LOG), "");
    }
}

} // namespace
} // namespace flashwriter::testing

// The desktop program on a real driver.
#include "tests/kernel/runs/KernelFixture.h"
#include "tests/kernel/runs/ShownWindow.h"

#include <gmock/gmock.h>

namespace flashwriter::kernel {
namespace {

using testing::flashAfter;
using ::testing::HasSubstr;
using testing::ImageFile;
using testing::motText;
using testing::patternImage;

const char* const SUCCESS = "The writing processing succeeded. ";

class Window : public KernelFixture {
protected:
    Window() {
        m_board.target.monitor = {"Hello there.\r\n", std::chrono::milliseconds(200), 9600};
    }

    static void writeAndReadBack(ShownWindow& window, const std::string& speed,
                                 const std::string& file, const std::vector<std::uint8_t>& image) {
        SCOPED_TRACE(file + " at " + speed);
        const auto before = adapter().codeFlash();
        std::string result;
        untilNotHeldUp(adapter().transcript().size(), [&] {
            result = window.write(speed, file);
            window.dismissResult();
            return result == SUCCESS;
        });
        EXPECT_EQ(result, SUCCESS) << story();
        EXPECT_TRUE(adapter().codeFlash() == flashAfter(image, before)) << "the flash differs";
    }
};

TEST_F(Window, WritesBothKindsOfFiles) {
    const auto image = patternImage(6000);
    const ImageFile raw("image.bin", image);
    const auto other = patternImage(3000);
    const ImageFile records("image.mot", motText(other));
    plugIn();
    ShownWindow window(guest(), port());
    EXPECT_EQ(window.hands().text("serialPortComboBox"), ShownWindow::portName());
    writeAndReadBack(window, "115,200 bps", raw.path(), image);
    writeAndReadBack(window, "500,000 bps", records.path(), other);
}

TEST_F(Window, MonitorShowsWhatTheBoardSaysInBothSensesOfDtr) {
    for (const bool inverted : {false, true}) {
        SCOPED_TRACE(inverted);
        m_board.target.invertedDtr = inverted;
        plugIn();
        {
            ShownWindow window(guest(), port());
            window.hands().click("monitorOpenButton");
            window.hands().waitText("logDispTextView", "Hello there.\nHello there.\n");
            EXPECT_FALSE(window.hands().enabled("writeButton"));
            window.hands().click("monitorOpenButton");
            window.hands().waitEnabled("writeButton");
        }
        unplug();
    }
}

TEST_F(Window, MonitorSurvivesAnUnpluggedAdapterAndAWriteFollows) {
    const auto image = patternImage(600);
    const ImageFile file("image.bin", image);
    plugIn();
    ShownWindow window(guest(), port());
    window.hands().click("monitorOpenButton");
    window.hands().waitText("logDispTextView", "Hello there.\n");
    adapter().unplug();
    EXPECT_THAT(window.hands().waitText("statusLabel", "gone"), HasSubstr("gone"));
    EXPECT_LT(window.hands().alive(), std::chrono::seconds(2));
    window.hands().click("monitorOpenButton");
    window.hands().waitEnabled("writeButton");
    waitUntilPortHasGone();
    plugIn();
    writeAndReadBack(window, "500,000 bps", file.path(), image);
}

TEST_F(Window, StaysAliveWhenTheAdapterIsStuckAndWritesOnAnother) {
    const std::vector<std::uint8_t> image = patternImage(600);
    const ImageFile file("image.bin", image);
    m_board.faults = {board::parseFault("stuck@8")};
    plugIn();
    ShownWindow window(guest(), port());
    EXPECT_THAT(window.write("500,000 bps", file.path()),
                HasSubstr("The writing processing failed"));
    EXPECT_LT(window.hands().alive(), std::chrono::seconds(2));
    window.dismissResult();
    EXPECT_TRUE(window.hands().enabled("writeButton"));
    unplug();
    m_board.faults = {};
    plugIn(); // the port is free: this one is the same again
    writeAndReadBack(window, "500,000 bps", file.path(), image);
}

} // namespace
} // namespace flashwriter::kernel

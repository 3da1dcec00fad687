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

class Window : public KernelFixture {
protected:
    Window() {
        m_board.target.monitor = {"Hello there.\r\n", std::chrono::milliseconds(200), 9600};
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

    const auto before = adapter().codeFlash();
    EXPECT_EQ(window.write("115,200 bps", raw.path()), "The writing processing succeeded. ")
        << story();
    EXPECT_TRUE(adapter().codeFlash() == flashAfter(image, before)) << "the flash differs";
    window.dismissResult();

    const auto between = adapter().codeFlash();
    EXPECT_EQ(window.write("500,000 bps", records.path()), "The writing processing succeeded. ")
        << story();
    EXPECT_TRUE(adapter().codeFlash() == flashAfter(other, between)) << "the flash differs";
    window.dismissResult();
    EXPECT_EQ(adapter().violations(), 0U) << story();
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
    const auto before = adapter().codeFlash();
    EXPECT_EQ(window.write("500,000 bps", file.path()), "The writing processing succeeded. ")
        << story();
    EXPECT_TRUE(adapter().codeFlash() == flashAfter(image, before)) << "the flash differs";
    window.dismissResult();
}

} // namespace
} // namespace flashwriter::kernel

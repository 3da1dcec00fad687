// What goes on while a write goes on.
#include "tests/endtoend/desktop/DesktopFixture.h"
#include "tests/support/Eventually.h"

#include <chrono>
#include <cstdlib>
#include <thread>

namespace flashwriter::testing {
namespace {

class DesktopSheet : public DesktopFixture {
protected:
    DesktopSheet() { m_options.pace = true; }

    bool waitForStage(const std::string& stage) const {
        return screen().waitUntil(PROGRESS, [&](const Accessible& label) {
            return label.description().starts_with(stage);
        });
    }
};

// The stages of a write as the screen reader hears them, in order.
struct Stages {
    std::vector<std::string> names;
    bool isFallingBack = false; // of the percentage
    bool barAgrees = true;
    int percentage = 0;

    void hear(const std::string& label, double bar) {
        const std::size_t end = label.find(" (");
        const std::string name = label.substr(0, end);
        const int heard = std::atoi(label.c_str() + end + 2); // NOLINT(cert-err34-c)
        if (label != name + " (" + std::to_string(heard) + " %)") {
            names.push_back("not a stage: " + label);
        } else if (names.empty() || names.back() != name) {
            names.push_back(name);
        }
        isFallingBack = isFallingBack || heard < percentage;
        barAgrees = barAgrees && bar >= heard && bar <= 100; // it is read a little later
        percentage = heard;
    }
};

TEST_F(DesktopSheet, TellsEachStageInOrder) {
    // Long enough to be seen: entered at the second attempt only, a big file for a small image,
    // slow flash.
    m_options.target.invertedDtr = true;
    m_options.target.eraseTime = std::chrono::milliseconds(20);
    std::string text;
    while (text.size() < 40000000) {
        text += "S00600004844521B\n";
    }
    const ImageFile file("image.mot", text + motText(patternImage(10000)));
    m_program.startWrite(plugIn(), file.path());
    const Accessible label = screen().get(PROGRESS);
    const Accessible bar = screen().get("progressBar");
    Stages stages;
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    // Looking for the result takes longer than a short stage, so it is left for the last one.
    const auto isOver = [&] {
        return !stages.names.empty() && stages.names.back() == "Writing data." &&
               screen().find(RESULT);
    };
    while (!isOver() && std::chrono::steady_clock::now() < giveUp) {
        const std::string heard = label.description();
        if (!heard.empty() && heard != " (0 %)") { // before the write's first word
            stages.hear(heard, bar.value());
        }
    }
    EXPECT_EQ(m_program.result(), SUCCESS);
    EXPECT_EQ(stages.names,
              (std::vector<std::string>{"Changing to programming mode.", "Reading file.",
                                        "Erasing block data.", "Writing data."}));
    EXPECT_FALSE(stages.isFallingBack);
    EXPECT_TRUE(stages.barAgrees);
    EXPECT_GT(stages.percentage, 50);
}

TEST_F(DesktopSheet, KeepsTheWindowOpenUntilTheEnd) {
    const ImageFile file("image.bin", patternImage(50000));
    const std::string mainWindow = waitForWindow(MAIN_WINDOW);
    m_program.startWrite(plugIn(), file.path());
    ASSERT_TRUE(waitForStage("Writing data. ("));
    press("Escape");
    press("alt+F4");
    m_program.closeByFrame();
    m_program.minimiseByFrame();
    minimise(mainWindow);
    m_program.clickOn("writeButton");
    // Long enough for all of that to take effect, if it did.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_TRUE(waitForStage("Writing data. ("));
    EXPECT_TRUE(windowIsShown(MAIN_WINDOW));
    EXPECT_EQ(m_program.result(), SUCCESS);
    m_program.dismissResult();
    EXPECT_EQ(m_program.shown(LOG), SUCCESS_LOG);
    EXPECT_EQ(m_board.closings(), 1U) << "one write alone";

    m_program.minimiseByFrame();
    EXPECT_TRUE(eventually([] { return !windowIsShown(MAIN_WINDOW); })) << "as before the write";
    unminimise(mainWindow);
    EXPECT_TRUE(eventually([] { return activeWindow() == MAIN_WINDOW; }));
    EXPECT_EQ(quit(), 0);
}

TEST_F(DesktopSheet, ClosingTheResultByItsFrameIsAsGoodAsOk) {
    m_options.pace = false;
    const ImageFile file("image.bin", patternImage(100));
    const std::string port = plugIn();
    m_program.startWrite(port, file.path());
    EXPECT_EQ(m_program.result(), SUCCESS);
    press("alt+F4");
    EXPECT_TRUE(screen().waitUntilGone(RESULT));
    EXPECT_EQ(m_program.write(port, file.path()), SUCCESS);
    EXPECT_EQ(quit(), 0);
}

} // namespace
} // namespace flashwriter::testing

#include "tests/endtoend/write/WriteFixture.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <random>
#include <thread>

namespace flashwriter::testing {
namespace {

class InterruptedWrite : public WriteFixture {
protected:
    std::size_t dataFrames() const {
        const board::Transcript transcript = m_board.transcript();
        return static_cast<std::size_t>(
            std::ranges::count_if(transcript, [](const board::TranscriptRecord& record) {
                return record.kind == board::TranscriptRecord::Kind::hostFrame &&
                       record.bytes.front() == 0x02;
            }));
    }
};

TEST_F(InterruptedWrite, LeavesAtOnceAndANewWriteMendsIt) {
    const Bytes image = patternImage(20000);
    const ImageFile file("image.bin", image);
    m_board.start(m_options);
    const Bytes before = m_board.codeFlash();

    ChildProcess interrupted(flashwrite("115200", file.path()));
    ASSERT_TRUE(interrupted.waitFor([this] { return dataFrames() >= 10; }));
    interrupted.type("\x03");
    EXPECT_EQ(interrupted.wait(), 130);
    EXPECT_NE(interrupted.terminal().find("incomplete"), std::string::npos)
        << interrupted.terminal();
    EXPECT_TRUE(m_board.waitForClosings(1, std::chrono::seconds(20)));
    EXPECT_LT(dataFrames(), 80U);
    EXPECT_FALSE(m_board.codeFlash() == flashAfter(image, before));

    ChildProcess mended(flashwrite("500000", file.path()));
    EXPECT_EQ(mended.wait(), 0);
    m_board.stop();
    EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before));
}

// Without any last word, at moments from before the port is open to the middle of the image.
TEST_F(InterruptedWrite, KilledAtAnyMomentIsMendedByANewOne) {
    constexpr int KILLS = 20;
    m_options.pace = false;
    m_board.start(m_options);
    const Bytes before = m_board.codeFlash();
    std::mt19937 random(20); // always the same moments, on a machine of the same speed
    for (int i = 0; i < KILLS; ++i) {
        const Bytes image(static_cast<std::size_t>(3000 + i), static_cast<std::uint8_t>(i));
        const ImageFile file("image.bin", image);
        const std::chrono::microseconds moment(random() % 150000);
        SCOPED_TRACE(moment.count());
        ChildProcess killed(flashwrite("500000", file.path()));
        std::this_thread::sleep_for(moment);
        killed.signal(SIGKILL);
        EXPECT_TRUE(killed.wait().has_value());
        ChildProcess mended(flashwrite("500000", file.path()));
        EXPECT_EQ(mended.wait(), 0) << mended.output();
        EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before));
    }
}

TEST_F(InterruptedWrite, OfTheBoardsMakingTellsWhatHappened) {
    const ImageFile file("image.bin", patternImage(3000));
    m_options.faults = {board::parseFault("unplug-frame@12")};
    m_board.start(m_options);
    const std::string port = m_board.portPath();
    ChildProcess program(flashwrite("500000", file.path()));
    EXPECT_EQ(program.wait(std::chrono::seconds(60)), 1);
    EXPECT_NE(program.output().find("## Write Failed\nThe writing processing failed\n"
                                    "ERROR:0x00002005\n"),
              std::string::npos)
        << program.output();
    const std::string everything = program.output() + program.terminal();
    EXPECT_NE(everything.find(port), std::string::npos) << "which port is gone: " << everything;
}

TEST_F(InterruptedWrite, OfARefusedImageTellsBothSizes) {
    m_options.target.flash.codeKib = 16;
    const ImageFile file("image.bin", patternImage(20000));
    m_board.start(m_options);
    ChildProcess program(flashwrite("500000", file.path()));
    EXPECT_EQ(program.wait(), 1);
    EXPECT_NE(program.output().find("ERROR:0x00003004\n"), std::string::npos);
    const std::string everything = program.output() + program.terminal();
    EXPECT_NE(everything.find("20000"), std::string::npos) << everything;
    EXPECT_NE(everything.find("16384"), std::string::npos) << everything;
}

} // namespace
} // namespace flashwriter::testing

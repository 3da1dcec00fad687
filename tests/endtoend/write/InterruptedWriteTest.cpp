#include "tests/endtoend/write/WriteFixture.h"

#include <algorithm>

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

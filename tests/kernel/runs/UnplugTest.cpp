// The adapter comes loose while the command writes.
#include "tests/kernel/runs/KernelFixture.h"

#include <algorithm>

namespace flashwriter::kernel {
namespace {

using board::TranscriptRecord;
using testing::ImageFile;
using testing::patternImage;

class Unplugged : public KernelFixture {
protected:
    static std::size_t count(TranscriptRecord::Kind kind) {
        const board::Transcript transcript = adapter().transcript();
        return static_cast<std::size_t>(std::ranges::count_if(
            transcript, [kind](const TranscriptRecord& record) { return record.kind == kind; }));
    }

    // Every write of the file that loses its adapter in this way ends and says so, and the next one
    // on a new board succeeds. Each board takes the place of the one before.
    void loseAtEach(const std::string& fault, std::size_t last) {
        for (std::size_t n = 1; n <= last; ++n) {
            const std::string text = fault + "@" + std::to_string(n);
            SCOPED_TRACE(text);
            m_board.faults = {board::parseFault(text)};
            plugIn();
            const auto program = flashwrite("500000", m_file.path());
            EXPECT_EQ(program->wait(), 1) << story();
            EXPECT_TRUE(adapter().unplugged());
            EXPECT_NE(program->output().find("## Write Failed\nThe writing processing failed\n"),
                      std::string::npos)
                << program->output();
            EXPECT_NE(program->output().find(port() + " has gone: the adapter came loose."),
                      std::string::npos)
                << program->output();
            waitUntilPortHasGone();
            m_board.faults = {};
            plugIn();
            writeAndReadBack("500000", m_file.path(), m_image);
            unplug();
        }
    }

    const std::vector<std::uint8_t> m_image = patternImage(600);
    const ImageFile m_file{"image.bin", m_image};
};

TEST_F(Unplugged, AtEachFrameAndReplyOfAWrite) {
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
    const std::size_t frames = count(TranscriptRecord::Kind::hostFrame);
    const std::size_t replies = count(TranscriptRecord::Kind::reply);
    unplug();
    ASSERT_GT(frames, 8U);
    ASSERT_GT(replies, 8U);
    loseAtEach("unplug-frame", frames);
    loseAtEach("unplug-reply", replies);
}

} // namespace
} // namespace flashwriter::kernel

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

    // Each board is written well and then again, in which it is lost: at the n-th frame or reply of
    // that second write, for every other n from first on. That write ends and says so; the next
    // board's first is the one after it.
    void loseAtEach(const std::string& fault, std::size_t ofOneWrite, std::size_t first) {
        for (std::size_t n = first; n <= ofOneWrite; n += 2) {
            const std::string text = fault + "@" + std::to_string(ofOneWrite + n);
            SCOPED_TRACE(text);
            m_board.faults = {board::parseFault(text)};
            std::unique_ptr<GuestProcess> last;
            untilNotHeldUp(0, [&] { return isLostInTheSecond(last); });
            expectToldThatItIsLost(*last);
        }
    }
    // Whether a new board came as far as it was to come.
    bool isLostInTheSecond(std::unique_ptr<GuestProcess>& last) {
        unplug();
        plugIn();
        const auto before = adapter().codeFlash();
        last = flashwrite("500000", m_file.path());
        if (last->wait() != 0 || adapter().codeFlash() != testing::flashAfter(m_image, before)) {
            return false;
        }
        last = flashwrite("500000", m_file.path());
        return last->wait() == 1 && adapter().unplugged();
    }
    static void expectToldThatItIsLost(GuestProcess& lost) {
        EXPECT_EQ(lost.wait(), 1) << story();
        EXPECT_TRUE(adapter().unplugged()) << story();
        const std::string output = lost.output();
        EXPECT_NE(output.find("## Write Failed\nThe writing processing failed\n"),
                  std::string::npos)
            << output;
        EXPECT_NE(output.find(port() + " has gone: the adapter came loose."), std::string::npos)
            << output;
    }

    const std::vector<std::uint8_t> m_image = patternImage(600);
    const ImageFile m_file{"image.bin", m_image};
};

TEST_F(Unplugged, AtEachExchangeOfAWrite) {
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
    const std::size_t frames = count(TranscriptRecord::Kind::hostFrame);
    const std::size_t replies = count(TranscriptRecord::Kind::reply);
    unplug();
    ASSERT_GT(frames, 8U);
    ASSERT_GT(replies, 8U);
    // By turns: each exchange is a frame and a reply.
    loseAtEach("unplug-frame", frames, 1);
    loseAtEach("unplug-reply", replies, 2);
    m_board.faults = {};
    unplug();
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
}

} // namespace
} // namespace flashwriter::kernel

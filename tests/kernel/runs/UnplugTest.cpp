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

    // Loses a new board at each of these frames or replies. Each write ends and says so; that the
    // next one works is seen of the next board, as far as that comes.
    void loseAtEach(const std::string& fault, const std::vector<std::size_t>& numbers) {
        for (const std::size_t n : numbers) {
            const std::string text = fault + "@" + std::to_string(n);
            SCOPED_TRACE(text);
            m_board.faults = {board::parseFault(text)};
            std::unique_ptr<GuestProcess> lost;
            untilNotHeldUp([&] {
                lost = writeOnANewBoard();
                return adapter().unplugged();
            });
            EXPECT_TRUE(adapter().unplugged()) << story();
            expectToldThatItIsLost(*lost);
        }
        m_board.faults = {};
    }
    std::unique_ptr<GuestProcess> writeOnANewBoard() {
        unplug();
        plugIn();
        auto write = flashwrite("500000", m_file.path());
        write->wait();
        return write;
    }
    static void expectToldThatItIsLost(GuestProcess& lost) {
        EXPECT_EQ(lost.wait(), 1) << story();
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
    ASSERT_EQ(frames, 11U);
    ASSERT_EQ(replies, 14U);
    // Each exchange in its frame or in its last reply; of the four data frames one.
    loseAtEach("unplug-frame", {1, 4, 6, 8, 11});     // speed, blank check, programming, data, sum
    loseAtEach("unplug-reply", {2, 4, 6, 9, 12, 14}); // reset, signature, erase, data, verify, sum
    unplug();
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
}

// With BREAK, as the board is held in reset; and as the zero byte is to be sent.
TEST_F(Unplugged, InModeEntry) {
    for (const char* const step : {"BREAK on", "BREAK off"}) {
        SCOPED_TRACE(step);
        m_looseAt = step;
        const auto lost = writeOnANewBoard();
        EXPECT_TRUE(hasHappened(step)) << story();
        expectToldThatItIsLost(*lost);
    }
    m_looseAt.clear();
    unplug();
    plugIn();
    writeAndReadBack("500000", m_file.path(), m_image);
}

} // namespace
} // namespace flashwriter::kernel

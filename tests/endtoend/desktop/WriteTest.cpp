// Whole writes through the window: what is on the screen, and what is in the flash.
#include "tests/endtoend/desktop/DesktopFixture.h"
#include "tests/support/HeldUp.h"

namespace flashwriter::testing {
namespace {

class DesktopWrite : public DesktopFixture {
protected:
    DesktopWrite() { m_options.pace = true; }

    // A write that fails because the machine was held up is made anew, once.
    void writeAndReadBack(const std::string& file, const std::vector<std::uint8_t>& image) {
        std::string port = plugIn();
        auto before = m_board.codeFlash();
        std::string result = m_program.write(port, file);
        if (result != SUCCESS && board::isMadeAnew(m_board.transcript())) {
            port = plugIn();
            before = m_board.codeFlash();
            result = m_program.write(port, file);
        }
        EXPECT_EQ(result, SUCCESS) << m_program.diagnostics();
        EXPECT_EQ(m_program.shown(LOG), SUCCESS_LOG);
        m_board.stop();
        EXPECT_EQ(m_board.violations(), 0U);
        EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before)) << "the flash differs";
    }

    // The speed that the board was told.
    unsigned speedAsked() const {
        for (const board::TranscriptRecord& record : m_board.transcript()) {
            if (record.kind == board::TranscriptRecord::Kind::hostFrame &&
                record.bytes.at(2) == 0x9A) {
                return record.bytes.at(3);
            }
        }
        return 99;
    }

    const std::vector<std::uint8_t> m_image = patternImage(9000);
};

TEST_F(DesktopWrite, OfARawImageAtBothSpeeds) {
    const ImageFile file("image.bin", m_image);
    EXPECT_EQ(m_program.items(SPEED), (std::vector<std::string>{"115,200 bps", "500,000 bps"}));
    EXPECT_EQ(m_program.shown(SPEED), "115,200 bps");
    writeAndReadBack(file.path(), m_image);
    EXPECT_EQ(speedAsked(), 0U);
    m_program.choose(SPEED, 1);
    EXPECT_EQ(m_program.shown(SPEED), "500,000 bps");
    writeAndReadBack(file.path(), m_image);
    EXPECT_EQ(speedAsked(), 2U);
}

TEST_F(DesktopWrite, OfRecordsAtBothSpeeds) {
    const ImageFile file("image.MOT", motText(m_image));
    m_program.choose(SPEED, 1);
    writeAndReadBack(file.path(), m_image);
    EXPECT_EQ(speedAsked(), 2U);
    m_program.choose(SPEED, 0);
    writeAndReadBack(file.path(), m_image);
    EXPECT_EQ(speedAsked(), 0U);
}

TEST_F(DesktopWrite, OfAPathThatIsNotAscii) {
    const ImageFile file("\xE6\x9B\xB8 b\xC3\xA4r.bin", m_image);
    writeAndReadBack(file.path(), m_image);
}

} // namespace
} // namespace flashwriter::testing

// The diagnostic log of whole writes, word for word.
#include "tests/sequence/BoardFixture.h"
#include "tests/sequence/DiagnosticLines.h"

namespace flashwriter {
namespace {

using testing::ImageFile;

class DriverLines : public BoardFixture {};

constexpr const char* AREA = "StartAddress = 0x00000000:EndAddress = 0x000003FF:"
                             "Size = 1000:BlockCount = 1:RemainSize = 1000";

TEST_F(DriverLines, OfAWriteThatErasesOneBlockAndFillsItUp) {
    Bytes image(1000, 0x33);
    image[0] = 0x12;
    image[512] = 0x9A;
    const ImageFile file("image.bin", image);
    m_options.target.flash.fill = 0x5A;
    const DiagnosticLines lines;
    ASSERT_EQ(write(file.path()).returned, RESULT_OK);

    Lines expected{
        "## Programming Mode",
        AREA,
        "## Block Blank Check",
        "## Block Erace",
        "dwStartAddress = 0x00000000",
        "## Programming",
        "dwStartAddress = 0x00000000",
        "dwEndAddress   = 0x000003FF",
        "Programming@ST1 = 0x06",
        "dwDataLength = 1000",
        "pbData       = 0x00000012",
        "pbFinalFrame = 0x00000012",
        "fFraction = TRUE",
        "dwBlockCount = 1",
        "dwRemainByte = 1000",
    };
    const Bytes firstBytes{0x12, 0x33, 0x9A, 0x33};
    for (std::size_t part = 0; part < 4; ++part) {
        AttemptLines{0, part, 0, firstBytes[part], part == 3, 6}.appendTo(expected);
        expected.insert(expected.end(), {"dwRet = 0x00000000", "DST1 = 0x06\nDST2 = 0x06"});
    }
    expected.insert(expected.end(), {
                                        "Internal Verify DST1=0x06",
                                        "## END Programming",
                                        "dwRet = 0x00000000",
                                        "ST1   = 0x06",
                                        "## Reset before shutdown",
                                        "## Close",
                                        "## Send close message",
                                        "0x00000000",
                                    });
    EXPECT_EQ(DiagnosticLines::all(), expected);
}

TEST_F(DriverLines, OfAPortThatCannotBeOpenedTellOfItsResetAndClosingAllTheSame) {
    const DiagnosticLines lines;
    ASSERT_EQ(runDriver("/dev/no-such-port", 0, "image.bin").returned, RESULT_PORT_OPEN_ERROR);
    EXPECT_EQ(DiagnosticLines::all(), (Lines{"## Reset before shutdown", "## Close",
                                             "## Send close message", "0x00001002"}));
}

} // namespace
} // namespace flashwriter

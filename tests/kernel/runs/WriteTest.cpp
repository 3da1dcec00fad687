// Whole writes by the command.
#include "tests/kernel/runs/KernelFixture.h"

namespace flashwriter::kernel {
namespace {

using testing::ImageFile;
using testing::motText;
using testing::patternImage;

class KernelWrite : public KernelFixture {};

TEST_F(KernelWrite, OfARawImageAt115200) {
    const auto image = patternImage(10000);
    const ImageFile file("image.bin", image);
    plugIn();
    writeAndReadBack("115200", file.path(), image);
}

TEST_F(KernelWrite, OfRecordsAt500000) {
    const auto image = patternImage(20001);
    const ImageFile file("image.mot", motText(image));
    plugIn();
    writeAndReadBack("500000", file.path(), image);
}

TEST_F(KernelWrite, OfTheWholeFlashAt500000) {
    const auto image = patternImage(std::size_t{1024} * m_board.target.flash.codeKib);
    const ImageFile file("image.bin", image);
    plugIn();
    writeAndReadBack("500000", file.path(), image);
}

TEST_F(KernelWrite, ToABoardWithTheOtherSenseOfDtr) {
    m_board.target.invertedDtr = true;
    const auto image = patternImage(3000);
    const ImageFile file("image.bin", image);
    plugIn();
    writeAndReadBack("115200", file.path(), image);
    writeAndReadBack("500000", file.path(), image);
}

// The driver keeps what a port was set to, and the second write finds it.
TEST_F(KernelWrite, TwiceOnTheSamePort) {
    const auto image = patternImage(2000);
    const ImageFile file("image.bin", image);
    plugIn();
    writeAndReadBack("500000", file.path(), image);
    writeAndReadBack("115200", file.path(), image);
}

} // namespace
} // namespace flashwriter::kernel

// Whole writes by the command.
#include "tests/kernel/runs/FilePair.h"
#include "tests/kernel/runs/KernelFixture.h"

namespace flashwriter::kernel {
namespace {

class KernelWrite : public KernelFixture {};

// On one port: the driver keeps what it was set to, and the next write finds it.
TEST_F(KernelWrite, OfBothKindsOfFilesAtBothSpeeds) {
    const FilePair files;
    plugIn();
    for (const char* const speed : {"500000", "115200"}) {
        for (const auto& [path, image] : files.entries()) {
            writeAndReadBack(speed, path, image);
        }
    }
}

TEST_F(KernelWrite, OfTheWholeFlashAt500000) {
    const auto image = testing::patternImage(std::size_t{1024} * m_board.target.flash.codeKib);
    const testing::ImageFile file("image.bin", image);
    plugIn();
    writeAndReadBack("500000", file.path(), image);
}

TEST_F(KernelWrite, ToABoardWithTheOtherSenseOfDtr) {
    m_board.target.invertedDtr = true;
    const FilePair files;
    plugIn();
    writeAndReadBack("115200", files.raw.path(), files.rawImage);
    writeAndReadBack("500000", files.records.path(), files.recordImage);
}

} // namespace
} // namespace flashwriter::kernel

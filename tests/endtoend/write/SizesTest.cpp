#include "tests/endtoend/write/WriteFixture.h"

namespace flashwriter::testing {
namespace {

class Sizes : public WriteFixture {
protected:
    void writeSizes(const std::string& speed) {
        for (const std::size_t size : {1U, 255U, 256U, 257U, 1023U, 1024U, 1025U}) {
            const Bytes image = patternImage(size);
            const ImageFile file("image.bin", image);
            writeAndReadBack(speed, file.path(), image);
        }
    }
    void writeAll(const std::string& speed) {
        const Bytes image = patternImage(std::size_t{1024} * m_options.target.flash.codeKib);
        const ImageFile file("image.bin", image);
        writeAndReadBack(speed, file.path(), image);
    }
};

TEST_F(Sizes, AroundFramesAndBlocksAt115200) {
    writeSizes("115200");
}

TEST_F(Sizes, AroundFramesAndBlocksAt500000) {
    writeSizes("500000");
}

// A quarter of the largest flash: at this speed all of it takes half a minute of waiting for the
// wire.
TEST_F(Sizes, TheWholeOfASmallerFlashAt115200) {
    m_options.target.flash.codeKib = 64;
    writeAll("115200");
}

TEST_F(Sizes, TheWholeFlashAt500000) {
    writeAll("500000");
}

} // namespace
} // namespace flashwriter::testing

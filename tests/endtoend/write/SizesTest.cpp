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
        const Bytes image = patternImage(262144);
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

TEST_F(Sizes, TheWholeFlashAt115200) {
    writeAll("115200");
}

TEST_F(Sizes, TheWholeFlashAt500000) {
    writeAll("500000");
}

} // namespace
} // namespace flashwriter::testing

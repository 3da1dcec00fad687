// The command in a process that runs out of memory, descriptors or threads, wherever that happens:
// it ends by itself, and claims success only of what is in the flash.
#include "tests/endtoend/scarce/ScarceFixture.h"

namespace flashwriter::testing {
namespace {

class Scarce : public ScarceFixture {
protected:
    Scarce() : ScarceFixture(SCARCE_FLASHWRITE, LINES_PRELOAD) {}
};

TEST_F(Scarce, MemoryForARawImage) {
    failEachAllocation(0, [&](const std::string& variable) { return write(variable, ".bin"); });
}

TEST_F(Scarce, MemoryForRecordsAndProgress) {
    failEachAllocation(0, [&](const std::string& variable) {
        return write(variable, ".mot", ChildStream::Terminal);
    });
}

TEST_F(Scarce, MemoryForAdvice) {
    failEachAllocation(1, [&](const std::string& variable) {
        ChildProcess program(
            scarceFlashwrite("/dev/nowhere", "image.bin", variable, ChildStream::Pipe));
        return endOf(program, variable);
    });
}

TEST_F(Scarce, Descriptors) {
    for (const char* extension : {".bin", ".mot"}) {
        EXPECT_EQ(write("DESCRIPTORS=0", extension), 1);
        for (int count = 1; count < 6; ++count) {
            write("DESCRIPTORS=" + std::to_string(count), extension);
        }
        int tries = 0; // on a busy machine a write may fail all the same
        while (write("DESCRIPTORS=6", extension) != 0 && ++tries < 10) {
        }
        EXPECT_LT(tries, 10);
    }
}

TEST_F(Scarce, Threads) {
    const ImageFile file("image.bin", m_images[0]);
    const auto before = m_board.codeFlash();
    // That of the write, and the one that receives.
    for (const char* variable : {"THREADS=1", "THREADS=2"}) {
        ChildProcess program(
            scarceFlashwrite(m_board.portPath(), file.path(), variable, ChildStream::Pipe));
        EXPECT_EQ(endOf(program, variable), 1);
        for (const char* words : {"ERROR:0x00002000\n", "not enough memory, or no thread"}) {
            EXPECT_NE(program.output().find(words), std::string::npos) << program.output();
        }
        EXPECT_EQ(m_board.codeFlash(), before);
    }
    int tries = 0; // on a busy machine a write may fail all the same
    while (write("THREADS=3", ".bin") != NOT_REACHED && ++tries < 10) {
    }
    EXPECT_LT(tries, 10);
}

} // namespace
} // namespace flashwriter::testing

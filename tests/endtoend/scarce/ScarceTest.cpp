// The command in a process that runs out of memory or of descriptors, wherever that happens: it
// ends by itself, and claims success only of what is in the flash.
#include "board/VirtualBoard.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ImageFile.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

namespace flashwriter::testing {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr int NOT_REACHED = 75; // see ScarceFlashwrite.cpp

class Scarce : public ::testing::Test {
protected:
    Scarce() {
        m_options.pace = false;
        m_options.target.flash.codeKib = 16;
        m_board.start(m_options);
    }

    // Runs the command once, with another image than last time, and returns its status.
    int write(const std::string& variable, const std::string& extension,
              ChildStream error = ChildStream::Pipe) {
        m_turn = 1 - m_turn;
        const Bytes& image = m_images.at(m_turn);
        const bool isMot = extension == ".mot";
        const ImageFile file("image" + extension,
                             isMot ? motText(image) : std::string(image.begin(), image.end()));
        const Bytes before = m_board.codeFlash();
        ChildProcess program(scarceFlashwrite(m_board.portPath(), file.path(), variable, error));
        const int status = endOf(program, variable);
        const bool isTold = program.output().find("succeeded") != std::string::npos;
        if (isTold || status % NOT_REACHED == 0) {
            EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, before)) << variable;
        }
        return status;
    }

    static ChildOptions scarceFlashwrite(const std::string& port, const std::string& file,
                                         const std::string& variable, ChildStream error) {
        ChildOptions options;
        options.arguments = {SCARCE_FLASHWRITE, port, "500000", file};
        options.environment = {std::string("LD_PRELOAD=") + LINES_PRELOAD, variable};
        options.error = error;
        return options;
    }

    // It ends by itself, with a status that it is said to have, and not without a word.
    static int endOf(ChildProcess& program, const std::string& variable) {
        const int status = program.wait(std::chrono::seconds(60)).value_or(-1);
        const std::string words = program.output() + program.error() + program.terminal();
        EXPECT_TRUE(status % NOT_REACHED == 0 || status % NOT_REACHED == 1)
            << variable << ": " << status << "\n"
            << words;
        EXPECT_NE(words, "") << variable;
        return status;
    }

    // Runs with a number one greater each time, until one is greater than there are allocations
    // and the status is the one that belongs to a run without want.
    template <class Run>
    static void failEachAllocation(int plainStatus, const Run& run) {
        int number = 0;
        int status = 0;
        do {
            status = run("FAILING_ALLOCATION=" + std::to_string(++number));
        } while (status != NOT_REACHED + plainStatus && number < 1000);
        EXPECT_GT(number, 50);
        EXPECT_LT(number, 1000);
    }

    board::BoardOptions m_options;
    board::VirtualBoard m_board;
    const std::array<Bytes, 2> m_images{patternImage(1000), Bytes(1000, 0xA5)};
    std::size_t m_turn = 0;
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

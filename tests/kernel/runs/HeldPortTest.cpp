// A port that another program has open.
#include "tests/kernel/runs/KernelFixture.h"

namespace flashwriter::kernel {
namespace {

using testing::ImageFile;
using testing::patternImage;

constexpr unsigned int PERSON = 1000; // a user without root's rights, whom no exclusive use stops

class HeldPort : public KernelFixture {
protected:
    // Opens the port and keeps it, in the way that a line of Perl does it.
    static std::unique_ptr<GuestProcess> hold(const std::string& also, unsigned int user) {
        const std::string line = "$| = 1; open(P, '+<', '" + port() + "') or die; " + also +
                                 " print \"open\\n\"; sleep 600";
        auto holder = guest().start(
            {.arguments = {"/usr/bin/perl", "-e", line}, .environment = {}, .user = user});
        EXPECT_TRUE(holder->waitFor([](const ProcessState& state) {
            return state.output == "open\n";
        })) << holder->error();
        return holder;
    }
    static std::string outcomeFor(const std::string& file, unsigned int user, int status) {
        const auto program = guest().start(
            {.arguments = {FLASHWRITE, port(), "500000", file}, .environment = {}, .user = user});
        EXPECT_EQ(program->wait(), status) << program->output() << story();
        return program->output();
    }

    const std::vector<std::uint8_t> m_image = patternImage(600);
    const ImageFile m_file{"image.bin", m_image};
};

const char* const TIOCEXCL_LINE = "ioctl(P, 0x540C, 0) or die;";

TEST_F(HeldPort, ExclusivelyNamesTheHolder) {
    plugIn();
    const auto holder = hold(TIOCEXCL_LINE, PERSON);
    const std::string output = outcomeFor("/nowhere.bin", PERSON, 1);
    EXPECT_NE(output.find("ERROR:0x00001002\n"), std::string::npos) << output;
    EXPECT_NE(output.find(port() + " is held by perl (process " + std::to_string(holder->pid()) +
                          "): close it first.\n"),
              std::string::npos)
        << output;
}

TEST_F(HeldPort, ExclusivelyByAnotherUserSaysThatItMayBeHeld) {
    plugIn();
    const auto holder = hold(TIOCEXCL_LINE, 0);
    const std::string output = outcomeFor("/nowhere.bin", PERSON, 1);
    EXPECT_NE(output.find("ERROR:0x00001002\n"), std::string::npos) << output;
    EXPECT_NE(output.find(port() + " is there and may be opened, but the system refuses: another "
                                   "user's program may hold it"),
              std::string::npos)
        << output;
}

// One that does not read takes nothing away.
TEST_F(HeldPort, MerelyOpenIsWrittenTo) {
    plugIn();
    const auto holder = hold("", 0);
    writeAndReadBack("500000", m_file.path(), m_image);
}

// One that reads takes what the board answers, before a program that has other work does.
TEST_F(HeldPort, ReadBySomebodyElseNamesTheReader) {
    plugIn();
    const auto reader = hold("print \"open\\n\"; while (1) { sysread(P, $b, 100); }", 0);
    const std::string output = outcomeFor(m_file.path(), 0, 1);
    EXPECT_NE(
        output.find(port() + " is also open in perl (process " + std::to_string(reader->pid()) +
                    "), which takes away what the board answers: close it and write again.\n"),
        std::string::npos)
        << output;
}

} // namespace
} // namespace flashwriter::kernel

// What else may stand where an image is expected, under whatever name. The command ends by itself,
// with the code that says what was wrong.
#include "tests/endtoend/write/WriteFixture.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;

const char* const NOT_FOUND = "ERROR:0x00003000\n";
const char* const READ_FAILED = "ERROR:0x00003003\n";
const char* const UNSUPPORTED = "ERROR:0x00003001\n";

class HostileFiles : public WriteFixture {
protected:
    HostileFiles() {
        EXPECT_NE(::mkdtemp(m_directory.data()), nullptr);
        m_options.pace = false;
        m_board.start(m_options);
        m_before = m_board.codeFlash();
    }
    ~HostileFiles() override { std::filesystem::remove_all(m_directory); }

    std::string in(const std::string& name) const { return m_directory + "/" + name; }

    void expectRefusal(const std::string& path, const std::string& code,
                       const std::string& advice = "") {
        SCOPED_TRACE(path);
        ChildProcess program(flashwrite("500000", path));
        EXPECT_EQ(program.wait(std::chrono::minutes(4)), 1);
        EXPECT_THAT(program.output(), HasSubstr(code));
        EXPECT_THAT(program.output(), HasSubstr(advice));
        EXPECT_TRUE(m_board.codeFlash() == m_before);
    }

    std::string m_directory = ::testing::TempDir() + "hostile-XXXXXX";
    Bytes m_before;
};

TEST_F(HostileFiles, ThatAreNone) {
    for (const std::string kind : {".bin", ".mot"}) {
        const std::string fifo = in("fifo" + kind);
        ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
        expectRefusal(fifo, READ_FAILED);
        ASSERT_TRUE(std::filesystem::create_directory(in("directory" + kind)));
        expectRefusal(in("directory" + kind), kind == ".bin" ? NOT_FOUND : READ_FAILED);
        for (const std::string name : {"zero", "random", "tty"}) {
            std::filesystem::create_symlink("/dev/" + name, in(name + kind));
            expectRefusal(in(name + kind), READ_FAILED);
        }
        std::filesystem::create_symlink(in("loop" + kind), in("loop" + kind));
        expectRefusal(in("loop" + kind), kind == ".bin" ? NOT_FOUND : READ_FAILED,
                      "leads back to itself");
        std::filesystem::create_symlink(in("nothing"), in("dangling" + kind));
        expectRefusal(in("dangling" + kind), kind == ".bin" ? NOT_FOUND : READ_FAILED);
    }
}

TEST_F(HostileFiles, ThatAreSockets) {
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    in("socket.bin").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expectRefusal(in("socket.bin"), READ_FAILED);
    ::close(listener);
}

// It calls itself regular, and cannot be read.
TEST_F(HostileFiles, OfTheKernel) {
    for (const std::string kind : {".bin", ".mot"}) {
        std::filesystem::create_symlink("/proc/self/mem", in("memory" + kind));
        expectRefusal(in("memory" + kind), READ_FAILED);
    }
}

// Nothing of it lies on the disk, nor must it come to lie in memory.
TEST_F(HostileFiles, OfManyGigabytes) {
    std::ofstream(in("large.bin")).close();
    std::filesystem::resize_file(in("large.bin"), std::uintmax_t{1} << 40U);
    expectRefusal(in("large.bin"), "ERROR:0x00003002\n");
    std::ofstream(in("large.mot")).close();
    std::filesystem::resize_file(in("large.mot"), std::uintmax_t{LARGE_RECORDS} + 1);
    expectRefusal(in("large.mot"), UNSUPPORTED);
    rusage used{};
    ASSERT_EQ(::getrusage(RUSAGE_CHILDREN, &used), 0);
    EXPECT_LT(used.ru_maxrss, MOST_MEMORY) << "KiB";
}

// A board's flash may begin at 128 MiB, too; this one's does not.
TEST_F(HostileFiles, ThatWereBuiltForAnotherDevice) {
    const std::string path = in("other.mot");
    std::ofstream(path) << "S30D080000000001020304050607CE\n";
    expectRefusal(path, "ERROR:0x00003005\n",
                  path + " has S-records that reach into data flash (0xF1000 and above), "
                         "which is never written: leave them out when building it.");
}

TEST_F(HostileFiles, ThatAreReplacedAllTheTime) {
    const std::array<Bytes, 2> images{patternImage(3000), Bytes(3000, 0xA5)};
    const std::string path = in("image.mot");
    std::atomic<bool> isOver{false};
    const auto put = [&](std::size_t which) {
        std::ofstream(in("next")) << motText(images.at(which));
        std::filesystem::rename(in("next"), path);
    };
    put(0);
    std::thread replacing([&] {
        for (std::size_t turn = 1; !isOver; turn = 1 - turn) {
            put(turn);
        }
    });
    for (int i = 0; i < 5; ++i) {
        ChildProcess program(flashwrite("500000", path));
        const bool succeeded = program.wait() == 0;
        const Bytes now = m_board.codeFlash();
        EXPECT_TRUE(succeeded) << program.output(); // a file that is open stays what it was
        EXPECT_TRUE(!succeeded || now == flashAfter(images[0], m_before) ||
                    now == flashAfter(images[1], m_before));
    }
    isOver = true;
    replacing.join();
}

const std::vector<std::string> HOSTILE_NAMES{
    "new\nline",
    "`touch x`",
    "$(touch x)",
    "a'b\"c;d&e|f>g<h*i?j",
    "\x1b[2J\x9b",
    "\xff\xfe",
    "-dash",
    " blank ",
    "%s%n%d",
    "\u202Enib",
    "\u009B31m",
    "caf\xc3\xa9 画像",
    std::string(200, 'x'),
};

TEST_F(HostileFiles, UnderHostileNames) {
    const Bytes image = patternImage(100);
    for (const std::string& name : HOSTILE_NAMES) {
        SCOPED_TRACE(name);
        const std::string path = in(name + ".bin");
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(image.data()), 100);
        ChildProcess program(flashwrite("500000", path));
        EXPECT_EQ(program.wait(), 0) << program.output();
        EXPECT_TRUE(m_board.codeFlash() == flashAfter(image, m_before));
    }
    EXPECT_FALSE(std::filesystem::exists("x"));
}

// Missing ones are named in the advice, which stays one line of printable text.
TEST_F(HostileFiles, ThatAreMissingUnderHostileNames) {
    for (const std::string& name : HOSTILE_NAMES) {
        SCOPED_TRACE(name);
        ChildProcess program(flashwrite("500000", in(name + ".bin")));
        EXPECT_EQ(program.wait(), 1);
        EXPECT_EQ(std::ranges::count(program.output(), '\n'), 7) << program.output();
        EXPECT_THAT(program.output(), HasSubstr(NOT_FOUND));
        for (const char* unwanted : {"\x1b", "\x9b", "\xff", "\u202E"}) {
            EXPECT_EQ(program.output().find(unwanted), std::string::npos) << program.output();
        }
    }
}

TEST_F(HostileFiles, ArePortsUnderHostileNames) {
    for (const std::string& name : HOSTILE_NAMES) {
        SCOPED_TRACE(name);
        ChildOptions options = flashwrite("500000", in("image.bin"));
        options.arguments[1] = in(name);
        std::ofstream(in(name)) << "precious";
        ChildProcess program(options);
        EXPECT_EQ(program.wait(), 1);
        EXPECT_THAT(program.output(), HasSubstr("ERROR:0x00001002\n"));
        EXPECT_EQ(std::ranges::count(program.output(), '\n'), 6) << program.output();
        EXPECT_THAT(program.output(), HasSubstr(" is not a serial port. "));
        EXPECT_EQ(contentOf(in(name)).size(), 8U);
    }
}

} // namespace
} // namespace flashwriter::testing

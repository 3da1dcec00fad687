// The virtual-board program and the preloaded library, each in a process of its own.

#include "board/VirtualBoard.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <sys/wait.h>

namespace flashwriter::board {
namespace {

// Runs a shell command to its end; its exit status, or -1.
int run(const std::string& command) {
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string preloadedClient(const std::string& port) {
    return std::string("LD_PRELOAD=" LINES_PRELOAD " ") + PRELOAD_CLIENT " " + port;
}

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// A started virtual-board program; what it says is read from its standard output.
class RunningProgram {
public:
    explicit RunningProgram(const std::string& options)
        : m_output(popen((std::string(VIRTUAL_BOARD) + " " + options).c_str(), "r")) {
        std::array<char, 256> line{};
        if (m_output != nullptr && std::fgets(line.data(), line.size(), m_output) != nullptr) {
            m_firstLine = line.data();
        }
    }
    ~RunningProgram() { wait(); }
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    const std::string& firstLine() const { return m_firstLine; }

    // Its exit status, once it has ended.
    int wait() {
        if (m_output == nullptr) {
            return -1;
        }
        const int status = pclose(m_output);
        m_output = nullptr;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    std::FILE* m_output;
    std::string m_firstLine;
};

class ProgramTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = std::filesystem::temp_directory_path() / "virtual-board-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        m_directory = name;
    }
    void TearDown() override { std::filesystem::remove_all(m_directory); }

    std::string path(const char* name) const { return m_directory / name; }

    std::filesystem::path m_directory;
};

TEST_F(ProgramTest, PreloadedLibraryBringsTheLinesToTheBoard) {
    VirtualBoard board;
    BoardOptions options;
    options.pace = false;
    board.start(options);
    EXPECT_EQ(run(preloadedClient(board.portPath())), 0);
    EXPECT_EQ(board.codeFlash()[1023], 0xA5);
    EXPECT_EQ(board.violations(), 0U);
}

TEST_F(ProgramTest, WithoutTheLibraryThereAreNoLines) {
    VirtualBoard board;
    board.start();
    EXPECT_EQ(run(std::string(PRELOAD_CLIENT) + " " + board.portPath()), 2);
}

TEST_F(ProgramTest, ServesOneSessionAndWritesItsFiles) {
    RunningProgram program("--once --strict --no-pace --flash-kib 32 --link " + path("port") +
                           " --flash-out " + path("flash") + " --data-flash-out " + path("data") +
                           " --transcript " + path("transcript"));
    EXPECT_EQ(program.firstLine().rfind("port /dev/pts/", 0), 0U) << program.firstLine();
    EXPECT_EQ(run(preloadedClient(path("port"))), 0);
    EXPECT_EQ(program.wait(), 0);
    const std::string flash = contentsOf(path("flash"));
    EXPECT_EQ(flash.substr(0, 1025), std::string(1024, '\xA5') + '\xFF');
    EXPECT_EQ(flash.size(), 32U * 1024);
    EXPECT_EQ(contentsOf(path("data")).size(), 4096U);
    EXPECT_NE(contentsOf(path("transcript")).find("< [02 01 06 F9 03] internal verify ACK\n"),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::is_symlink(path("port")));
}

TEST_F(ProgramTest, SaysSoWhenTheHostBrokeTheProtocol) {
    std::ofstream(path("contents")) << "not erased";
    RunningProgram program("--once --strict --no-pace --link " + path("port") + " --flash-in " +
                           path("contents") + " 2>/dev/null");
    EXPECT_EQ(run(preloadedClient(path("port"))), 6); // the verify failed
    EXPECT_EQ(program.wait(), 3);
}

TEST_F(ProgramTest, ReadsFaultsFromTheCommandLine) {
    RunningProgram program("--once --no-pace --fault silence@9 --fault status:0x1C@3 --link " +
                           path("port"));
    EXPECT_EQ(run(preloadedClient(path("port"))), 4);
    EXPECT_EQ(program.wait(), 0);
}

TEST_F(ProgramTest, RefusesWhatItCannotDo) {
    const std::string program = VIRTUAL_BOARD;
    EXPECT_EQ(run(program + " --flash-kib 8 >/dev/null 2>&1"), 2);
    EXPECT_EQ(run(program + " --fault sloth >/dev/null 2>&1"), 2);
    EXPECT_EQ(run(program + " --once --link /nowhere/port >/dev/null 2>&1"), 1);
    EXPECT_EQ(run(program + " --help >/dev/null"), 0);
}

TEST_F(ProgramTest, StopsOnASignalAndStillWritesItsFiles) {
    const std::string script = std::string(VIRTUAL_BOARD) + " --link " + path("port") +
                               " --flash-out " + path("flash") + " >/dev/null & board=$!; " +
                               "until [ -L " + path("port") + " ]; do sleep 0.01; done; " +
                               "kill -TERM $board; wait $board";
    EXPECT_EQ(run(script), 0);
    EXPECT_EQ(contentsOf(path("flash")).size(), 64U * 1024);
    EXPECT_FALSE(std::filesystem::is_symlink(path("port")));
}

} // namespace
} // namespace flashwriter::board

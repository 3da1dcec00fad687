#include "tests/endtoend/console/Flashwrite.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <sys/stat.h>

namespace flashwriter::testing {
namespace {

using ::testing::HasSubstr;

const char* const OPEN_ERROR_LOG = "## Write Failed\n"
                                   "The writing processing failed\n"
                                   "ERROR:0x00001002\n"
                                   "COM = 0x00, Retry = 0\n"
                                   "ST1 = 0x00, DST1 = 0x00, DST2 = 0x00\n";

class FlashwritePort : public ::testing::Test {
protected:
    FlashwritePort() { EXPECT_NE(::mkdtemp(directory.data()), nullptr); }
    ~FlashwritePort() override { std::filesystem::remove_all(directory); }

    // Runs to its end on a port that cannot be opened, and returns the line of advice.
    static std::string adviceFor(const std::string& port) {
        ChildProcess program(flashwrite({port, "115200", "image.bin"}));
        EXPECT_EQ(program.wait(), 1);
        EXPECT_TRUE(program.output().starts_with(OPEN_ERROR_LOG)) << program.output();
        return program.output().substr(std::string(OPEN_ERROR_LOG).size());
    }

    std::string directory = ::testing::TempDir() + "flashwrite-XXXXXX";
};

TEST_F(FlashwritePort, ThatIsNotThere) {
    const std::string advice = adviceFor("/dev/nowhere");
    EXPECT_TRUE(advice.starts_with("No such port: /dev/nowhere. ")) << advice;
    EXPECT_TRUE(advice.ends_with(".\n")) << advice;
}

TEST_F(FlashwritePort, ThatIsAFileIsNotWrittenTo) {
    const std::string file = directory + "/notes";
    std::ofstream(file) << "precious";
    EXPECT_THAT(adviceFor(file), HasSubstr(file + " is not a serial port. "));
    std::ifstream after(file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(after), {}), "precious");
}

TEST_F(FlashwritePort, ThatIsAFifoKeepsNobodyWaiting) {
    const std::string fifo = directory + "/fifo";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_THAT(adviceFor(fifo), HasSubstr(fifo + " is not a serial port. "));
}

TEST_F(FlashwritePort, ThatIsADirectory) {
    EXPECT_THAT(adviceFor(directory), HasSubstr(directory + " is not a serial port. "));
}

TEST_F(FlashwritePort, BehindWhichNobodyAnswers) {
    for (const char* speed : {"115200", "500,000"}) {
        const SilentPort port;
        ChildProcess program(flashwrite({port.path(), speed, "image.bin"}));
        EXPECT_EQ(program.wait(), 1);
        EXPECT_EQ(program.output(), SILENT_BOARD_LOG + neverAnswered(port.path()));
    }
}

TEST_F(FlashwritePort, ThatSomebodyElseReadsToo) {
    const SilentPort port;
    ChildOptions options;
    options.arguments = {"/bin/sh", "-c", "exec 7<\"$0\"; echo open; exec sleep 60", port.path()};
    ChildProcess reader(options);
    ASSERT_TRUE(reader.waitFor([&] { return reader.output() == "open\n"; }));
    ChildProcess program(flashwrite({port.path(), "115200", "image.bin"}));
    EXPECT_EQ(program.wait(), 1);
    EXPECT_EQ(program.output(),
              SILENT_BOARD_LOG + port.path() + " is also open in sleep (process " +
                  std::to_string(reader.pid()) +
                  "), which takes away what the board answers: close it and write "
                  "again.\n");
}

TEST_F(FlashwritePort, ThatGoesAwayMeanwhile) {
    auto port = std::make_unique<SilentPort>();
    const std::string path = port->path();
    ChildProcess program(flashwrite({path, "115200", "image.bin"}));
    ASSERT_TRUE(program.waitFor(
        [&] { return program.output().find("## Programming Mode") != std::string::npos; }));
    port.reset();
    EXPECT_EQ(program.wait(), 1);
    EXPECT_THAT(program.output(), HasSubstr(path + " has gone: the adapter came loose."));
}

} // namespace
} // namespace flashwriter::testing

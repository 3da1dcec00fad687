#include "targetfile/FileReader.h"

#include "tests/unit/targetfile/TempDir.h"

#include <cerrno>
#include <sys/stat.h>
#include <vector>

namespace flashwriter {
namespace {

TEST(FileReader, ReadsWhatIsAskedForFromAnyPlace) {
    const TempDir directory;
    const FileReader file(directory.write("digits", "0123456789"));
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.error(), 0);
    std::vector<std::uint8_t> bytes(4);
    ASSERT_EQ(file.readAt(3, bytes.data(), 4), 4);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "3456");
}

TEST(FileReader, ReadsFewerBytesOnlyAtTheEnd) {
    const TempDir directory;
    const FileReader file(directory.write("digits", "0123456789"));
    std::vector<std::uint8_t> bytes(16, 0xEE);
    EXPECT_EQ(file.readAt(8, bytes.data(), 16), 2);
    EXPECT_EQ(bytes[1], '9');
    EXPECT_EQ(bytes[2], 0xEE);
    EXPECT_EQ(file.readAt(10, bytes.data(), 16), 0);
    EXPECT_EQ(file.readAt(1000, bytes.data(), 16), 0);
}

TEST(FileReader, FollowsSymbolicLinks) {
    const TempDir directory;
    std::filesystem::create_symlink(directory.write("digits", "0123"), directory.path("link"));
    EXPECT_TRUE(FileReader(directory.path("link")).isOpen());
}

void expectRefusal(const std::string& path, int error) {
    const FileReader file(path);
    EXPECT_FALSE(file.isOpen()) << path;
    EXPECT_EQ(file.error(), error) << path;
    std::uint8_t byte = 0;
    EXPECT_EQ(file.readAt(0, &byte, 1), -1) << path;
    EXPECT_EQ(file.readAt(0, &byte, 0), -1) << path;
}

TEST(FileReader, SaysWhyItDidNotOpen) {
    const TempDir directory;
    expectRefusal("", ENOENT);
    expectRefusal(directory.path("missing"), ENOENT);
    expectRefusal(directory.write("file", "x") + "/below", ENOTDIR);
    expectRefusal(directory.path(""), EISDIR);
    expectRefusal("/dev/zero", EINVAL);
}

TEST(FileReader, NeverWaitsForTheOtherEndOfAFifo) {
    const TempDir directory;
    ASSERT_EQ(::mkfifo(directory.path("fifo").c_str(), 0600), 0);
    expectRefusal(directory.path("fifo"), EINVAL);
}

TEST(FileReader, TakesAPathWithANulForTheNameOfNothing) {
    const TempDir directory;
    const std::string path = directory.write("file", "x");
    expectRefusal(path + std::string(1, '\0') + ".bin", ENOENT);
}

} // namespace
} // namespace flashwriter

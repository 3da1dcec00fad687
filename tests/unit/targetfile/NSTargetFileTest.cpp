#include "targetfile/NSTargetFile.h"

#include "tests/unit/targetfile/OrdinaryUser.h"
#include "tests/unit/targetfile/TempDir.h"

#include <sys/stat.h>

namespace flashwriter {
namespace {

std::string program(const NSTargetFile& file) {
    const std::uint8_t* bytes = file.GetProgramMemory();
    return {bytes, bytes + file.GetProgramMemorySize()};
}

void expectEmpty(const NSTargetFile& file) {
    EXPECT_EQ(file.GetProgramMemory(), nullptr);
    EXPECT_EQ(file.GetProgramMemorySize(), 0U);
    EXPECT_EQ(file.GetDataFlash(), nullptr);
    EXPECT_EQ(file.GetDataSize(), 0U);
}

class TargetFile : public testing::Test {
protected:
    // Reads an image first, so that what a failure leaves behind can be seen.
    void load() { ASSERT_EQ(m_file.ReadFile(m_directory.write("earlier.bin", "earlier")), 0U); }

    TempDir m_directory;
    NSTargetFile m_file;
};

TEST_F(TargetFile, StartsEmpty) {
    expectEmpty(m_file);
    EXPECT_EQ(m_file.GetFileType(), 0U);
}

TEST_F(TargetFile, HoldsTheFileByteForByte) {
    std::string contents;
    for (int i = 0; i < 1000; ++i) {
        contents.push_back(static_cast<char>(i * 7));
    }
    ASSERT_EQ(m_file.ReadFile(m_directory.write("image.bin", contents)), RESULT_OK);
    EXPECT_EQ(program(m_file), contents);
    EXPECT_EQ(m_file.GetFileType(), 1U);
}

TEST_F(TargetFile, AcceptsTheExtensionInAnyCase) {
    for (const char* name : {"image.BIN", "image.Bin", "image.bin"}) {
        NSTargetFile file;
        EXPECT_EQ(file.ReadFile(m_directory.write(name, name)), RESULT_OK) << name;
        EXPECT_EQ(program(file), name);
        EXPECT_EQ(file.GetFileType(), 1U);
    }
}

TEST_F(TargetFile, RefusesOtherExtensionsAndNone) {
    for (const char* name : {"image.bin.txt", "image", ".bin", "image.", "image.mot"}) {
        load();
        EXPECT_EQ(m_file.GetFileType(), 1U);
        EXPECT_EQ(m_file.ReadFile(m_directory.write(name, "x")), RESULT_UNSUPPORTED_FORMAT) << name;
        EXPECT_EQ(m_file.GetFileType(), 0U);
        EXPECT_EQ(program(m_file), "earlier") << "a refused extension leaves the image";
    }
}

TEST_F(TargetFile, AcceptsExactly256KiB) {
    const std::string contents(262144, '\x5A');
    ASSERT_EQ(m_file.ReadFile(m_directory.write("image.bin", contents)), RESULT_OK);
    EXPECT_EQ(m_file.GetProgramMemorySize(), 262144U);
    EXPECT_EQ(program(m_file), contents);
}

TEST_F(TargetFile, RefusesOneByteMore) {
    load();
    const std::string path = m_directory.write("image.bin", std::string(262145, 'x'));
    EXPECT_EQ(m_file.ReadFile(path), RESULT_FILE_SIZE_ERROR);
    EXPECT_EQ(m_file.GetFileType(), 1U);
    expectEmpty(m_file);
}

TEST_F(TargetFile, RefusesAHugeFileWithoutReadingIt) {
    load();
    const std::string path = m_directory.write("image.bin", "x");
    std::filesystem::resize_file(path, std::uintmax_t{1} << 40U);
    EXPECT_EQ(m_file.ReadFile(path), RESULT_FILE_SIZE_ERROR);
    expectEmpty(m_file);
}

TEST_F(TargetFile, RefusesAnEmptyFile) {
    load();
    EXPECT_EQ(m_file.ReadFile(m_directory.write("image.bin", "")), RESULT_FILE_SIZE_ERROR);
    expectEmpty(m_file);
}

TEST_F(TargetFile, TakesADirectoryForNoFile) {
    std::filesystem::create_directory(m_directory.path("image.bin"));
    EXPECT_EQ(m_file.ReadFile(m_directory.path("image.bin")), RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(m_file.GetFileType(), 0U);
}

TEST_F(TargetFile, LeavesTheImageWhenTheFileIsMissing) {
    load();
    EXPECT_EQ(m_file.ReadFile(m_directory.path("missing.bin")), RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(m_file.ReadFile(m_directory.path("missing.txt")), RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(m_file.ReadFile(""), RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(m_file.ReadFile(m_directory.path("earlier.bin") + std::string(1, '\0') + ".bin"),
              RESULT_FILE_NOT_FOUND);
    EXPECT_EQ(program(m_file), "earlier");
    EXPECT_EQ(m_file.GetFileType(), 1U);
}

TEST_F(TargetFile, HasNoDataFlash) {
    load();
    EXPECT_EQ(m_file.GetDataFlash(), nullptr);
    EXPECT_EQ(m_file.GetDataSize(), 0U);
}

TEST_F(TargetFile, HoldsTheSecondOfTwoFiles) {
    ASSERT_EQ(m_file.ReadFile(m_directory.write("long.bin", std::string(5000, 'a'))), RESULT_OK);
    ASSERT_EQ(m_file.ReadFile(m_directory.write("short.bin", "second")), RESULT_OK);
    EXPECT_EQ(program(m_file), "second");
}

TEST_F(TargetFile, IsEmptyAfterAFileThatMayNotBeRead) {
    load();
    const std::string path = m_directory.write("image.bin", "x");
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    const OrdinaryUser user;
    EXPECT_EQ(m_file.ReadFile(path), RESULT_FILE_READ_FAILED);
    EXPECT_EQ(m_file.GetFileType(), 1U);
    expectEmpty(m_file);
}

TEST_F(TargetFile, NeverWaitsForAFifo) {
    load();
    ASSERT_EQ(::mkfifo(m_directory.path("fifo.bin").c_str(), 0600), 0);
    EXPECT_EQ(m_file.ReadFile(m_directory.path("fifo.bin")), RESULT_FILE_READ_FAILED);
    expectEmpty(m_file);
}

TEST_F(TargetFile, ReadsAFileOfAnyNameWhenAskedDirectly) {
    EXPECT_EQ(m_file.readFromBinFile(m_directory.write("image.txt", "text")), RESULT_OK);
    EXPECT_EQ(program(m_file), "text");
    EXPECT_EQ(m_file.GetFileType(), 0U);
    EXPECT_EQ(m_file.readFromBinFile(m_directory.path("missing")), RESULT_FILE_READ_FAILED);
    expectEmpty(m_file);
    load();
    EXPECT_EQ(m_file.readFromBinFile(m_directory.path("")), RESULT_FILE_READ_FAILED);
    expectEmpty(m_file);
}

TEST_F(TargetFile, IsEmptyAfterRelease) {
    load();
    m_file.releaseData();
    expectEmpty(m_file);
    EXPECT_EQ(m_file.GetFileType(), 1U);
    m_file.releaseData();
    expectEmpty(m_file);
}

} // namespace
} // namespace flashwriter

#include "advice/FailureFacts.h"

#include "serial/PortList.h"
#include "tests/support/Terminal.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace flashwriter {
namespace {

class FailureFactsTest : public ::testing::Test {
protected:
    std::string directory = ::testing::TempDir() + "facts-XXXXXX";
    _RESULTINFO result{};
    _CONTEXTINFO context{};

    FailureFactsTest() {
        EXPECT_NE(::mkdtemp(directory.data()), nullptr);
        context.pResultInfo = &result;
    }
    ~FailureFactsTest() override { std::filesystem::remove_all(directory); }

    void useFile(const std::string& name, const std::string& contents) {
        const std::string path = directory + "/" + name;
        std::ofstream(path) << contents;
        EXPECT_EQ(storePath(context.TargetFileInfo.FilePath, path), RESULT_OK);
    }
};

TEST_F(FailureFactsTest, DescribeThePortAndTheFileOfTheContext) {
    const testing::Terminal port;
    ASSERT_EQ(storePath(context.PortName, port.path()), RESULT_OK);
    context.BaudRate = 2;
    useFile("image.bin", "12345");
    const FailureFacts facts = failureFacts(context);
    EXPECT_EQ(facts.portPath, port.path());
    EXPECT_EQ(facts.port.state, PortState::Permitted);
    EXPECT_EQ(facts.speedIndex, 2);
    EXPECT_EQ(facts.filePath, directory + "/image.bin");
    EXPECT_EQ(facts.file.state, FileState::Readable);
    EXPECT_EQ(facts.file.size, 5U);
    EXPECT_EQ(facts.codeFlashSize, 0U);
}

TEST_F(FailureFactsTest, DescribeAPortWithoutAFile) {
    const testing::Terminal port;
    const FailureFacts facts = portFailureFacts(port.path());
    EXPECT_EQ(facts.portPath, port.path());
    EXPECT_EQ(facts.port.state, PortState::Permitted);
    EXPECT_EQ(facts.ports, portList());
    EXPECT_EQ(facts.filePath, "");
}

TEST_F(FailureFactsTest, KnowTheBoardsCodeFlashFromItsSignature) {
    context.SiliconSignature.CodeEndAddress[0] = 0xFF;
    context.SiliconSignature.CodeEndAddress[1] = 0xFF;
    context.SiliconSignature.CodeEndAddress[2] = 0x03;
    EXPECT_EQ(failureFacts(context).codeFlashSize, 0x40000U);
}

TEST_F(FailureFactsTest, MeasureTheCodeOfAnImageThatDidNotFit) {
    result.Result = RESULT_CODE_FLASH_SIZE_ERROR;
    useFile("image.bin", "12345");
    EXPECT_EQ(failureFacts(context).codeSize, 5U);
    useFile("image.mot", "S1051000AABB85\nS9030000FC\n"); // two bytes at 0x1000
    EXPECT_EQ(failureFacts(context).codeSize, 0x1002U);
    useFile("text.mot", "no S-records at all\n");
    EXPECT_EQ(failureFacts(context).codeSize, 0U);
}

TEST_F(FailureFactsTest, DoNotMeasureForAnyOtherFailure) {
    result.Result = RESULT_RECEIVE_TIMEOUT;
    useFile("image.mot", "S1051000AABB85\n");
    EXPECT_EQ(failureFacts(context).codeSize, 0U);
}

} // namespace
} // namespace flashwriter

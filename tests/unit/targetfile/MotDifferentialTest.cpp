// The reader against a second, plain one, on random files and with buffers that end everywhere.
#include "tests/unit/targetfile/MotFixture.h"
#include "tests/unit/targetfile/MotGenerator.h"
#include "tests/unit/targetfile/MotOutcome.h"
#include "tests/unit/targetfile/MotReference.h"

#include <map>

namespace flashwriter {
namespace {

class MotDifferential : public MotFixture {
protected:
    // Both passes by one step give what the reference gives.
    static void expectPasses(const std::string& path, const MotReference& expected,
                             std::size_t step) {
        const MotReference outcome = readByPasses(path, step);
        ASSERT_EQ(outcome.programExtent, expected.programExtent);
        ASSERT_EQ(outcome.dataExtent, expected.dataExtent);
        ASSERT_EQ(outcome.measured, expected.measured);
        ASSERT_EQ(outcome.filled, expected.filled);
        ASSERT_TRUE(outcome.program == expected.program);
        ASSERT_TRUE(outcome.data == expected.data);
    }

    void expectClass(const std::string& path, const MotReference& expected) {
        const ResultCode result =
            expected.measured != RESULT_OK ? expected.measured : expected.filled;
        ASSERT_EQ(m_file.ReadFile(path), result);
        if (result == RESULT_FILE_READ_FAILED) {
            expectEmpty();
            return;
        }
        ASSERT_EQ(m_file.GetProgramMemorySize(), expected.programExtent);
        ASSERT_EQ(m_file.GetDataSize(), expected.dataExtent);
        if (expected.measured == RESULT_OK) {
            ASSERT_TRUE(program() == expected.program);
            ASSERT_TRUE(data() == expected.data);
        }
    }
};

TEST_F(MotDifferential, ReadsRandomFilesAsTheReferenceDoes) {
    constexpr std::uint32_t files = 800;
    std::map<ResultCode, std::uint32_t> outcomes;
    // To run the same files again: --gtest_random_seed with the seed that a failure names.
    const int given = GTEST_FLAG_GET(random_seed);
    const std::uint32_t firstSeed =
        given != 0 ? static_cast<std::uint32_t>(given) : 1 + (std::random_device()() % 99000);
    for (std::uint32_t seed = firstSeed; seed != firstSeed + files; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        MotGenerator generator(seed);
        const std::string contents = generator.file();
        const MotReference expected = readMotReference(contents);
        ++outcomes[expected.measured != RESULT_OK ? expected.measured : expected.filled];
        const std::string path = write(contents);
        ASSERT_NO_FATAL_FAILURE(expectClass(path, expected));
        for (const std::uint32_t below : {10U, 100U, 6000U}) {
            const std::size_t step = 1 + generator.number(below);
            SCOPED_TRACE("by " + std::to_string(step));
            ASSERT_NO_FATAL_FAILURE(expectPasses(path, expected, step));
        }
    }
    // Files that all fail alike would compare nothing.
    EXPECT_EQ(outcomes.size(), 4U);
    for (const auto& [outcome, count] : outcomes) {
        RecordProperty("outcome" + std::to_string(outcome), static_cast<int>(count));
        EXPECT_GT(count, files / 200) << "of outcome " << outcome << " from seed " << firstSeed;
    }
}

TEST_F(MotDifferential, ReadsOneFileAlikeByEveryStep) {
    std::string contents = "\xEF\xBB\xBFS0 ヘッダー\r\n";
    for (std::uint32_t i = 0; i < 8; ++i) {
        contents += motLine(1 + static_cast<int>(i % 3), i * 16, counting(16)) + "\r\n\n";
    }
    contents += "S1090100A\xF0\x9F\x98\x80"
                "BBéCDDEE\nS0" +
                std::string(2500, 'x') + "\n" + motLine(1, 0x200, counting(252)) +
                std::string(2500, ' ') + "\n" + motLine(3, 0x300, counting(9));
    const std::string path = write(contents);
    const MotReference expected = readMotReference(contents);
    ASSERT_EQ(expected.filled, RESULT_OK);
    ASSERT_EQ(expected.programExtent, 0x309U);
    for (std::size_t step = 1; step <= contents.size() + 1; ++step) {
        SCOPED_TRACE("by " + std::to_string(step));
        ASSERT_NO_FATAL_FAILURE(expectPasses(path, expected, step));
    }
}

} // namespace
} // namespace flashwriter

#include "targetfile/MotLineReader.h"

#include "tests/unit/targetfile/TempDir.h"

#include <vector>

namespace flashwriter {
namespace {

// A line's characters as far as a test can see them: its hexadecimal value and whether it has more
// than eight of them.
struct Seen {
    std::uint32_t value = 0;
    bool isLong = false;
    bool operator==(const Seen&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Seen& seen) {
    return stream << std::hex << seen.value << (seen.isLong ? " and more" : "");
}

struct Text {
    std::vector<Seen> lines;
    bool isRead = false;
};

Text readAll(const std::string& path, std::size_t step) {
    MotLineReader reader(path, step);
    Text text;
    MotLine line;
    while (reader.next(line)) {
        text.lines.push_back({line.hex(0, 8), line.isLongerThan(8)});
    }
    text.isRead = reader.finish();
    EXPECT_FALSE(reader.next(line)) << "there is nothing after the end";
    EXPECT_EQ(reader.finish(), text.isRead);
    return text;
}

// The lines must be these at every place where a buffer can end.
void expectLines(const std::string& contents, const std::vector<Seen>& lines) {
    const TempDir directory;
    const std::string path = directory.write("text", contents);
    const std::size_t most = std::min<std::size_t>(contents.size() + 2, 200);
    for (std::size_t step = 1; step <= most; ++step) {
        const Text text = readAll(path, step);
        ASSERT_EQ(text.lines, lines) << "by " << step;
        ASSERT_TRUE(text.isRead) << "by " << step;
    }
}

void expectFailure(const std::string& contents) {
    const TempDir directory;
    const std::string path = directory.write("text", contents);
    for (std::size_t step = 1; step <= 100; ++step) {
        ASSERT_FALSE(readAll(path, step).isRead) << "by " << step;
    }
}

TEST(MotLineReader, SplitsAtLineFeedsOnly) {
    expectLines("12\n34\n56\n", {{0x12}, {0x34}, {0x56}});
    expectLines("12\r\n3\v4\n\n5\f\xE2\x80\xA8"
                "6\n",
                {{0x12}, {0x3}, {0}, {0x5}});
}

TEST(MotLineReader, TakesALastLineWithoutLineFeed) {
    expectLines("12\n34", {{0x12}, {0x34}});
    expectLines("12", {{0x12}});
    expectLines("", {});
    expectLines("\n", {{0}});
}

TEST(MotLineReader, SkipsAByteOrderMarkAtTheBeginningOnly) {
    expectLines("\xEF\xBB\xBF"
                "12\n34\n",
                {{0x12}, {0x34}});
    expectLines("12\n\xEF\xBB\xBF"
                "34\n",
                {{0x12}, {0}});
    expectLines("\xEF\xBB\xBF\xEF\xBB\xBF"
                "12",
                {{0}});
    expectLines("\xEF\xBB\xBF", {{0}});
}

TEST(MotLineReader, TakesControlCharactersForCharacters) {
    expectLines(std::string("1\0002\n\0003\n", 7), {{0x1}, {0}});
}

TEST(MotLineReader, KeepsTheWholeReachOfALongLine) {
    const TempDir directory;
    const std::string widest = "\xF0\x9F\x98\x80";
    std::string contents = "\xEF\xBB\xBF";
    for (std::size_t i = 0; i < MotLineReader::reach - 2; ++i) {
        contents += widest;
    }
    contents += "7F" + std::string(10000, '1') + "\n12\n";
    const std::string path = directory.write("text", contents);
    for (const std::size_t step : {1U, 2U, 3U, 100U, 2000U, 2050U, 2051U, 4000U, 100000U}) {
        MotLineReader reader(path, step);
        MotLine line;
        ASSERT_TRUE(reader.next(line));
        EXPECT_EQ(line.hex(MotLineReader::reach - 2, 2), 0x7FU) << "by " << step;
        ASSERT_TRUE(reader.next(line));
        EXPECT_EQ(line.hex(0, 8), 0x12U) << "by " << step;
        EXPECT_FALSE(reader.next(line));
        EXPECT_TRUE(reader.finish());
    }
}

TEST(MotLineReader, LendsOutALineThatNeverEndsOnce) {
    const std::string endless(20000, 'A');
    expectLines(endless, {{0xAAAAAAAA, true}});
    expectLines("12\n" + endless, {{0x12}, {0xAAAAAAAA, true}});
    expectLines(endless + "\n" + endless + "\n34",
                {{0xAAAAAAAA, true}, {0xAAAAAAAA, true}, {0x34}});
}

TEST(MotLineReader, FindsBadTextAnywhere) {
    expectFailure("\xFF");
    expectFailure("12\n34\n\xC3");
    expectFailure("12\n3\xC3\n4");
    expectFailure(std::string(10000, 'A') + "\xED\xA0\x80" + "\n12\n");
    expectFailure("\xEF\xBB");
    // A character cut short in what is passed over, with nothing but ASCII behind it.
    expectFailure(std::string(10000, 'A') + "\xC3" + std::string(200, 'A') + "\n12\n");
}

TEST(MotLineReader, JudgesTheTextBehindTheLastLineAskedFor) {
    const TempDir directory;
    const std::string many(5000, '\n');
    const std::string good = directory.write("good", "12\n" + many + "\xC3\xA9");
    const std::string bad = directory.write("bad", "12\n" + many + "\xC3\xC3");
    for (const std::size_t step : {1U, 7U, 4096U, 100000U}) {
        MotLine line;
        MotLineReader goodReader(good, step);
        EXPECT_TRUE(goodReader.next(line));
        EXPECT_TRUE(goodReader.finish());
        MotLineReader badReader(bad, step);
        badReader.next(line);
        EXPECT_FALSE(badReader.finish());
    }
}

TEST(MotLineReader, FailsWhereThereIsNoFile) {
    const TempDir directory;
    EXPECT_FALSE(readAll(directory.path("missing"), 100).isRead);
    EXPECT_FALSE(readAll(directory.path(""), 100).isRead);
}

TEST(MotLineReader, FailsWhenTheFileIsCutWhileItIsRead) {
    const TempDir directory;
    const std::string path = directory.write("text", "12\n" + std::string(1000, 'A'));
    MotLineReader reader(path, 100);
    MotLine line;
    ASSERT_TRUE(reader.next(line));
    std::filesystem::resize_file(path, 10);
    EXPECT_FALSE(reader.next(line));
    EXPECT_FALSE(reader.finish());
}

// Each piece may end anywhere: inside a line, a character, the byte order mark, a line end.
TEST(MotLineReader, ReadsTheSameLinesByEveryStep) {
    std::string contents = "\xEF\xBB\xBF";
    std::vector<Seen> lines;
    for (std::uint32_t i = 0; i < 40; ++i) {
        std::array<char, 16> digits{};
        std::snprintf(digits.data(), digits.size(), "%X", i);
        const std::string tail = i % 3 == 0 ? "é" : (i % 3 == 1 ? "\r" : "\xF0\x9F\x98\x80ー");
        contents += std::string(digits.data()) + tail + "\n";
        lines.push_back({i});
    }
    expectLines(contents, lines);
}

} // namespace
} // namespace flashwriter

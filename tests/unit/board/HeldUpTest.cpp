// How a hold-up of the machine is seen, by transcripts made up for it.
#include "tests/support/HeldUp.h"

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

using Kind = TranscriptRecord::Kind;

TranscriptRecord at(std::int64_t milliseconds, Kind kind, const std::string& meaning = "") {
    TranscriptRecord record;
    record.kind = kind;
    record.begin = record.due = milliseconds * 1000;
    record.meaning = meaning;
    return record;
}

TEST(HeldUp, IsAProgramThatComesLateAfterAnAnswer) {
    const Transcript late{at(0, Kind::reply), at(90, Kind::hostFrame)};
    EXPECT_TRUE(wasHeldUp(late, 0));
    const Transcript inTime{at(0, Kind::reply), at(70, Kind::hostFrame)};
    EXPECT_FALSE(wasHeldUp(inTime, 0));
    const Transcript boardIsLate{at(0, Kind::hostFrame), at(90, Kind::reply)};
    EXPECT_FALSE(wasHeldUp(boardIsLate, 0));
}

TEST(HeldUp, IsAProgramThatComesLateAfterTheReleaseOfReset) {
    const Transcript late{at(0, Kind::mode, "programming mode, zero byte due"),
                          at(10, Kind::line, "BREAK off"), at(90, Kind::unheard)};
    EXPECT_TRUE(wasHeldUp(late, 0));
}

// One of an earlier attempt does not excuse a later one.
TEST(HeldUp, CountsFromTheRecordThatIsGiven) {
    const Transcript twice{at(0, Kind::reply), at(200, Kind::hostFrame), at(210, Kind::reply),
                           at(220, Kind::hostFrame), at(1000, Kind::line)};
    EXPECT_TRUE(wasHeldUp(twice, 0));
    EXPECT_FALSE(wasHeldUp(twice, 2));
}

// What it says then is counted.
TEST(HeldUp, ExcusesOneWriteOfAProcess) {
    const Transcript late{at(0, Kind::reply), at(90, Kind::hostFrame)};
    const Transcript inTime{at(0, Kind::reply), at(70, Kind::hostFrame)};
    ::testing::internal::CaptureStdout();
    EXPECT_FALSE(isMadeAnew(inTime));
    EXPECT_TRUE(isMadeAnew(late));
    EXPECT_FALSE(isMadeAnew(late));
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              "A write is made anew because the machine was held up.\n");
}

} // namespace
} // namespace flashwriter::board

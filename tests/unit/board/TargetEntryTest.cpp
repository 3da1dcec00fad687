// How the target gets into programming mode, and how it does not.

#include "TargetDriver.h"

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

using namespace std::chrono_literals;

const Bytes kBaudRateSet{0x01, 0x03, 0x9A, 0x00, 0x21, 0x42, 0x03};

TargetOptions inverted() {
    TargetOptions options;
    options.invertedDtr = true;
    return options;
}

TEST(TargetEntry, RunsUntilDtrHoldsItInReset) {
    TargetDriver driver;
    EXPECT_EQ(driver.mode(), TargetMode::running);
    driver.target().setLines(true, false, 1ms);
    EXPECT_EQ(driver.mode(), TargetMode::inReset);
    driver.target().setLines(false, false, 2ms);
    EXPECT_EQ(driver.mode(), TargetMode::running);
}

TEST(TargetEntry, InvertedSenseIsInResetWithDtrOff) {
    TargetDriver driver(inverted());
    EXPECT_EQ(driver.mode(), TargetMode::inReset);
    driver.target().setLines(true, false, 1ms);
    EXPECT_EQ(driver.mode(), TargetMode::running);
}

TEST(TargetEntry, BreakAtTheReleaseOfResetEntersProgrammingMode) {
    TargetDriver driver;
    driver.enter();
    EXPECT_EQ(driver.mode(), TargetMode::awaitBaudRate);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
    EXPECT_EQ(driver.mode(), TargetMode::awaitReset);
    EXPECT_EQ(driver.send(kResetFrame), Replies{kAcknowledged});
    EXPECT_EQ(driver.mode(), TargetMode::ready);
    EXPECT_EQ(driver.violations(), 0);
}

TEST(TargetEntry, WorksInvertedOnlyWithInvertedLines) {
    TargetDriver driver(inverted());
    driver.enter(false);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{});
    driver.enter(true);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
}

TEST(TargetEntry, BreakThatEndsBeforeResetDoesNotCount) {
    TargetDriver driver;
    driver.target().setLines(true, true, 1ms);
    driver.target().setLines(true, false, 2ms);
    driver.target().setLines(false, false, 3ms);
    EXPECT_EQ(driver.mode(), TargetMode::running);
}

TEST(TargetEntry, AnswersUpToAHundredMillisecondsAfterTheRelease) {
    TargetDriver driver;
    driver.enter(); // the release was a millisecond ago
    driver.wait(99ms);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
}

TEST(TargetEntry, IsSilentAfterThatUntilTheNextReset) {
    TargetDriver driver;
    driver.enter();
    driver.wait(99ms + 1us);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{});
    EXPECT_EQ(driver.mode(), TargetMode::left);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{});
    driver.enter();
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
}

TEST(TargetEntry, NeedsTheZeroByteExactlyOnce) {
    TargetDriver driver;
    driver.target().setLines(true, true, 0ms);
    driver.target().setLines(false, true, 0ms);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{});
    EXPECT_EQ(driver.violations(), 1);
    driver.enter();
    EXPECT_EQ(driver.violations(), 1);
    driver.send({0x00});
    EXPECT_EQ(driver.violations(), 2);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
}

TEST(TargetEntry, HearsNothingElseBeforeBaudRateSet) {
    TargetDriver driver;
    driver.enter();
    EXPECT_EQ(driver.send(kResetFrame), Replies{});
    EXPECT_EQ(driver.violations(), 1);
}

TEST(TargetEntry, WantsResetBeforeAnythingElse) {
    TargetDriver driver;
    driver.enter();
    driver.send(kBaudRateSet);
    EXPECT_EQ(driver.send(commandFrame({0xC0})), Replies{statusFrame(0x04)});
    EXPECT_EQ(driver.violations(), 1);
    EXPECT_EQ(driver.send(kResetFrame), Replies{kAcknowledged});
}

TEST(TargetEntry, RefusesASpeedOrVoltageThatItDoesNotHave) {
    TargetDriver driver;
    driver.enter();
    EXPECT_EQ(driver.send(commandFrame({0x9A, 4, 33})), Replies{statusFrame(0x05)});
    EXPECT_EQ(driver.send(commandFrame({0x9A, 0, 17})), Replies{statusFrame(0x05)});
    EXPECT_EQ(driver.send(commandFrame({0x9A, 0, 56})), Replies{statusFrame(0x05)});
    EXPECT_EQ(driver.violations(), 3);
}

TEST(TargetEntry, SwitchesTheSpeedAfterItsAnswer) {
    TargetDriver driver;
    driver.enter();
    for (const std::uint8_t byte : commandFrame({0x9A, 2, 33})) {
        driver.target().receive({.value = byte, .begin = driver.now(), .end = driver.now()});
    }
    std::uint32_t answeredAt = 0;
    for (const TargetEvent& event : driver.target().takeEvents()) {
        answeredAt = event.kind == TargetEvent::Kind::reply ? event.bitsPerSecond : answeredAt;
    }
    EXPECT_EQ(answeredAt, 115200U);
    EXPECT_EQ(driver.target().bitsPerSecond(), 500000U);
}

TEST(TargetEntry, CanAnswerWithTheDataOfTheCommand) {
    TargetOptions options;
    options.baudRateReplyWithData = true;
    TargetDriver driver(options);
    driver.enter();
    EXPECT_EQ(driver.send(commandFrame({0x9A, 2, 0x21})),
              (Replies{{0x02, 0x03, 0x06, 0x02, 0x21, 0xD4, 0x03}}));
}

TEST(TargetEntry, SlowEntryHearsTheCommandOnlyLater) {
    TargetOptions options;
    options.slowEntries = {{.n = 1, .time = 150ms}};
    TargetDriver driver(options);
    driver.enter();
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{});
    driver.wait(300ms);
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
    driver.enter(); // the second entry is as quick as any
    EXPECT_EQ(driver.send(kBaudRateSet), Replies{kAcknowledged});
    EXPECT_EQ(driver.violations(), 0);
}

TEST(TargetEntry, TakesNoNoticeOfBytesWhileRunningOrInReset) {
    TargetDriver driver;
    EXPECT_EQ(driver.send(kResetFrame), Replies{});
    driver.target().setLines(true, false, driver.now());
    EXPECT_EQ(driver.send(kResetFrame), Replies{});
    EXPECT_EQ(driver.violations(), 0);
}

TEST(TargetEntry, RunningProgramSpeaksAgainAndAgain) {
    TargetOptions options;
    options.monitor = {.text = "hi", .interval = 10ms, .bitsPerSecond = 9600};
    TargetDriver driver(options);
    EXPECT_EQ(driver.target().nextDeadline(), BoardTime(0));
    driver.target().advance(0ms);
    EXPECT_EQ(driver.target().nextDeadline(), BoardTime(10ms));
    driver.target().advance(10ms);
    const auto events = driver.target().takeEvents();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[1].bytes, (Bytes{'h', 'i'}));
    EXPECT_EQ(events[1].bitsPerSecond, 9600U);
    driver.target().setLines(true, false, 11ms);
    EXPECT_FALSE(driver.target().nextDeadline());
}

} // namespace
} // namespace flashwriter::board

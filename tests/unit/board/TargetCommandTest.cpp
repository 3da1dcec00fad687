// What the target answers to each command, frames worked out by hand.

#include "TargetDriver.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace flashwriter::board {
namespace {

using namespace std::chrono_literals;

TargetOptions filledWith(std::uint8_t byte) {
    TargetOptions options;
    options.flash.fill = byte;
    return options;
}

Bytes rangeFrame(std::uint8_t command, std::uint32_t first, std::uint32_t last) {
    return commandFrame(withAddress(withAddress({command}, first), last));
}

TEST(TargetCommands, SignatureTellsNameAndEndAddresses) {
    TargetDriver driver;
    driver.connect();
    const Replies replies = driver.send({0x01, 0x01, 0xC0, 0x3F, 0x03});
    ASSERT_EQ(replies.size(), 2U);
    EXPECT_EQ(replies[0], kAcknowledged);
    const Bytes data{0x10, 0x00, 0x06,                                       // device code
                     'B',  'O',  'A',  'R',  'D',  '-',  '6', '4', 'K', ' ', // name
                     0xFF, 0xFF, 0x00, 0xFF, 0x1F, 0x0F,                     // 0x00FFFF, 0x0F1FFF
                     3,    0,    3};
    ASSERT_EQ(replies[1].size(), 26U);
    EXPECT_EQ(replies[1][1], 22);
    EXPECT_TRUE(std::equal(data.begin(), data.end(), replies[1].begin() + 2));
    unsigned sum = 0;
    std::for_each(replies[1].begin() + 1, replies[1].end() - 1, [&](unsigned b) { sum += b; });
    EXPECT_EQ(sum & 0xFFU, 0U);
    EXPECT_EQ(replies[1].back(), 0x03);
}

TEST(TargetCommands, NoDataFlashIsSaidByAddressZero) {
    TargetOptions options;
    options.flash.dataKib = 0;
    options.flash.codeKib = 256;
    TargetDriver driver(options);
    driver.connect();
    const Bytes data = driver.send({0x01, 0x01, 0xC0, 0x3F, 0x03}).at(1);
    EXPECT_EQ(Bytes(data.begin() + 15, data.begin() + 21), (Bytes{0xFF, 0xFF, 0x03, 0, 0, 0}));
}

TEST(TargetCommands, SecurityDataAsConfigured) {
    TargetOptions options;
    options.security = {1, 2, 3, 4, 5, 6, 7, 8};
    TargetDriver driver(options);
    driver.connect();
    EXPECT_EQ(driver.send({0x01, 0x01, 0xA1, 0x5E, 0x03}),
              (Replies{kAcknowledged, {0x02, 8, 1, 2, 3, 4, 5, 6, 7, 8, 0xD4, 0x03}}));
}

TEST(TargetCommands, BlankCheckAndEraseOfABlock) {
    TargetDriver driver(filledWith(0x00));
    driver.connect();
    const Bytes blankCheck{0x01, 0x08, 0x32, 0x00, 0x04, 0x00, 0xFF, 0x07, 0x00, 0x00, 0xBC, 0x03};
    EXPECT_EQ(driver.send(blankCheck), Replies{statusFrame(0x1B)});
    EXPECT_EQ(driver.send({0x01, 0x04, 0x22, 0x00, 0x04, 0x00, 0xD6, 0x03}),
              Replies{kAcknowledged});
    EXPECT_EQ(driver.send(blankCheck), Replies{kAcknowledged});
    EXPECT_EQ(driver.target().flash().code()[0x3FF], 0x00);
    EXPECT_EQ(driver.target().flash().code()[0x400], 0xFF);
    EXPECT_EQ(driver.target().flash().code()[0x7FF], 0xFF);
    EXPECT_EQ(driver.target().flash().code()[0x800], 0x00);
    EXPECT_EQ(driver.violations(), 0);
}

TEST(TargetCommands, DataFlashHasBlocksToo) {
    TargetDriver driver(filledWith(0x00));
    driver.connect();
    EXPECT_EQ(driver.send(commandFrame(withAddress({0x22}, 0xF1C00))), Replies{kAcknowledged});
    EXPECT_EQ(driver.target().flash().data()[0xC00], 0xFF);
    EXPECT_EQ(driver.target().flash().data()[0xBFF], 0x00);
    EXPECT_EQ(driver.send(commandFrame(withAddress({0x22}, 0xF2000))), Replies{statusFrame(0x05)});
}

TEST(TargetCommands, ChecksumIsOverWhatTheFlashHolds) {
    TargetOptions options;
    options.flash.codeContents = {0x01, 0x02};
    TargetDriver driver(options);
    driver.connect();
    // 1022 cells of 0xFF and 3: 0x3FA05; 0x10000 - 0xFA05 = 0x05FB, low byte first.
    EXPECT_EQ(driver.send({0x01, 0x07, 0xB0, 0, 0, 0, 0xFF, 0x03, 0, 0x47, 0x03}),
              (Replies{kAcknowledged, {0x02, 0x02, 0xFB, 0x05, 0xFE, 0x03}}));
}

TEST(TargetCommands, RefusesRangesThatAreNotWholeBlocksOfItsFlash) {
    TargetDriver driver;
    driver.connect();
    const std::pair<std::uint32_t, std::uint32_t> ranges[] = {
        {0x000001, 0x0003FF},                       // does not begin with a block
        {0x000000, 0x0003FE},                       // does not end with one
        {0x000400, 0x0003FF},                       // ends before it begins
        {0x00FC00, 0x0103FF},                       // leaves code flash
        {0x000000, 0xFFFFFF}, {0x0F0C00, 0x0F13FF}, // begins below data flash
    };
    int refused = 0;
    for (const auto& [first, last] : ranges) {
        for (const std::uint8_t command : Bytes{0x40, 0xB0}) {
            EXPECT_EQ(driver.send(rangeFrame(command, first, last)), Replies{statusFrame(0x05)});
            EXPECT_EQ(driver.violations(), ++refused);
        }
    }
    EXPECT_EQ(driver.mode(), TargetMode::ready);
}

TEST(TargetCommands, RefusesABlankCheckWithAnotherMode) {
    TargetDriver driver;
    driver.connect();
    Bytes bytes = withAddress(withAddress({0x32}, 0), 0x3FF);
    bytes.push_back(1);
    EXPECT_EQ(driver.send(commandFrame(bytes)), Replies{statusFrame(0x05)});
}

TEST(TargetCommands, RefusesWhatIsMalformed) {
    TargetDriver driver;
    driver.connect();
    EXPECT_EQ(driver.send({0x01, 0x01, 0x00, 0xFE, 0x03}), Replies{statusFrame(0x07)});
    EXPECT_EQ(driver.send({0x01, 0x01, 0x00, 0xFF, 0x17}), Replies{statusFrame(0x15)});
    EXPECT_EQ(driver.send({0x01, 0x02, 0x00, 0x00, 0xFE, 0x03}), Replies{statusFrame(0x05)});
    EXPECT_EQ(driver.send({0x01, 0x00, 0x00, 0x03}), Replies{statusFrame(0x05)});
    EXPECT_EQ(driver.send(commandFrame({0x13})), Replies{statusFrame(0x04)});
    EXPECT_EQ(driver.send(dataFrame(Bytes(256), true)), Replies{statusFrame(0x15)});
    EXPECT_EQ(driver.violations(), 6);
    EXPECT_EQ(driver.send(kResetFrame), Replies{kAcknowledged});
    EXPECT_EQ(driver.violations(), 6);
}

TEST(TargetCommands, ASecondBaudRateSetIsRefused) {
    TargetDriver driver;
    driver.connect();
    EXPECT_EQ(driver.send(commandFrame({0x9A, 0, 33})), Replies{statusFrame(0x04)});
    EXPECT_EQ(driver.violations(), 1);
}

TEST(TargetCommands, AFrameThatStopsShortIsForgottenAfterAWhile) {
    TargetDriver driver;
    driver.connect();
    EXPECT_EQ(driver.send({0x01, 0x07, 0xB0}), Replies{});
    driver.wait(101ms);
    EXPECT_EQ(driver.send(kResetFrame), Replies{kAcknowledged});
    EXPECT_EQ(driver.violations(), 1);
}

TEST(TargetCommands, StrayBytesAreCounted) {
    TargetDriver driver;
    driver.connect();
    driver.send({0x55, 0xAA});
    EXPECT_EQ(driver.violations(), 1); // one run of them
    EXPECT_EQ(driver.send(kResetFrame), Replies{kAcknowledged});
}

TEST(TargetCommands, NoiseIsNoFrameAndNoViolation) {
    TargetDriver driver;
    driver.connect();
    EXPECT_EQ(driver.send(kResetFrame, Reception::wrongSpeed), Replies{});
    EXPECT_EQ(driver.violations(), 0);
    EXPECT_EQ(driver.send(kResetFrame, Reception::inBreak), Replies{});
    EXPECT_EQ(driver.violations(), 1);
    EXPECT_EQ(driver.send(kResetFrame, Reception::collision), Replies{});
    EXPECT_EQ(driver.violations(), 2);
}

TEST(TargetCommands, WorkTakesItsTimeAndHearsNothingMeanwhile) {
    TargetOptions options;
    options.eraseTime = 20ms;
    options.commandTime = 1ms;
    TargetDriver driver(options);
    driver.connect();
    const BoardTime before = driver.now();
    driver.send(commandFrame(withAddress({0x22}, 0)));
    EXPECT_EQ(driver.took(), BoardTime(21ms));
    for (const std::uint8_t byte : kResetFrame) {
        const BoardTime meanwhile = before + 10ms;
        driver.target().receive({.value = byte, .begin = meanwhile, .end = meanwhile});
    }
    const auto events = driver.target().takeEvents();
    ASSERT_EQ(events.size(), 1U);
    EXPECT_TRUE(events[0].violation);
    EXPECT_EQ(events[0].bytes, kResetFrame);
}

} // namespace
} // namespace flashwriter::board

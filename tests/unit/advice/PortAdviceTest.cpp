#include "tests/unit/advice/AdviceFixture.h"

#include <gmock/gmock.h>

#include <cerrno>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

std::string openAdvice(const FailureFacts& facts) {
    return advice(RESULT_PORT_OPEN_ERROR, facts);
}

TEST(PortAdvice, AMissingPortIsNamedBesideThoseThereAre) {
    FailureFacts facts = goodFacts();
    facts.portPath = "/dev/ttyUSB7";
    facts.port = {};
    EXPECT_EQ(openAdvice(facts), "No such port: /dev/ttyUSB7. Ports here: /dev/ttyACM0, "
                                 "/dev/ttyUSB0.");
    facts.ports.clear();
    EXPECT_EQ(openAdvice(facts),
              "No such port: /dev/ttyUSB7. No USB-serial adapter is to be seen: plug it in.");
}

TEST(PortAdvice, NoPathIsNoPortThatWasChosen) {
    FailureFacts facts = goodFacts();
    facts.portPath = "";
    facts.port = {};
    EXPECT_EQ(openAdvice(facts), "No port is chosen. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
}

TEST(PortAdvice, APathThatMayNotBeFollowedSaysWhy) {
    FailureFacts facts = goodFacts();
    facts.port.state = PortState::Hidden;
    facts.port.error = EACCES;
    EXPECT_EQ(openAdvice(facts), "/dev/ttyUSB0 cannot be looked at: Permission denied. Check the "
                                 "path, and who may pass the directories in it.");
}

TEST(PortAdvice, WhatIsNoPortIsCalledThat) {
    FailureFacts facts = goodFacts();
    facts.portPath = "image.bin";
    facts.port.state = PortState::NotPort;
    EXPECT_EQ(openAdvice(facts),
              "image.bin is not a serial port. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
}

TEST(PortAdvice, AStrangerIsToldHowToJoinTheGroup) {
    FailureFacts facts = goodFacts();
    facts.port.state = PortState::Refused;
    facts.port.membership = GroupMembership::None;
    EXPECT_EQ(openAdvice(facts),
              "/dev/ttyUSB0 belongs to group dialout and ada is not in it: run \"sudo usermod -aG "
              "dialout ada\" and log in again.");
}

TEST(PortAdvice, AMemberOfTomorrowIsToldToLogInAgain) {
    FailureFacts facts = goodFacts();
    facts.port.state = PortState::Refused;
    facts.port.membership = GroupMembership::NextLogin;
    EXPECT_EQ(openAdvice(facts),
              "/dev/ttyUSB0 belongs to group dialout, which ada has joined since "
              "this session began: log out and in again.");
}

TEST(PortAdvice, NobodyIsSentIntoAGroupThatWouldNotHelp) {
    FailureFacts facts = goodFacts();
    facts.port.state = PortState::Refused;
    const std::string wanted = "/dev/ttyUSB0 may not be opened by ada, and its group would not "
                               "help: have its permissions changed, for example by a udev rule.";
    EXPECT_EQ(openAdvice(facts), wanted) << "in the group already";
    facts.port.groupMayUse = false;
    facts.port.membership = GroupMembership::None;
    EXPECT_EQ(openAdvice(facts), wanted) << "not a group that may";
}

TEST(PortAdvice, WhoHoldsThePortIsNamed) {
    FailureFacts facts = goodFacts();
    facts.port.holders = {{812, "screen"}};
    EXPECT_EQ(openAdvice(facts), "/dev/ttyUSB0 is held by screen (process 812): close it first.");
    facts.port.holders = {{812, "screen"}, {901, ""}};
    EXPECT_THAT(openAdvice(facts), HasSubstr("screen (process 812), process 901: close"));
    facts.port.holders = {{1, "a"}, {2, "b"}, {3, "c"}, {4, "d"}, {5, "e"}};
    EXPECT_THAT(openAdvice(facts),
                HasSubstr("a (process 1), b (process 2), c (process 3) and 2 more: close"));
}

TEST(PortAdvice, ARefusalWithoutAReasonClaimsNone) {
    EXPECT_EQ(openAdvice(goodFacts()),
              "/dev/ttyUSB0 is there and may be opened, but the system refuses: another user's "
              "program may hold it, or the adapter is stuck. Close that program, or plug the "
              "adapter in again.");
}

TEST(PortAdvice, TheOtherPortCodesHaveTheirOwn) {
    EXPECT_EQ(advice(RESULT_PORT_INFO_FAILED, goodFacts()),
              "The system did not tell which serial ports it has. Ports here: /dev/ttyACM0, "
              "/dev/ttyUSB0.");
    EXPECT_EQ(advice(RESULT_PORT_NOT_SELECTED, goodFacts()),
              "No port is chosen. Ports here: /dev/ttyACM0, /dev/ttyUSB0.");
}

TEST(PortAdvice, NamesCannotSteerTheTerminal) {
    FailureFacts facts = goodFacts();
    facts.port.holders = {{812, "\x1b[2J\nroot# "}};
    EXPECT_EQ(openAdvice(facts), "/dev/ttyUSB0 is held by ?[2J?root#  (process 812): close it "
                                 "first.");
}

} // namespace
} // namespace flashwriter

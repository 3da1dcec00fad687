#include "advice/MonitorAdvice.h"

#include "tests/unit/advice/AdviceFixture.h"

#include <gmock/gmock.h>

#include <set>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string speedAdvice(const std::string& text, const FailureFacts& facts = goodFacts()) {
    return monitorAdvice(RESULT_BAUD_RATE_CHANGE_FAILED, text, facts);
}

std::string dtrAdvice(const FailureFacts& facts) {
    return monitorAdvice(RESULT_SEND_FAILED, "9600", facts);
}

FailureFacts factsOf(PortState state) {
    FailureFacts facts = goodFacts();
    facts.port.state = state;
    return facts;
}

TEST(MonitorAdvice, AnUnusableSpeedIsToldWhatIsAllowed) {
    for (const std::string text : {"9600 bps", "109", "921601", "115,200", "-9600"}) {
        EXPECT_EQ(speedAdvice(text), "\"" + text +
                                         "\" is no speed for the monitor: type a number from 110 "
                                         "to 921600, in digits only.");
    }
    EXPECT_EQ(speedAdvice(""),
              "The monitor has no speed: type a number from 110 to 921600, in digits only.");
}

TEST(MonitorAdvice, ASpeedThatThePortDoesNotKnowHasOthers) {
    for (const std::string text : {"110", "250000", "921600"}) {
        EXPECT_EQ(speedAdvice(text),
                  "/dev/ttyUSB0 cannot be set to " + text +
                      " bits per second: choose another speed, such as 115200 or 9600.");
    }
}

TEST(MonitorAdvice, APortWithoutModemLinesRefusesDtr) {
    EXPECT_EQ(dtrAdvice(goodFacts()),
              "/dev/ttyUSB0 refuses to set DTR: it has no modem lines, or was unplugged in "
              "between. Check that it is the board's adapter, and plug it in again.");
}

TEST(MonitorAdvice, APortThatHasGoneExplainsWhatItRefused) {
    const std::string gone =
        "/dev/ttyUSB0 has gone: the adapter came loose. Plug it in and open the monitor again.";
    EXPECT_EQ(speedAdvice("9600", factsOf(PortState::Missing)), gone);
    EXPECT_EQ(dtrAdvice(factsOf(PortState::Missing)), gone);
    EXPECT_THAT(speedAdvice("9600 bps", factsOf(PortState::Missing)), HasSubstr("in digits only"));
}

TEST(MonitorAdvice, WhatIsNoPortExplainsWhatItRefused) {
    const std::string other =
        "/dev/ttyUSB0 is not a serial port. Ports here: /dev/ttyACM0, /dev/ttyUSB0.";
    EXPECT_EQ(speedAdvice("9600", factsOf(PortState::NotPort)), other);
    EXPECT_EQ(dtrAdvice(factsOf(PortState::NotPort)), other);
}

TEST(MonitorAdvice, APortThatCannotBeHadIsTheSameAsForAWrite) {
    for (const ResultCode code : {RESULT_PORT_NOT_SELECTED, RESULT_PORT_OPEN_ERROR}) {
        for (const PortState state : {PortState::Missing, PortState::Refused}) {
            const FailureFacts facts = factsOf(state);
            EXPECT_EQ(monitorAdvice(code, "9600", facts), advice(code, facts)) << code;
        }
    }
}

TEST(MonitorAdvice, APathThatIsTooLongIsMeasured) {
    FailureFacts facts = goodFacts();
    facts.portPath = std::string(260, 'x');
    EXPECT_EQ(monitorAdvice(RESULT_PARAMETER_ERROR, "9600", facts),
              "The path of the port has 260 bytes, and at most 259 fit: use a shorter one, such as "
              "that of a link to it.");
    facts.portPath.pop_back();
    EXPECT_THAT(monitorAdvice(RESULT_PARAMETER_ERROR, "9600", facts), HasSubstr("no explanation"));
}

TEST(MonitorAdvice, EveryCodeHasASentenceOfItsOwn) {
    FailureFacts facts = goodFacts();
    facts.portPath = std::string(260, 'x');
    const std::set<ResultCode> codes{RESULT_PORT_NOT_SELECTED,      RESULT_PORT_OPEN_ERROR,
                                     RESULT_MONITOR_TIMER_FAILED,   RESULT_INIT_FAILED,
                                     RESULT_PARAMETER_ERROR,        RESULT_SEND_FAILED,
                                     RESULT_BAUD_RATE_CHANGE_FAILED};
    std::set<std::string> texts;
    for (const ResultCode code : codes) {
        const std::string text = monitorAdvice(code, "9600", facts);
        EXPECT_THAT(text, Not(HasSubstr("no explanation"))) << code;
        EXPECT_THAT(text, Not(HasSubstr("write"))) << code;
        EXPECT_TRUE(text.ends_with('.')) << text;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), codes.size());
}

TEST(MonitorAdvice, WithoutFactsOnlyWhatNeedsNoneIsSaid) {
    for (const ResultCode code : {RESULT_MONITOR_TIMER_FAILED, RESULT_INIT_FAILED}) {
        EXPECT_EQ(monitorAdvice(code, "9600"), monitorAdvice(code, "9600", goodFacts()));
        EXPECT_THAT(monitorAdvice(code, "9600"), HasSubstr("close other programs"));
    }
    EXPECT_EQ(monitorAdvice(RESULT_BAUD_RATE_CHANGE_FAILED, "fast"), speedAdvice("fast"));
    for (const ResultCode code :
         {RESULT_OK, RESULT_PORT_NOT_SELECTED, RESULT_PORT_OPEN_ERROR, RESULT_PARAMETER_ERROR,
          RESULT_SEND_FAILED, RESULT_BAUD_RATE_CHANGE_FAILED, ResultCode{0x1003}}) {
        EXPECT_EQ(monitorAdvice(code, "9600"), "") << code;
    }
}

TEST(MonitorAdvice, UnknownCodesSendToTheDiagnostics) {
    EXPECT_THAT(monitorAdvice(0x1003, "9600", goodFacts()),
                HasSubstr("Result 0x00001003 has no explanation here"));
}

TEST(MonitorAdvice, WhatWasTypedIsMadeHarmless) {
    EXPECT_THAT(speedAdvice("96\n00"), HasSubstr("\"96?00\" is no speed"));
}

TEST(MonitorAdvice, SuccessNeedsNone) {
    EXPECT_EQ(monitorAdvice(RESULT_OK, "9600", goodFacts()), "");
}

} // namespace
} // namespace flashwriter

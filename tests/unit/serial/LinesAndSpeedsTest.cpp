#include "sequence/context/DiagnosticLog.h"
#include "serial/NSSerialPortProcessor.h"
#include "tests/support/Eventually.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialRequests.h"

#include <gtest/gtest.h>

#include <sys/ioctl.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#define termios kernel_termios
#include <asm/termbits.h>
#undef termios

namespace flashwriter {
namespace {

using testing::PseudoTerminal;
using testing::SerialRequests;
using Made = std::vector<std::pair<unsigned long, std::int64_t>>;

std::string lastLine;

class LinesAndSpeeds : public ::testing::Test {
protected:
    void SetUp() override {
        m_terminal.makeRaw();
        ASSERT_EQ(m_port.Open(m_terminal.portPath()), RESULT_OK);
        // The receive thread begins by discarding what is pending.
        ASSERT_TRUE(testing::eventually([this] { return m_requests.discards == 1; }));
    }

    speed_t speed() const {
        termios2 attributes{};
        EXPECT_EQ(::ioctl(m_terminal.master(), TCGETS2, &attributes), 0);
        EXPECT_EQ(attributes.c_ispeed, attributes.c_ospeed);
        return attributes.c_ospeed;
    }

    SerialRequests m_requests;
    PseudoTerminal m_terminal;
    NSSerialPortProcessor m_port;
};

TEST_F(LinesAndSpeeds, SetDtrAddsDtrToTheLinesAsRead) {
    m_requests.plan = {{TIOCMGET, 0}, {TIOCMSET, 0}};
    m_requests.modemLines = TIOCM_RTS | TIOCM_CTS;
    EXPECT_EQ(m_port.SetDtr(), RESULT_OK);
    EXPECT_EQ(m_requests.made,
              (Made{{TIOCMGET, 0}, {TIOCMSET, TIOCM_RTS | TIOCM_CTS | TIOCM_DTR}}));
}

TEST_F(LinesAndSpeeds, ClearDtrRestoresTheOtherLinesWithoutReadingThemAgain) {
    m_requests.plan = {{TIOCMGET, 0}, {TIOCMSET, 0}};
    m_requests.modemLines = TIOCM_RTS | TIOCM_DTR;
    ASSERT_EQ(m_port.SetDtr(), RESULT_OK);
    m_requests.made.clear();
    m_requests.modemLines = 0;
    EXPECT_EQ(m_port.ClearDtr(), RESULT_OK);
    EXPECT_EQ(m_requests.made, (Made{{TIOCMSET, TIOCM_RTS}}));
}

TEST_F(LinesAndSpeeds, ClearDtrBeforeAnySetDtrClearsAllLines) {
    m_requests.plan = {{TIOCMGET, 0}, {TIOCMSET, 0}};
    m_requests.modemLines = TIOCM_RTS | TIOCM_DTR;
    EXPECT_EQ(m_port.ClearDtr(), RESULT_OK);
    EXPECT_EQ(m_requests.made, (Made{{TIOCMSET, 0}}));
}

TEST_F(LinesAndSpeeds, LinesThatTheDeviceRefusesAreASendFailure) {
    m_requests.plan = {{TIOCMGET, -1}, {TIOCMSET, 0}};
    EXPECT_EQ(m_port.SetDtr(), RESULT_SEND_FAILED);
    EXPECT_EQ(m_requests.made, (Made{{TIOCMGET, 0}}));
    m_requests.plan = {{TIOCMGET, 0}, {TIOCMSET, -1}};
    EXPECT_EQ(m_port.SetDtr(), RESULT_SEND_FAILED);
    EXPECT_EQ(m_port.ClearDtr(), RESULT_SEND_FAILED);
}

TEST_F(LinesAndSpeeds, BreakDiscardsWhatIsPendingWhenItIsTaken) {
    m_requests.plan = {{TIOCSBRK, 0}, {TIOCCBRK, 0}};
    EXPECT_EQ(m_port.SetBreak(), RESULT_OK);
    EXPECT_EQ(m_requests.discards, 2);
    EXPECT_EQ(m_port.ClearBreak(), RESULT_OK);
    EXPECT_EQ(m_requests.discards, 3);
    EXPECT_EQ(m_requests.made, (Made{{TIOCSBRK, 0}, {TIOCCBRK, 0}}));
}

TEST_F(LinesAndSpeeds, BreakComesAfterTheOutputBeforeIt) {
    m_requests.plan = {{TIOCOUTQ, 0}, {TIOCSBRK, 0}};
    m_requests.pendingOutput = 2;
    m_requests.outputTaken = 1;
    EXPECT_EQ(m_port.SetBreak(), RESULT_OK);
    EXPECT_EQ(m_requests.made, (Made{{TIOCOUTQ, 0}, {TIOCOUTQ, 0}, {TIOCOUTQ, 0}, {TIOCSBRK, 0}}));
}

TEST_F(LinesAndSpeeds, BreakFailsRatherThanWaitForOutputThatStays) {
    m_requests.plan = {{TIOCOUTQ, 0}, {TIOCSBRK, 0}};
    m_requests.pendingOutput = 1;
    EXPECT_EQ(m_port.SetBreak(), RESULT_SEND_FAILED);
    EXPECT_EQ(std::ranges::count(m_requests.made, Made::value_type{TIOCSBRK, 0}), 0);
    EXPECT_EQ(m_requests.discards, 1) << "only the receive thread's";
}

TEST_F(LinesAndSpeeds, BreakThatIsRefusedDiscardsNothing) {
    m_requests.plan = {{TIOCSBRK, -1}, {TIOCCBRK, -1}};
    EXPECT_EQ(m_port.SetBreak(), RESULT_SEND_FAILED);
    EXPECT_EQ(m_port.ClearBreak(), RESULT_SEND_FAILED);
    EXPECT_EQ(m_requests.discards, 1);
}

TEST_F(LinesAndSpeeds, ClearingTheBufferDiscardsWhatIsPendingInTheDevice) {
    m_port.ClearReceiveBuffer();
    EXPECT_EQ(m_requests.discards, 2);
}

TEST_F(LinesAndSpeeds, TakesAnyRate) {
    for (const std::uint64_t rate : {110U, 9600U, 115200U, 250000U, 500000U, 921600U, 1000000U}) {
        EXPECT_EQ(m_port.ChangeBaudRate(rate), RESULT_OK) << rate;
        EXPECT_EQ(speed(), rate);
    }
}

TEST_F(LinesAndSpeeds, OpeningAgainSetsBothDirectionsBack) {
    for (const bool inputApart : {false, true}) {
        ASSERT_EQ(m_port.ChangeBaudRate(500000), RESULT_OK);
        m_port.Close();
        if (inputApart) { // as another program may leave it
            termios2 attributes{};
            ASSERT_EQ(::ioctl(m_terminal.master(), TCGETS2, &attributes), 0);
            attributes.c_cflag |= BOTHER << IBSHIFT;
            attributes.c_ispeed = 300000;
            ASSERT_EQ(::ioctl(m_terminal.master(), TCSETS2, &attributes), 0);
        }
        ASSERT_EQ(m_port.Open(m_terminal.portPath()), RESULT_OK);
        EXPECT_EQ(speed(), 115200U);
    }
}

TEST_F(LinesAndSpeeds, ADriverThatSetsAnotherRateHasFailed) {
    setDiagnosticSink([](const char* text) { lastLine = text; });
    m_requests.rateAfterChange = 9600;
    EXPECT_EQ(m_port.ChangeBaudRate(4000000), RESULT_BAUD_RATE_CHANGE_FAILED);
    EXPECT_EQ(lastLine, "errno:" + std::to_string(EINVAL));
    setDiagnosticSink(nullptr);
}

TEST_F(LinesAndSpeeds, ARateAsNearAsADivisorComesIsTheRate) {
    m_requests.rateAfterChange = 923077;
    EXPECT_EQ(m_port.ChangeBaudRate(921600), RESULT_OK);
    m_requests.rateAfterChange = 500000 + 10001;
    EXPECT_EQ(m_port.ChangeBaudRate(500000), RESULT_BAUD_RATE_CHANGE_FAILED);
}

TEST_F(LinesAndSpeeds, RatesThatAreNoneFail) {
    EXPECT_EQ(m_port.ChangeBaudRate(0), RESULT_BAUD_RATE_CHANGE_FAILED);
    EXPECT_EQ(m_port.ChangeBaudRate(std::uint64_t{1} << 32), RESULT_BAUD_RATE_CHANGE_FAILED);
    EXPECT_EQ(speed(), 115200U);
}

TEST_F(LinesAndSpeeds, AClosedPortHasNoSpeedToChange) {
    m_port.Close();
    EXPECT_EQ(m_port.ChangeBaudRate(115200), RESULT_BAUD_RATE_CHANGE_FAILED);
}

} // namespace
} // namespace flashwriter

#pragma once

#include "sequence/CommandLink.h"
#include "sequence/DeviceQueries.h"
#include "sequence/context/DiagnosticLog.h"
#include "tests/support/Eventually.h"
#include "tests/support/ScriptedTarget.h"
#include "tests/support/SerialRequests.h"

#include <gtest/gtest.h>

#include <sys/ioctl.h>

namespace flashwriter {

inline const testing::Bytes ACCEPTED = testing::targetFrame({0x06});

// An open link to a scripted target. Line requests succeed; waits are those of a write unless a
// test shortens them.
class ExchangeFixture : public ::testing::Test {
protected:
    ExchangeFixture() {
        m_context.ComRetryMax = 5;
        m_context.RetryWaitTime = 100;
        m_context.SendWait = 1;
        m_context.ReceiveTimeout = 200;
        m_requests.plan = {{TIOCMGET, 0}, {TIOCMSET, 0}, {TIOCSBRK, 0}, {TIOCCBRK, 0}};
        m_requests.modemLines = TIOCM_RTS;
    }

    void SetUp() override {
        setDiagnosticSink([](const char*) {});
        ASSERT_EQ(m_cmd.Initialize(), RESULT_OK);
        ASSERT_EQ(m_port.Open(m_target.portPath()), RESULT_OK);
        ASSERT_TRUE(testing::eventually([this] { return m_requests.discards == 1; }));
    }
    void TearDown() override {
        m_port.Close();
        setDiagnosticSink(nullptr);
    }

    // For tests of what happens when attempts run out.
    void hurry() {
        m_context.ComRetryMax = 2;
        m_context.RetryWaitTime = 1;
    }

    testing::SerialRequests m_requests;
    testing::ScriptedTarget m_target;
    NSCommandProcessor m_cmd;
    NSSerialPortProcessor m_port;
    NSWaitingTimeCalculator m_wait;
    _CONTEXTINFO m_context{};
    CommandLink m_link{m_cmd, m_port, m_wait, m_context};
    DeviceQueries m_queries{m_link};
};

} // namespace flashwriter

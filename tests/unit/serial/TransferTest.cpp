#include "sequence/context/DiagnosticLog.h"
#include "serial/NSSerialPortProcessor.h"
#include "tests/support/Eventually.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/support/SerialRequests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace flashwriter {
namespace {

using testing::eventually;
using testing::PseudoTerminal;

std::mutex linesMutex;
std::vector<std::string> lines;

void collect(const char* text) {
    const std::lock_guard guard(linesMutex);
    lines.emplace_back(text);
}

long countOf(const std::string& line) {
    const std::lock_guard guard(linesMutex);
    return std::ranges::count(lines, line);
}

// Bytes may come in one chunk or in several.
long sumOfReceiveSizes() {
    const std::string prefix = "Receive Size : ";
    const std::lock_guard guard(linesMutex);
    long sum = 0;
    for (const std::string& line : lines) {
        sum += line.starts_with(prefix) ? std::stol(line.substr(prefix.size())) : 0;
    }
    return sum;
}

class Transfer : public ::testing::Test {
protected:
    void SetUp() override {
        lines.clear();
        setDiagnosticSink(collect);
        m_terminal.makeRaw();
        ASSERT_EQ(m_port.Open(m_terminal.portPath()), RESULT_OK);
        // The thread begins by discarding what is pending; what comes after that, stays.
        ASSERT_TRUE(eventually([this] { return m_requests.discards == 1; }));
    }
    void TearDown() override {
        m_port.Close();
        setDiagnosticSink(nullptr);
    }

    testing::SerialRequests m_requests;
    PseudoTerminal m_terminal;
    NSSerialPortProcessor m_port;
};

TEST_F(Transfer, SendsAllBytesInOneWrite) {
    std::vector<std::uint8_t> frame(260);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        frame[i] = static_cast<std::uint8_t>(i);
    }
    EXPECT_EQ(m_port.SendData(frame.data(), frame.size()), RESULT_OK);
    EXPECT_EQ(m_terminal.receive(frame.size()), frame);
    EXPECT_EQ(countOf("SendDataSize: 260 Bytes"), 1);
}

TEST_F(Transfer, CollectsWhatArrivesAndLogsIt) {
    m_terminal.send({0x02, 0x01, 0x06, 0xF9});
    EXPECT_TRUE(eventually([this] { return m_port.GetReceiveDataLength() == 4; }));
    std::vector<std::uint8_t> bytes(4);
    EXPECT_EQ(m_port.GetReceivedData(bytes.data(), 4, 4), 4U);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{0x02, 0x01, 0x06, 0xF9}));
    EXPECT_TRUE(eventually([] { return sumOfReceiveSizes() == 4; }));
    EXPECT_GT(countOf("baffaring!"), 0);
}

TEST_F(Transfer, AChunkThatDoesNotFitIsDroppedWhole) {
    const std::vector<std::uint8_t> half(500, 0x55);
    m_terminal.send(half);
    ASSERT_TRUE(eventually([this] { return m_port.GetReceiveDataLength() == 500; }));
    m_terminal.send(half);
    ASSERT_TRUE(eventually([this] { return m_port.GetReceiveDataLength() == 1000; }));
    const auto before = countOf("baffaring!");
    m_terminal.send(std::vector<std::uint8_t>(24, 0xAA));
    ASSERT_TRUE(eventually([&] { return countOf("baffaring!") > before; }));
    m_terminal.send({0x77});
    ASSERT_TRUE(eventually([this] { return m_port.GetReceiveDataLength() == 1001; }));
    std::vector<std::uint8_t> bytes(1001);
    ASSERT_EQ(m_port.GetReceivedData(bytes.data(), 1001, 1001), 1001U);
    std::vector<std::uint8_t> expected(1000, 0x55);
    expected.push_back(0x77);
    EXPECT_EQ(bytes, expected);
}

TEST_F(Transfer, AShortWriteFails) {
    // Far more than a pseudo-terminal holds while nobody reads the other end.
    const std::vector<std::uint8_t> much(1 << 20, 0x11);
    EXPECT_EQ(m_port.SendData(much.data(), much.size()), RESULT_SEND_FAILED);
}

TEST_F(Transfer, AWriteThatFailsOutrightCountsAsSent) {
    const std::uint8_t byte = 0;
    m_port.Close();
    EXPECT_EQ(m_port.SendData(&byte, 1), RESULT_OK);
}

TEST_F(Transfer, AnUnpluggedDeviceIsNoReasonToStop) {
    m_terminal.unplug();
    const std::uint8_t byte = 0;
    EXPECT_EQ(m_port.SendData(&byte, 1), RESULT_OK);
    EXPECT_TRUE(m_port.IsReading());
    m_port.Close();
    EXPECT_FALSE(m_port.IsReading());
    EXPECT_EQ(countOf("ReceiveThread exit!"), 1);
}

} // namespace
} // namespace flashwriter

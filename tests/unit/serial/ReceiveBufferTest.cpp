#include "serial/NSSerialPortProcessor.h"
#include "tests/support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <deque>
#include <numeric>
#include <random>
#include <thread>
#include <vector>

namespace flashwriter {
namespace {

std::vector<std::uint8_t> counting(std::size_t count, std::uint8_t first = 0) {
    std::vector<std::uint8_t> bytes(count);
    std::iota(bytes.begin(), bytes.end(), first);
    return bytes;
}

// A transport with a buffer; nothing arrives from the device, the tests append themselves.
class ReceiveBuffer : public ::testing::Test {
protected:
    void SetUp() override {
        m_terminal.makeRaw();
        ASSERT_EQ(m_port.Open(m_terminal.portPath()), RESULT_OK);
    }

    ResultCode append(const std::vector<std::uint8_t>& bytes) {
        return m_port.setReadData(bytes.data(), bytes.size());
    }
    std::vector<std::uint8_t> take(std::size_t count) {
        std::vector<std::uint8_t> bytes(count);
        bytes.resize(m_port.GetReceivedData(bytes.data(), bytes.size(), count));
        return bytes;
    }

    testing::PseudoTerminal m_terminal;
    NSSerialPortProcessor m_port;
};

TEST_F(ReceiveBuffer, GivesNothingWhenThereIsLessThanWanted) {
    append({1, 2, 3, 4});
    EXPECT_TRUE(take(5).empty());
    EXPECT_EQ(m_port.GetReceiveDataLength(), 4U);
    EXPECT_EQ(take(4), (std::vector<std::uint8_t>{1, 2, 3, 4}));
}

TEST_F(ReceiveBuffer, GivesExactlyTheWantedCountAndKeepsTheRest) {
    append({1, 2, 3, 4, 5, 6, 7});
    EXPECT_EQ(take(5), (std::vector<std::uint8_t>{1, 2, 3, 4, 5}));
    EXPECT_EQ(m_port.GetReceiveDataLength(), 2U);
    EXPECT_EQ(take(2), (std::vector<std::uint8_t>{6, 7}));
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
}

TEST_F(ReceiveBuffer, AWantedCountOfZeroGivesZero) {
    append({1});
    EXPECT_EQ(m_port.GetReceivedData(nullptr, 0, 0), 0U);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 1U);
}

TEST_F(ReceiveBuffer, DoesNotConsultTheDestinationsSize) {
    append({1, 2, 3});
    std::vector<std::uint8_t> bytes(3);
    EXPECT_EQ(m_port.GetReceivedData(bytes.data(), 1, 3), 3U);
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(ReceiveBuffer, HoldsExactly1023Bytes) {
    EXPECT_EQ(append(counting(1000)), RESULT_OK);
    EXPECT_EQ(append(counting(24)), RESULT_BUFFER_OVERFLOW);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 1000U);
    EXPECT_EQ(append(counting(23, 200)), RESULT_OK);
    EXPECT_EQ(append({1}), RESULT_BUFFER_OVERFLOW);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 1023U);
    EXPECT_EQ(take(1000), counting(1000));
    EXPECT_EQ(take(23), counting(23, 200));
}

TEST_F(ReceiveBuffer, RefusesAnAbsurdCount) {
    const std::uint8_t byte = 1;
    EXPECT_EQ(m_port.setReadData(&byte, UINT64_MAX), RESULT_BUFFER_OVERFLOW);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
}

TEST_F(ReceiveBuffer, ShowsTheFirstTwoBytesAndLeavesThem) {
    append({0x02, 0xFF, 0x06});
    std::uint8_t type = 0;
    std::uint64_t length = UINT64_MAX;
    EXPECT_EQ(m_port.CheckDataFrame(type, length), RESULT_OK);
    EXPECT_EQ(type, 0x02);
    EXPECT_EQ(length, 0xFFU);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 3U);
}

TEST_F(ReceiveBuffer, ShowsTheFirstByteWhenThereIsNoSecond) {
    append({0x02});
    std::uint8_t type = 0;
    std::uint64_t length = 99;
    EXPECT_EQ(m_port.CheckDataFrame(type, length), RESULT_OK);
    EXPECT_EQ(type, 0x02);
}

TEST_F(ReceiveBuffer, ClearingForgetsEverything) {
    append(counting(100));
    m_port.clearReadData();
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
    append({9});
    EXPECT_EQ(take(1), std::vector<std::uint8_t>{9});
}

TEST_F(ReceiveBuffer, CountsWhatAnEarlierUseLeftUntilItIsCleared) {
    append({1, 2, 3});
    m_port.Close();
    EXPECT_EQ(m_port.GetReceiveDataLength(), 3U);
    EXPECT_TRUE(take(3).empty()) << "a closed transport has no bytes to give";
    ASSERT_EQ(m_port.Open(m_terminal.portPath()), RESULT_OK);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 3U);
    m_port.ClearReceiveBuffer();
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
}

TEST_F(ReceiveBuffer, BehavesAsAQueueWhateverTheOrderOfOperations) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::deque<std::uint8_t> model;
    std::uint8_t next = 0;
    for (int step = 0; step < 20000; ++step) {
        if (random() % 2 == 0) {
            const auto bytes = counting(random() % 600, next);
            const bool fits = model.size() + bytes.size() <= 1023;
            ASSERT_EQ(append(bytes), fits ? RESULT_OK : RESULT_BUFFER_OVERFLOW);
            if (fits) {
                model.insert(model.end(), bytes.begin(), bytes.end());
                next = static_cast<std::uint8_t>(next + bytes.size());
            }
        } else {
            const std::size_t wanted = random() % 600;
            const bool there = wanted <= model.size();
            const auto end = model.begin() + static_cast<std::ptrdiff_t>(there ? wanted : 0);
            ASSERT_EQ(take(wanted), std::vector<std::uint8_t>(model.begin(), end));
            model.erase(model.begin(), end);
        }
        ASSERT_EQ(m_port.GetReceiveDataLength(), model.size());
        if (model.size() >= 2) {
            std::uint8_t type = 0;
            std::uint64_t length = 0;
            m_port.CheckDataFrame(type, length);
            ASSERT_EQ(type, model[0]);
            ASSERT_EQ(length, model[1]);
        }
    }
}

TEST_F(ReceiveBuffer, OneProducerAndOneConsumerNeedNoLock) {
    constexpr std::size_t TOTAL = 200000;
    std::thread producer([this] {
        std::size_t sent = 0;
        while (sent < TOTAL) {
            const std::size_t count = std::min<std::size_t>(1 + sent % 97, TOTAL - sent);
            if (append(counting(count, static_cast<std::uint8_t>(sent))) == RESULT_OK) {
                sent += count;
            }
        }
    });
    std::size_t received = 0;
    bool inOrder = true;
    while (received < TOTAL) {
        for (const std::uint8_t byte : take(std::min<std::size_t>(61, TOTAL - received))) {
            inOrder = inOrder && byte == static_cast<std::uint8_t>(received);
            ++received;
        }
    }
    producer.join();
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(m_port.GetReceiveDataLength(), 0U);
}

} // namespace
} // namespace flashwriter

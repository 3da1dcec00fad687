// What a driver does besides the exchanges: its own checks, its delegate, its life.
#include "tests/sequence/BoardFixture.h"
#include "tests/support/DescriptorZero.h"
#include "tests/support/PseudoTerminal.h"

#include <algorithm>
#include <new>
#include <numeric>

namespace flashwriter {
namespace {

class Driver : public ::testing::Test {
protected:
    Driver() {
        setDiagnosticSink([](const char*) {});
    }
    ~Driver() override { setDiagnosticSink(nullptr); }

    void setEnds(std::uint32_t code, std::uint32_t data) const {
        _SILICONSIGNATURE& signature = m_driver->contextInfo().SiliconSignature;
        for (std::size_t i = 0; i < 3; ++i) {
            signature.CodeEndAddress[i] = static_cast<std::uint8_t>(code >> (8 * i));
            signature.DataEndAddress[i] = static_cast<std::uint8_t>(data >> (8 * i));
        }
    }
    // A write that fails at once, for what it says on its way.
    void failToOpen(const std::shared_ptr<RecordingWindow>& window) {
        const _CONTEXTINFO context = contextFor("/dev/no-such-port", 0, "image.bin", m_outcome);
        EXPECT_EQ(m_driver->start(context, window), RESULT_PORT_OPEN_ERROR);
    }

    TestMainQueue m_queue;
    std::shared_ptr<NSSequenceProcessor> m_driver =
        std::make_shared<NSSequenceProcessor>(m_queue.handle());
    _RESULTINFO m_outcome{};
};

TEST_F(Driver, ChecksSizesAndAddressesInOrder) {
    setEnds(0xFFFF, 0xF1FFF);
    const auto check = [this](std::uint64_t codeStart, std::uint64_t codeSize,
                              std::uint64_t dataStart, std::uint64_t dataSize) {
        return m_driver->checkSizeAndAddressRange(codeStart, codeSize, dataStart, dataSize);
    };
    EXPECT_EQ(check(0, 0x10000, 0xF1000, 0x1000), RESULT_OK);
    EXPECT_EQ(check(0, 0, 0xF1000, 0), RESULT_OK);
    EXPECT_EQ(check(0, 0x10001, 0xF1000, 0), RESULT_CODE_FLASH_SIZE_ERROR);
    EXPECT_EQ(check(0x400, 1, 0xF1000, 0), RESULT_CODE_FLASH_ADDRESS_ERROR);
    EXPECT_EQ(check(0x401, 1, 0xF1000, 0), RESULT_OK) << "unaligned addresses pass";
    EXPECT_EQ(check(0, 1, 0xF1000, 0x1001), RESULT_DATA_FLASH_SIZE_ERROR);
    EXPECT_EQ(check(0, 1, 0xF1400, 1), RESULT_DATA_FLASH_ADDRESS_ERROR);
    EXPECT_EQ(check(0, 1, 0xF1001, 1), RESULT_OK);
    EXPECT_EQ(check(0, 1, 0xF0C00, 1), RESULT_OK) << "only addresses above the start are judged";
    EXPECT_EQ(check(0x400, 0x10001, 0xF1400, 0x1001), RESULT_CODE_FLASH_SIZE_ERROR);
    EXPECT_EQ(check(0x400, 1, 0xF1400, 0x1001), RESULT_CODE_FLASH_ADDRESS_ERROR);
    EXPECT_EQ(check(0, 1, 0xF1400, 0x1001), RESULT_DATA_FLASH_SIZE_ERROR);
}

TEST_F(Driver, ABoardWithoutDataFlashTakesNoData) {
    setEnds(0xFFFF, 0);
    EXPECT_EQ(m_driver->checkSizeAndAddressRange(0, 1, 0xF1000, 0), RESULT_OK);
    EXPECT_EQ(m_driver->checkSizeAndAddressRange(0, 1, 0xF1000, 1), RESULT_DATA_FLASH_SIZE_ERROR);
}

// The room is an unsigned difference: an end below data flash leaves next to all there is.
TEST_F(Driver, AnEndBelowDataFlashWraps) {
    const auto check = [this](std::uint64_t dataSize) {
        return m_driver->checkSizeAndAddressRange(0, 1, 0xF1000, dataSize);
    };
    setEnds(0xFFFF, 0xF0FFF);
    EXPECT_EQ(check(0), RESULT_OK);
    EXPECT_EQ(check(1), RESULT_DATA_FLASH_SIZE_ERROR);
    setEnds(0xFFFF, 0xF0FFE);
    EXPECT_EQ(check(UINT64_MAX), RESULT_OK);
    setEnds(0xFFFF, 1);
    EXPECT_EQ(check(0xF1001), RESULT_OK);
    EXPECT_EQ(check(0ULL - 0xF0FFE), RESULT_OK);
    EXPECT_EQ(check(0ULL - 0xF0FFD), RESULT_DATA_FLASH_SIZE_ERROR);
    setEnds(0xFFFF, 0xFFFFFF);
    EXPECT_EQ(check(0xF0F000), RESULT_OK);
    EXPECT_EQ(check(0xF0F001), RESULT_DATA_FLASH_SIZE_ERROR);
}

std::uint32_t checksumOf(const Bytes& bytes) {
    std::uint32_t checksum = 0xDEADBEEF;
    EXPECT_EQ(NSSequenceProcessor::getChecksum(bytes.data(), bytes.size(), checksum), RESULT_OK);
    return checksum;
}

TEST_F(Driver, SumsTheImageAsItWillStandInFlash) {
    EXPECT_EQ(checksumOf({}), 0U);
    EXPECT_EQ(checksumOf({0x01}), 0U - 1U - 1023U * 0xFFU);
    EXPECT_EQ(checksumOf(Bytes(1024, 0x01)), 0U - 1024U) << "whole blocks need no padding";
    EXPECT_EQ(checksumOf(Bytes(1025, 0x01)), 0U - 1025U - 1023U * 0xFFU);
    for (const std::size_t size : {1U, 1000U, 1024U, 1500U, 262144U}) {
        Bytes padded = testing::patternImage(size);
        const std::uint32_t checksum = checksumOf(padded);
        padded.resize((size + 1023) / 1024 * 1024, 0xFF);
        EXPECT_EQ(checksum + std::accumulate(padded.begin(), padded.end(), 0U), 0U) << size;
    }
}

TEST_F(Driver, GivesTheTextOfAResult) {
    EXPECT_EQ(NSSequenceProcessor::getResultText(0), " OK\n");
    EXPECT_EQ(NSSequenceProcessorForMot::getResultText(0x2009),
              " Error\nエラー：モード引き込み処理のタイムアウト\n");
}

TEST_F(Driver, DropsItsLinesWithoutADelegate) {
    const auto window = std::make_shared<RecordingWindow>();
    failToOpen(window);
    EXPECT_EQ(m_queue.run(), 1U) << "the closing of the window, and no line";
    EXPECT_EQ(window->closings, 1);
}

TEST_F(Driver, HandsALineToTheDelegateOfTheMoment) {
    RecordingDelegate first;
    RecordingDelegate second;
    m_driver->setDelegate(&first);
    EXPECT_EQ(m_driver->delegate(), &first);
    m_driver->addLog("a");
    m_driver->setDelegate(&second);
    m_queue.run();
    EXPECT_TRUE(first.log.empty());
    EXPECT_EQ(second.log, std::vector<std::string>{"a"});
    m_driver->addLog("b");
    m_driver->setDelegate(nullptr);
    m_queue.run();
    EXPECT_EQ(second.log, std::vector<std::string>{"a"});
}

TEST_F(Driver, LinesWaitForTheMainThread) {
    RecordingDelegate delegate;
    m_driver->setDelegate(&delegate);
    failToOpen(std::make_shared<RecordingWindow>());
    EXPECT_TRUE(delegate.log.empty());
    m_queue.run();
    EXPECT_EQ(delegate.log, std::vector<std::string>{FAILED});
}

TEST_F(Driver, IsKeptAliveWithItsWindowUntilItsTasksHaveRun) {
    auto window = std::make_shared<RecordingWindow>();
    const std::weak_ptr<RecordingWindow> watchedWindow = window;
    const std::weak_ptr<NSSequenceProcessor> watchedDriver = m_driver;
    failToOpen(window);
    m_driver.reset();
    window.reset();
    EXPECT_FALSE(watchedDriver.expired());
    EXPECT_FALSE(watchedWindow.expired());
    m_queue.run();
    EXPECT_TRUE(watchedDriver.expired());
    EXPECT_TRUE(watchedWindow.expired());
}

// Nor may the ends that every write comes to, reset and closing, be those of descriptor 0.
TEST_F(Driver, APortNameWithoutAnEndIsNoPort) {
    const testing::DescriptorZero zero;
    _CONTEXTINFO context = contextFor("", 0, "image.bin", m_outcome);
    std::ranges::fill(context.PortName, '/');
    EXPECT_EQ(m_driver->start(context, std::make_shared<RecordingWindow>()),
              RESULT_PORT_OPEN_ERROR);
    EXPECT_TRUE(testing::DescriptorZero::isOpen());
}

TEST_F(Driver, AWindowThatThrowsKeepsNoWriteFromItsEnd) {
    class Throwing : public RecordingWindow {
    public:
        std::uint64_t UpdateProgress(std::int32_t /*step*/, std::int32_t /*percent*/) override {
            throw std::bad_alloc();
        }
        std::uint64_t setResult(_CONTEXTINFO /*context*/) override { throw std::bad_alloc(); }
    };
    RecordingDelegate delegate;
    m_driver->setDelegate(&delegate);
    const auto window = std::make_shared<Throwing>();
    failToOpen(window);
    m_queue.run();
    EXPECT_EQ(m_outcome.Result, RESULT_PORT_OPEN_ERROR);
    EXPECT_EQ(window->closings, 1);
    EXPECT_EQ(delegate.log, std::vector<std::string>{FAILED});
}

TEST_F(Driver, AMainQueueThatThrowsKeepsNoWriteFromItsEnd) {
    const auto driver = std::make_shared<NSSequenceProcessor>(
        [](const std::function<void()>& /*task*/) { throw std::bad_alloc(); });
    RecordingDelegate delegate;
    driver->setDelegate(&delegate);
    const auto window = std::make_shared<RecordingWindow>();
    const _CONTEXTINFO context = contextFor("/dev/no-such-port", 0, "image.bin", m_outcome);
    EXPECT_EQ(driver->start(context, window), RESULT_PORT_OPEN_ERROR);
    EXPECT_EQ(window->results.size(), 1U);
}

TEST_F(Driver, ClosesTheWindowWhenTheMainQueueHasMemoryAgain) {
    int left = 3;
    const auto driver = std::make_shared<NSSequenceProcessor>(
        [&, queue = m_queue.handle()](std::function<void()> task) {
            if (left-- > 0) {
                throw std::bad_alloc();
            }
            queue(std::move(task));
        });
    const auto window = std::make_shared<RecordingWindow>();
    const _CONTEXTINFO context = contextFor("/dev/no-such-port", 0, "image.bin", m_outcome);
    EXPECT_EQ(driver->start(context, window), RESULT_PORT_OPEN_ERROR);
    m_queue.run();
    EXPECT_EQ(window->closings, 1);
}

TEST_F(Driver, ClosesTheWindowBeforeItsLastLine) {
    RecordingDelegate delegate;
    m_driver->setDelegate(&delegate);
    class Watcher : public RecordingWindow {
    public:
        explicit Watcher(RecordingDelegate& watched) : m_watched(watched) {}
        void close() override { linesAtClosing = m_watched.log.size(); }
        std::size_t linesAtClosing = 99;

    private:
        RecordingDelegate& m_watched;
    };
    const auto window = std::make_shared<Watcher>(delegate);
    failToOpen(window);
    m_queue.run();
    EXPECT_EQ(window->linesAtClosing, 0U);
    EXPECT_EQ(delegate.log.size(), 1U);
}

} // namespace
} // namespace flashwriter

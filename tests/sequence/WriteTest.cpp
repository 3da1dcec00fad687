// Whole writes that succeed, frame by frame.
#include "tests/sequence/BoardFixture.h"
#include "tests/support/Eventually.h"

#include <atomic>
#include <chrono>
#include <new>
#include <numeric>
#include <thread>

namespace flashwriter {
namespace {

using testing::flashAfter;
using testing::ImageFile;
using testing::motText;
using testing::patternImage;

class Write : public BoardFixture {};

// Frames as they are on paper: a command with its parameters, a data frame.
Bytes closed(Bytes frame, unsigned sum, std::uint8_t end) {
    frame.push_back(static_cast<std::uint8_t>(0x100 - sum % 0x100));
    frame.push_back(end);
    return frame;
}

Bytes command(const Bytes& parameters) {
    Bytes frame{0x01};
    frame.push_back(static_cast<std::uint8_t>(parameters.size()));
    for (const std::uint8_t byte : parameters) {
        frame.push_back(byte);
    }
    return closed(frame, std::accumulate(frame.begin() + 1, frame.end(), 0U), 0x03);
}

Bytes range(std::uint8_t code, std::uint32_t first, std::uint32_t last) {
    Bytes parameters{code};
    for (const std::uint32_t address : {first, last}) {
        for (int shift = 0; shift < 24; shift += 8) {
            parameters.push_back(static_cast<std::uint8_t>(address >> shift));
        }
    }
    return parameters;
}

// All frames of a write of this image into a board whose blocks are not blank from dirtyFrom on.
std::vector<Bytes> expectedFrames(const Bytes& image, std::uint8_t baudRate, bool dirty) {
    const auto blocks = static_cast<std::uint32_t>((image.size() + 1023) / 1024);
    std::vector<Bytes> frames{command({0x9A, baudRate, 0x21}), command({0x00}), command({0xC0})};
    for (std::uint32_t block = 0; block < blocks; ++block) {
        Bytes check = range(0x32, block * 1024, block * 1024 + 1023);
        check.push_back(0x00);
        frames.push_back(command(check));
        if (dirty) {
            Bytes erase = range(0x22, block * 1024, 0);
            erase.resize(4);
            frames.push_back(command(erase));
        }
    }
    frames.push_back(command(range(0x40, 0, blocks * 1024 - 1)));
    Bytes padded = image;
    padded.resize(blocks * 1024, 0xFF);
    for (std::size_t at = 0; at < padded.size(); at += 256) {
        Bytes frame{0x02};
        frame.push_back(0x00);
        for (std::size_t i = at; i < at + 256; ++i) {
            frame.push_back(padded[i]);
        }
        const unsigned sum = std::accumulate(frame.begin() + 1, frame.end(), 0U);
        frames.push_back(closed(frame, sum, at + 256 == padded.size() ? 0x03 : 0x17));
    }
    frames.push_back(command(range(0xB0, 0, blocks * 1024 - 1)));
    return frames;
}

TEST_F(Write, OfARawImageSendsExactlyItsFrames) {
    for (const std::size_t size : {1U, 255U, 256U, 257U, 1023U, 1024U, 1025U, 3000U, 16384U}) {
        SCOPED_TRACE(size);
        const Bytes image = patternImage(size);
        const ImageFile file("image.bin", image);
        const RunRecord record = write(file.path(), 2);
        EXPECT_EQ(record.returned, RESULT_OK);
        EXPECT_EQ(hostFrames(), expectedFrames(image, 2, false));
        EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
        EXPECT_EQ(m_board.violations(), 0U);
        EXPECT_EQ(record.log, SUCCESS_LOG);
    }
}

TEST_F(Write, OfRecordsSendsTheSameFrames) {
    for (const std::size_t size : {1U, 1024U, 1025U, 3000U}) {
        SCOPED_TRACE(size);
        const Bytes image = patternImage(size);
        const ImageFile file("image.mot", motText(image));
        const RunRecord record = write(file.path(), 0);
        EXPECT_EQ(record.returned, RESULT_OK);
        EXPECT_EQ(hostFrames(), expectedFrames(image, 0, false));
        EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
        EXPECT_EQ(m_board.violations(), 0U);
        EXPECT_EQ(record.log, SUCCESS_LOG);
    }
}

TEST_F(Write, ErasesBlocksThatAreNotBlankAndNoOthers) {
    m_options.target.flash.seed = 7;
    const Bytes image = patternImage(2500);
    const ImageFile file("image.bin", image);
    EXPECT_EQ(write(file.path(), 0).returned, RESULT_OK);
    EXPECT_EQ(hostFrames(), expectedFrames(image, 0, true));
    EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before)) << "beyond the image nothing moves";
    EXPECT_EQ(m_board.violations(), 0U);
}

TEST_F(Write, GapsOfRecordsAreWrittenAsErased) {
    const ImageFile file("gaps.mot", std::string("S113000000112233445566778899AABBCCDDEEFF00\r\n"
                                                 "S1060500AABBCC00\r\n"));
    Bytes image(0x503, 0xFF);
    for (std::uint8_t i = 0; i < 16; ++i) {
        image[i] = static_cast<std::uint8_t>(i * 0x11);
    }
    image[0x500] = 0xAA;
    image[0x501] = 0xBB;
    image[0x502] = 0xCC;
    m_options.target.flash.fill = 0x00;
    EXPECT_EQ(write(file.path()).returned, RESULT_OK);
    EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
}

TEST_F(Write, RunsAtEverySpeed) {
    const Bytes image = patternImage(1025);
    const ImageFile file("image.bin", image);
    for (std::uint8_t baudRate = 0; baudRate <= 3; ++baudRate) {
        EXPECT_EQ(write(file.path(), baudRate).returned, RESULT_OK);
        EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
        EXPECT_EQ(m_board.violations(), 0U);
    }
}

TEST_F(Write, ReportsEachStageAndBlock) {
    const ImageFile three("image.bin", patternImage(3000));
    EXPECT_EQ(write(three.path()).window->progress, (ProgressCalls{{101, 0},
                                                                   {101, 5},
                                                                   {100, 5},
                                                                   {100, 10},
                                                                   {102, 10},
                                                                   {102, 13},
                                                                   {102, 16},
                                                                   {102, 20},
                                                                   {103, 20},
                                                                   {103, 46},
                                                                   {103, 73},
                                                                   {103, 100}}));
}

TEST_F(Write, TheOutcomeNamesTheLastExchange) {
    const ImageFile file("image.bin", patternImage(1));
    const RunRecord record = write(file.path());
    EXPECT_EQ(record.outcome.ComInfo.Command, 0xB0);
    EXPECT_EQ(record.outcome.ComInfo.ST1, 0x06);
    EXPECT_EQ(record.outcome.ComInfo.Retry, 0U);
    EXPECT_EQ(record.window->results.at(0).pResultInfo, &record.outcome);
}

TEST_F(Write, KeepsWhatTheTargetToldAboutItself) {
    m_options.target.baudRateReplyWithData = true;
    const ImageFile file("image.bin", patternImage(1));
    const _CONTEXTINFO context = write(file.path(), 2).window->results.at(0);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(context.SiliconSignature.DevName)),
              "BOARD-64K ");
    EXPECT_EQ(context.SiliconSignature.CodeEndAddress[1], 0x3F);
    EXPECT_EQ(context.SecurityGetInfo.Flg, 0) << "a write does not ask for it";
    EXPECT_EQ(context.ComRetryMax, 5U);
    EXPECT_EQ(context.RetryWaitTime, 100U);
    EXPECT_EQ(context.SendWait, 1U);
    EXPECT_EQ(context.ReceiveTimeout, 200U);
}

// The caller's times would let mode entry take too long and end at the first silence.
TEST_F(Write, UsesItsOwnTimesWhateverTheCallerGives) {
    m_options.faults = {{board::FaultKind::silence, 2, board::Fault::kDefault}}; // Reset's status
    const ImageFile file("image.bin", patternImage(1));
    TestMainQueue queue;
    m_board.start(m_options);
    _RESULTINFO outcome{};
    _CONTEXTINFO context = contextFor(m_board.portPath(), 0, file.path(), outcome);
    context.ComRetryMax = 1;
    context.RetryWaitTime = 1;
    context.SendWait = 50;
    context.ReceiveTimeout = 9000;
    const RunRecord record =
        runWith(std::make_shared<NSSequenceProcessor>(queue.handle()), queue, context);
    m_board.stop();
    EXPECT_EQ(record.returned, RESULT_OK);
    const _CONTEXTINFO used = record.window->results.at(0);
    EXPECT_EQ(used.ComRetryMax, 5U);
    EXPECT_EQ(used.RetryWaitTime, 100U);
    EXPECT_EQ(used.SendWait, 1U);
    EXPECT_EQ(used.ReceiveTimeout, 200U);
}

TEST_F(Write, ABoardThatAnswersDataFramesShortly) {
    m_options.target.shortDataStatus = true;
    const Bytes image = patternImage(2000);
    const ImageFile file("image.bin", image);
    EXPECT_EQ(write(file.path()).returned, RESULT_OK);
    EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
}

TEST_F(Write, EndsInResetAndLeavesTheTargetRunningOnceThePortIsClosed) {
    const ImageFile file("image.bin", patternImage(1));
    m_board.start(m_options);
    const RunRecord record = runDriver(m_board.portPath(), 0, file.path());
    EXPECT_EQ(record.returned, RESULT_OK);
    EXPECT_EQ(lastDtrBeforeClosing(), "DTR on");
    EXPECT_TRUE(m_board.waitForMode(board::TargetMode::running, std::chrono::seconds(20)));
}

TEST_F(Write, FindsABoardWithDtrTheOtherWayRound) {
    m_options.target.invertedDtr = true;
    const Bytes image = patternImage(1500);
    const ImageFile file("image.bin", image);
    const RunRecord record = write(file.path(), 2);
    EXPECT_EQ(record.returned, RESULT_OK);
    EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
    EXPECT_EQ(record.log, SUCCESS_LOG) << "the second mode entry is not announced";
    EXPECT_EQ(lastDtrBeforeClosing(), "DTR off") << "the level with which its reset begins";
}

TEST_F(Write, DoesNotKeepTheSenseOfDtrForTheNextOne) {
    const Bytes image = patternImage(1000);
    const ImageFile file("image.bin", image);
    TestMainQueue queue;
    const auto driver = std::make_shared<NSSequenceProcessor>(queue.handle());
    for (const bool inverted : {true, false}) {
        SCOPED_TRACE(inverted);
        m_options.target.invertedDtr = inverted;
        m_board.start(m_options);
        m_before = m_board.codeFlash();
        const RunRecord record = runWith(driver, queue, m_board.portPath(), 0, file.path());
        m_board.stop();
        EXPECT_EQ(record.returned, RESULT_OK);
        EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_before));
        EXPECT_EQ(modeEntries(), inverted ? 2 : 1);
        EXPECT_EQ(lastDtrBeforeClosing(), inverted ? "DTR off" : "DTR on");
    }
}

TEST_F(Write, WithOnePerTimeLeavesNothingBehind) {
    const ImageFile file("image.bin", patternImage(1));
    TestMainQueue queue;
    const auto driver = std::make_shared<NSSequenceProcessor>(queue.handle());
    m_board.start(m_options); // keeps a few descriptors of its own from its first start on
    m_board.stop();
    const std::size_t descriptors = entriesOf("/proc/self/fd");
    const std::size_t threads = entriesOf("/proc/self/task");
    for (int run = 0; run < 5; ++run) {
        m_board.start(m_options);
        const RunRecord record = runWith(driver, queue, m_board.portPath(), 2, file.path());
        m_board.stop();
        EXPECT_EQ(record.returned, RESULT_OK);
        EXPECT_EQ(record.outcome.ComInfo.Retry, 0U);
        EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
        EXPECT_TRUE(testing::eventually([&] { return entriesOf("/proc/self/task") == threads; }));
    }
}

// On the thread of the write and on the one that receives.
TEST_F(Write, DoesNotDependOnADiagnosticLogThatThrows) {
    setDiagnosticSink([](const char* /*text*/) { throw std::bad_alloc(); });
    m_board.start(m_options);
    const Bytes image = patternImage(1000);
    const ImageFile file("image.bin", image);
    const RunRecord record = runDriver(m_board.portPath(), 0, file.path());
    EXPECT_EQ(record.returned, RESULT_OK);
    expectAgreement(record);
    EXPECT_TRUE(m_board.waitForClosings(1, std::chrono::seconds(20)));
    EXPECT_EQ(m_board.codeFlash(), flashAfter(image, m_board.codeFlash()));
}

// The main thread may put another delegate in place at any moment of a write.
TEST_F(Write, LosesNoLineWhenItsDelegateChangesMeanwhile) {
    class Delegate : public NSSequenceProcessorDelegate {
    public:
        explicit Delegate(std::vector<std::string>& log) : m_log(log) {}
        void delegateAddLog(const std::string& text) override { m_log.push_back(text); }

    private:
        std::vector<std::string>& m_log;
    };
    const ImageFile file("image.bin", patternImage(1000));
    TestMainQueue queue;
    const auto driver = std::make_shared<NSSequenceProcessor>(queue.handle());
    std::vector<std::string> log;
    Delegate first(log);
    Delegate second(log);
    driver->setDelegate(&first);
    _RESULTINFO outcome{};
    m_board.start(m_options);
    const _CONTEXTINFO context = contextFor(m_board.portPath(), 0, file.path(), outcome);
    std::atomic<bool> ended{false};
    std::thread worker([&] {
        driver->start(context, std::make_shared<RecordingWindow>());
        ended = true;
    });
    while (!ended) {
        driver->setDelegate(driver->delegate() == &first ? &second : &first);
        queue.run();
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    worker.join();
    queue.run();
    EXPECT_EQ(outcome.Result, RESULT_OK);
    EXPECT_EQ(log, SUCCESS_LOG);
}

} // namespace
} // namespace flashwriter

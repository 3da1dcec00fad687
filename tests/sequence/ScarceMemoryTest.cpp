// Every allocation of a write fails once. The write ends, tells the truth, announces its end and
// leaves nothing behind.
#include "tests/support/ScarceMemory.h"

#include "tests/sequence/BoardFixture.h"
#include "tests/support/Eventually.h"

#include <array>
#include <atomic>
#include <thread>

namespace flashwriter {
namespace {

using testing::ImageFile;

// Allocations of the threads that belong to the write, counted from 1; the board has memory.
thread_local bool isCounted = false;
std::atomic<int> allocations{0};
std::atomic<int> firstFailure{0};
std::atomic<int> lastFailure{0};

bool isThereMemory(std::size_t /*size*/) {
    if (!isCounted) {
        return true;
    }
    const int number = ++allocations;
    return number < firstFailure || number > lastFailure;
}

void failFrom(int first, int count) {
    allocations = 0;
    firstFailure = first;
    lastFailure = first + count - 1;
}

class Counted {
public:
    Counted() { isCounted = true; }
    ~Counted() { isCounted = false; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;
};

// Needs no memory to note what it is told.
class CountingWindow : public ProgressWindow {
public:
    std::uint64_t UpdateProgress(std::int32_t /*step*/, std::int32_t /*percent*/) override {
        return 0;
    }
    std::uint64_t setResult(_CONTEXTINFO context) override {
        ++results;
        told = context.pResultInfo->Result;
        return 0;
    }
    void close() override { ++closings; }

    int results = 0;
    ResultCode told = 0;
    int closings = 0;
};

class LastLine : public NSSequenceProcessorDelegate, public NSSequenceProcessorForMotDelegate {
public:
    void delegateAddLog(const std::string& text) override {
        isComplete = isComplete || text == COMPLETE;
        isFailed = isFailed || text == FAILED;
    }
    bool isComplete = false;
    bool isFailed = false;
};

template <class Driver>
class ScarceMemory : public BoardFixture {
protected:
    ScarceMemory() {
        m_board.start(m_options); // keeps a few descriptors of its own from its first start on
        m_board.stop();
        m_descriptors = entriesOf("/proc/self/fd");
        m_threads = entriesOf("/proc/self/task");
        m_board.start(m_options);
        testing::memoryRule = isThereMemory;
    }
    ~ScarceMemory() override {
        testing::memoryRule = nullptr;
        m_board.stop();
        EXPECT_LE(entriesOf("/proc/self/fd"), m_descriptors);
        EXPECT_TRUE(testing::eventually([&] { return entriesOf("/proc/self/task") == m_threads; }));
    }

    // Writes the file on a thread of its own, and runs the tasks.
    ResultCode writeOnce(const std::string& file) {
        TestMainQueue queue;
        const auto window = std::make_shared<CountingWindow>();
        LastLine delegate;
        _RESULTINFO outcome{};
        const _CONTEXTINFO context = contextFor(m_board.portPath(), 2, file, outcome);
        ResultCode returned = RESULT_INIT_FAILED;
        const auto driver = std::make_shared<Driver>(queue.handle());
        driver->setDelegate(&delegate);
        std::thread worker([&] {
            const Counted counted;
            returned = driver->start(context, window);
        });
        worker.join();
        queue.run();
        EXPECT_EQ(outcome.Result, returned);
        EXPECT_EQ(window->results, 1);
        EXPECT_EQ(window->told, returned);
        EXPECT_EQ(window->closings, 1) << "the end is announced";
        EXPECT_FALSE(returned == RESULT_OK ? delegate.isFailed : delegate.isComplete);
        return returned;
    }

    // Two images by turns, so that what is there from the write before is not what is right.
    void failEach(const std::string& name, int count) {
        const bool isMot = name.ends_with(".mot");
        const auto content = [&](const Bytes& image) {
            return isMot ? testing::motText(image) : std::string(image.begin(), image.end());
        };
        const std::array<Bytes, 2> images{testing::patternImage(1000), Bytes(1000, 0xA5)};
        const ImageFile even(name, content(images[0]));
        const ImageFile odd(name, content(images[1]));
        // Over with the first success that came before the allocation that was to fail. On a busy
        // machine a write may fail for other reasons, too.
        int first = 0;
        ResultCode result = RESULT_INIT_FAILED;
        do {
            SCOPED_TRACE(++first);
            const Bytes before = m_board.codeFlash();
            failFrom(first, count);
            result = writeOnce(first % 2 == 0 ? even.path() : odd.path());
            if (result == RESULT_OK) {
                const Bytes& image = first % 2 == 0 ? images[0] : images[1];
                EXPECT_EQ(m_board.codeFlash(), testing::flashAfter(image, before));
            }
        } while ((result != RESULT_OK || allocations >= first) && first < 100);
        EXPECT_GT(first, 10);
        EXPECT_LT(first, 100);
    }

private:
    std::size_t m_descriptors = 0;
    std::size_t m_threads = 0;
};

using BinWrite = ScarceMemory<NSSequenceProcessor>;
using MotWrite = ScarceMemory<NSSequenceProcessorForMot>;

TEST_F(BinWrite, SurvivesEachAllocationThatFails) {
    failEach("image.bin", 1);
}

TEST_F(BinWrite, SurvivesAShortageFromEachAllocationOn) {
    failEach("image.bin", 5);
}

TEST_F(MotWrite, SurvivesEachAllocationThatFails) {
    failEach("image.mot", 1);
}

TEST_F(MotWrite, SurvivesAShortageFromEachAllocationOn) {
    failEach("image.mot", 5);
}

} // namespace
} // namespace flashwriter

#include "console/MainLoop.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <new>
#include <thread>
#include <vector>

namespace flashwriter {
namespace {

using ::testing::ElementsAre;

TEST(MainLoop, RunsWhatIsThereAndEnds) {
    MainLoop loop;
    std::vector<int> order;
    loop.post([&] { order.push_back(1); });
    loop.post([&] { order.push_back(2); });
    loop.end();
    loop.run();
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(MainLoop, RunsTasksThatTasksPostAfterTheEnd) {
    MainLoop loop;
    const MainQueue queue = loop.queue();
    std::vector<int> order;
    queue([&] {
        order.push_back(1);
        queue([&] { order.push_back(3); });
    });
    queue([&] { order.push_back(2); });
    loop.end();
    loop.run();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(MainLoop, RunsTheOthersAfterATaskThatThrows) {
    MainLoop loop;
    bool isNextRun = false;
    loop.post([] { throw std::bad_alloc(); });
    loop.post([&] { isNextRun = true; });
    loop.end();
    loop.run();
    EXPECT_TRUE(isNextRun);
}

TEST(MainLoop, KeepsTheOrderOfAnotherThreadAndRunsOnItsOwn) {
    constexpr int COUNT = 2000;
    MainLoop loop;
    std::vector<int> order; // unguarded: only the loop's thread may touch it
    const auto here = std::this_thread::get_id();
    std::atomic<bool> isElsewhere{false};
    std::thread worker([&, queue = loop.queue()] {
        for (int i = 0; i < COUNT; ++i) {
            queue([&, i] {
                order.push_back(i);
                isElsewhere = isElsewhere || std::this_thread::get_id() != here;
            });
        }
        loop.end();
    });
    loop.run();
    worker.join();
    ASSERT_EQ(order.size(), static_cast<std::size_t>(COUNT));
    EXPECT_TRUE(std::ranges::is_sorted(order));
    EXPECT_FALSE(isElsewhere);
}

TEST(MainLoop, WaitsForTheEnd) {
    MainLoop loop;
    std::atomic<bool> isOver{false};
    std::thread worker([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        isOver = true;
        loop.end();
    });
    loop.run();
    EXPECT_TRUE(isOver);
    worker.join();
}

TEST(MainLoop, LetsGoOfWhatATaskHolds) {
    MainLoop loop;
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watch = held;
    loop.post([held = std::move(held)] { *held = 1; });
    EXPECT_FALSE(watch.expired());
    loop.end();
    loop.run();
    EXPECT_TRUE(watch.expired());
}

} // namespace
} // namespace flashwriter

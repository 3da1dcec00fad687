#include "console/ConsoleProgress.h"

#include "console/Interrupt.h"
#include "console/MainLoop.h"
#include "tests/support/Terminal.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>

namespace flashwriter {
namespace {

using ::testing::HasSubstr;

class ConsoleProgressTest : public ::testing::Test {
protected:
    testing::Terminal terminal;
    ConsoleOutput output{terminal.slave(), terminal.slave()};
    MainLoop loop;
    _RESULTINFO result{};
    _CONTEXTINFO context{};
    std::shared_ptr<ConsoleProgress> window;

    ConsoleProgressTest() {
        context.pResultInfo = &result;
        context.BaudRate = 2;
        window = std::make_shared<ConsoleProgress>(loop.queue(), output, context);
    }
};

TEST_F(ConsoleProgressTest, DrawsOnTheMainThreadOnly) {
    std::thread worker([&] { EXPECT_EQ(window->UpdateProgress(103, 45), 0U); });
    worker.join();
    EXPECT_EQ(terminal.taken(), "");
    loop.end();
    loop.run();
    EXPECT_THAT(terminal.taken(), HasSubstr("Writing data. (45 %)"));
}

TEST_F(ConsoleProgressTest, LivesUntilItsLastTaskHasRun) {
    const std::weak_ptr<ConsoleProgress> watch = window;
    window->UpdateProgress(103, 45);
    window.reset();
    EXPECT_FALSE(watch.expired());
    loop.end();
    loop.run();
    EXPECT_TRUE(watch.expired());
}

TEST_F(ConsoleProgressTest, ClosesByTakingTheProgressAway) {
    output.showProgress(103, 45);
    static_cast<void>(terminal.taken());
    window->close();
    const std::string after = terminal.taken();
    EXPECT_TRUE(after.starts_with("\r ") && after.ends_with(" \r")) << after;
}

TEST_F(ConsoleProgressTest, KeepsTheContextOfTheEnd) {
    EXPECT_EQ(window->context().BaudRate, 2);
    context.SiliconSignature.CodeEndAddress[0] = 7;
    EXPECT_EQ(window->setResult(context), 0U);
    EXPECT_EQ(window->context().SiliconSignature.CodeEndAddress[0], 7);
}

TEST_F(ConsoleProgressTest, KeepsUpWhatAnInterruptWouldSay) {
    result.Result = RESULT_SUM_ERROR;
    window->UpdateProgress(101, 0);
    EXPECT_THAT(interruptMessage(), HasSubstr("before anything was written"));
    window->UpdateProgress(102, 10);
    EXPECT_THAT(interruptMessage(), HasSubstr("are incomplete"));
    window->setResult(context);
    EXPECT_THAT(interruptMessage(), HasSubstr("are incomplete"));
    result.Result = RESULT_OK;
    window->setResult(context);
    EXPECT_THAT(interruptMessage(), HasSubstr("written and verified"));
}

} // namespace
} // namespace flashwriter

#include "serial/platform/PortInspection.h"

#include "tests/support/ChildProcess.h"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <unistd.h>

namespace flashwriter {
namespace {

using ::testing::IsEmpty;

// A shell that opens the port on descriptor 7, says so, and then waits in a program of its own.
testing::ChildOptions holding(const std::string& path) {
    testing::ChildOptions options;
    options.arguments = {"/bin/sh", "-c", "exec 7<\"$0\"; echo open; exec sleep 60", path};
    return options;
}

TEST(PortHolders, AreTheProcessesThatHaveThePortOpen) {
    const testing::Terminal port;
    testing::ChildProcess holder(holding(port.path()));
    const auto isHeld = [&] {
        const auto holders = platform::portHolders(port.path());
        return holders.size() == 1 && holders[0].pid == holder.pid() && holders[0].name == "sleep";
    };
    EXPECT_TRUE(holder.waitFor(isHeld));
}

TEST(PortHolders, AreFoundThroughALink) {
    const testing::Terminal port;
    testing::ChildProcess holder(holding(port.path()));
    ASSERT_TRUE(holder.waitFor([&] { return holder.output() == "open\n"; }));
    const std::string link = ::testing::TempDir() + "port-link-" + std::to_string(::getpid());
    std::filesystem::create_symlink(port.path(), link);
    const auto holders = platform::portHolders(link);
    std::filesystem::remove(link);
    ASSERT_EQ(holders.size(), 1U);
    EXPECT_EQ(holders[0].pid, holder.pid());
}

TEST(PortHolders, AreInOrder) {
    const testing::Terminal port;
    testing::ChildProcess first(holding(port.path()));
    testing::ChildProcess second(holding(port.path()));
    ASSERT_TRUE(first.waitFor([&] { return first.output() == "open\n"; }));
    ASSERT_TRUE(second.waitFor([&] { return second.output() == "open\n"; }));
    const auto holders = platform::portHolders(port.path());
    ASSERT_EQ(holders.size(), 2U);
    EXPECT_LT(holders[0].pid, holders[1].pid);
}

TEST(PortHolders, AreNotThisProcess) {
    const testing::Terminal port; // holds both ends open
    EXPECT_THAT(platform::portHolders(port.path()), IsEmpty());
}

TEST(PortHolders, AreGoneWithTheProcess) {
    const testing::Terminal port;
    testing::ChildProcess holder(holding(port.path()));
    ASSERT_TRUE(holder.waitFor([&] { return !platform::portHolders(port.path()).empty(); }));
    holder.signal(SIGKILL);
    ASSERT_EQ(holder.wait(), 128 + SIGKILL);
    EXPECT_THAT(platform::portHolders(port.path()), IsEmpty());
}

TEST(PortHolders, OfAFileOrOfNothingAreNotLookedFor) {
    EXPECT_THAT(platform::portHolders("/etc/passwd"), IsEmpty());
    EXPECT_THAT(platform::portHolders("/nowhere"), IsEmpty());
}

} // namespace
} // namespace flashwriter

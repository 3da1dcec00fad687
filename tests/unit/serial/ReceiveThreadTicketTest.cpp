#include "serial/ReceiveThreadTicket.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace flashwriter {
namespace {

TEST(ReceiveThreadTicket, AThreadThatComesTooLateGetsNothing) {
    ReceiveThreadTicket ticket;
    EXPECT_TRUE(ticket.revoke());
    EXPECT_FALSE(ticket.claim());
    EXPECT_FALSE(ticket.inUse());
}

TEST(ReceiveThreadTicket, AThreadThatHasBegunIsWaitedFor) {
    ReceiveThreadTicket ticket;
    EXPECT_TRUE(ticket.claim());
    EXPECT_FALSE(ticket.revoke());
    EXPECT_TRUE(ticket.inUse());
    ticket.release();
    EXPECT_FALSE(ticket.inUse());
}

TEST(ReceiveThreadTicket, ExactlyOneSideWinsARace) {
    for (int round = 0; round < 2000; ++round) {
        ReceiveThreadTicket ticket;
        std::atomic<bool> go{false};
        bool claimed = false;
        std::thread thread([&] {
            while (!go) {
            }
            claimed = ticket.claim();
        });
        go = true;
        const bool revoked = ticket.revoke();
        thread.join();
        ASSERT_NE(claimed, revoked);
    }
}

} // namespace
} // namespace flashwriter

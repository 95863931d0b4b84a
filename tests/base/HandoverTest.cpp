// The values are right in any case: it is the thread sanitizer that tells whether
// their memory is in order.

#include "base/Handover.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace {

/// Says that it is somebody's turn, and orders no memory.
class Turn {
public:
    void come() { reached.fetch_add(1, std::memory_order_relaxed); }
    void wait(int places = 1) const
    {
        while (reached.load(std::memory_order_relaxed) < places)
            std::this_thread::yield();
    }

private:
    std::atomic<int> reached = 0;
};

} // namespace

TEST(Handover, WhatWasDoneBeforeIsThereForWhoeverTakes)
{
    Handover handover;
    Turn turn;
    int value = 0;
    int seen = 0;
    std::thread taker([&] {
        turn.wait();
        handover.take();
        seen = value;
    });
    value = 42;
    handover.give();
    turn.come();
    taker.join();
    EXPECT_EQ(seen, 42);
}

TEST(Handover, OneTakingIsEnoughForAllThatWasGiven)
{
    Handover handover;
    Turn first;
    Turn both;
    int value = 0;
    int other = 0;
    std::thread giver([&] {
        value = 1;
        handover.give();
        first.come();
        both.come();
    });
    std::thread second([&] {
        other = 2;
        first.wait();
        handover.give();
        both.come();
    });
    both.wait(2);
    handover.take();
    EXPECT_EQ(value + other, 3);
    giver.join();
    second.join();
}

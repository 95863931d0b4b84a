#pragma once

#include "rip/RunGuard.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <limits>
#include <mutex>

/// Ties the rips of a walk to its steps, so that some last for many of them: each
/// reading of the drive, and the beginning of a run, waits until enough steps were
/// taken. Sees every run of a disc or an image, and whether two came together.
class StepPace : public RunGuard {
public:
    /// For a new window.
    /// @param each   readings that a step allows
    /// @param start  readings that the beginning of a run counts as
    void restart(int each, int start)
    {
        const std::lock_guard lock(guard);
        allowed = spent = 0;
        perStep = each;
        perStart = start;
    }
    void step() { raise(perStep); }
    /// Lets everything go on to its end.
    void release() { raise(std::numeric_limits<int>::max() / 2); }

    /// On a thread that rips.
    void reading() { take(1); }
    void begin() override
    {
        if (running.fetch_add(1) != 0)
            together = true;
        ++begun;
        take(perStart);
    }
    void end() override { --running; }

    int runsNow() const { return running; }
    int runs() const { return begun; }
    bool hadTwoAtOnce() const { return together; }

private:
    void raise(int by)
    {
        {
            const std::lock_guard lock(guard);
            // What nobody waited for is not saved up.
            allowed = std::max(allowed, spent) + by;
        }
        changed.notify_all();
    }
    void take(int price)
    {
        std::unique_lock lock(guard);
        spent += price;
        changed.wait(lock, [this] { return spent <= allowed; });
    }

    std::mutex guard;
    std::condition_variable changed;
    int allowed = 0;
    int spent = 0;
    int perStep = 1;
    int perStart = 0;
    std::atomic<int> running = 0;
    std::atomic<int> begun = 0;
    std::atomic<bool> together = false;
    RunGuardOverride inPlace{*this};
};

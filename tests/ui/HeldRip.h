#pragma once

#include "rip/RunGuard.h"

#include <atomic>
#include <semaphore>

/// Holds a thread of the program at a place that it comes by, until it is let go.
class Gate {
public:
    /// @param freePasses  calls that go through before the one that is held
    explicit Gate(int freePasses = 0) : left(freePasses) {}
    ~Gate() { open(); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// On the thread that is to be held.
    void pass()
    {
        if (left.fetch_sub(1) != 0)
            return;
        holding = true;
        opened.acquire();
    }
    bool isHolding() const { return holding; }
    void open() { opened.release(); }

private:
    std::atomic<int> left;
    std::atomic<bool> holding = false;
    std::counting_semaphore<> opened{0};
};

/// Holds the run of a disc or an image at its start, with the drive in its hands.
class HeldStart : public RunGuard {
public:
    void begin() override { gate.pass(); }
    void end() override {}

    Gate gate;

private:
    RunGuardOverride inPlace{*this};
};

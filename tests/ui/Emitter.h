#pragma once

#include "rip/RipWorker.h"

#include <atomic>
#include <functional>
#include <thread>

/// Emits a worker's signals from a thread of its own, as a run does.
class Emitter {
public:
    RipWorker worker;

    void start(std::function<void(RipWorker&)> body)
    {
        thread = std::thread([this, body] {
            body(worker);
            done = true;
        });
    }
    ~Emitter()
    {
        if (thread.joinable())
            thread.join();
    }

    std::atomic<bool> done = false;

private:
    std::thread thread;
};

inline SectorResult sectorAt(quint32 lba)
{
    SectorResult sector;
    sector.lba = lba;
    return sector;
}

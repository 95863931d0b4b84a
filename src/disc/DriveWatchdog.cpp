#include "disc/DriveWatchdog.h"

#include "disc/DriveTimeOut.h"

namespace {

constexpr int stepMs = 50;

} // namespace

void ReadEnd::signal()
{
    // Told under the lock: the waiting thread may end this object right after.
    const std::lock_guard lock(mutex);
    done = true;
    told.notify_all();
}

bool ReadEnd::within(std::chrono::milliseconds time)
{
    std::unique_lock lock(mutex);
    return told.wait_for(lock, time, [this] { return done; });
}

void driveWatchdog(ReadEnd& end, const CancelRead& cancel, quint32 lba)
{
    for (int elapsed = 0; elapsed < driveTimeOutMs; elapsed += stepMs) {
        if (end.within(std::chrono::milliseconds(stepMs)))
            return;
    }
    cancel([lba] { logUnresponsiveSector(lba); });
}

ReadGuard::ReadGuard(CancelRead cancel, quint32 lba)
    : cancelRead(std::move(cancel)), watchdog([this, lba] { driveWatchdog(end, cancelRead, lba); })
{
}

ReadGuard::~ReadGuard()
{
    end.signal();
    watchdog.join();
}

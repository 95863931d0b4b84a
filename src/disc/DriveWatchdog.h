#pragma once

#include <QtGlobal>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// The protection of a blocking read on a platform whose read command carries
/// no time-out of its own.

/// The end of one read: told once by the thread that reads, awaited by the watchdog.
class ReadEnd {
public:
    virtual ~ReadEnd() = default;

    void signal();
    /// True as soon as the end has been told, false after the time.
    virtual bool within(std::chrono::milliseconds time);

private:
    std::mutex mutex;
    std::condition_variable told;
    bool done = false;
};

using BeforeCancelling = std::function<void()>;
/// Makes the blocked read return with a failure, from another thread, and calls
/// what it is given right before; neither when there is no thread to cancel: the
/// read then ends by itself.
using CancelRead = std::function<void(const BeforeCancelling& beforeCancelling)>;

/// Waits for the end of a read that starts at a sector, and cancels it when the
/// time-out has passed. Runs on a thread of its own; everything that it is given
/// belongs to the reading thread, which joins it.
void driveWatchdog(ReadEnd& end, const CancelRead& cancel, quint32 lba);

/// Watches over one read for its own lifetime, which begins right before the
/// read and ends right after it. Ending it costs no waiting.
class ReadGuard {
public:
    ReadGuard(CancelRead cancel, quint32 lba);
    ~ReadGuard();
    ReadGuard(const ReadGuard&) = delete;
    ReadGuard& operator=(const ReadGuard&) = delete;

private:
    ReadEnd end;
    CancelRead cancelRead;
    std::thread watchdog; // last, so that it starts when the rest is there
};

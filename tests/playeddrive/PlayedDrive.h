#pragma once

#include "playeddrive/CookedRequests.h"
#include "playeddrive/DriveDescription.h"
#include "support/SgIoStandIn.h"

#include <QtGlobal>

#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

/// The drive that is played to the program which this library is loaded into: a
/// simulated drive as the environment describes it, behind the operating system's
/// calls. There is one where TARVEL_DRIVE_FOLDER names a folder, which takes the files
/// that the kernel has of a drive and `report`: the commands, the sectors and the
/// nanoseconds of the drive's clock so far, one a line.
///
/// The drive's time is not waited for. A thread sees the time of its own commands on
/// its clock, and its sleeps cost the drive's time once it has sent a command. Any
/// thread may send commands; they queue up.
class PlayedDrive {
public:
    /// Null where none is played.
    static PlayedDrive* inUse();

    const std::string& folder() const { return home; }
    /// As ioctl of a file of the drive's.
    int request(int file, unsigned long code, void* argument);
    /// Lets the drive's time pass in place of a sleep.
    void sleep(qint64 nanoseconds);
    /// Whether this thread has sent a command.
    static bool hasCommanded();
    /// By how much this thread's clock is ahead of the machine's.
    static qint64 ownNanoseconds();

private:
    static constexpr int transferLimit = 512 * 1024; ///< bytes of a request

    explicit PlayedDrive(std::string folder);
    void writeReport(qint64 passed);
    void traceRequest(unsigned long code, const void* argument, int result, qint64 passed) const;

    std::string home;
    DriveDescription description = DriveDescription::fromEnvironment();
    SimulatedDrive simulated;
    std::unique_ptr<DriveDevice> mechanism;
    std::optional<SgIoStandIn> system;
    CookedRequests cooked{simulated, transferLimit};
    std::mutex mutex;
    std::FILE* report = nullptr;
    std::FILE* trace = nullptr; ///< of TARVEL_DRIVE_TRACE: each request
};

#include "disc/TocReader.h"

#include "disc/DrivePlatform.h"
#include "disc/TocTable.h"

#include <QDebug>

#include <optional>

namespace {

constexpr int tocAttempts = 5;
constexpr int tocPauseMs = 300;
constexpr int readyPauseMs = 250;
constexpr qint64 nanosecondsOfMs = 1'000'000;
constexpr qint64 readyPatience = 10'000 * nanosecondsOfMs;

/// Patience with a drive that is still looking at its disc. It has an end, once
/// for all checks.
class ReadinessWait {
public:
    DriveReply untilReady(DriveDevice& device)
    {
        DriveReply reply = device.checkVerify();
        while (reply.failure == DriveFailure::becomingReady && mayPause()) {
            drivePlatform().sleepMilliseconds(readyPauseMs);
            reply = device.checkVerify();
        }
        return reply;
    }

private:
    bool mayPause()
    {
        const qint64 now = drivePlatform().nowNanoseconds();
        if (!started)
            started = now;
        return now + readyPauseMs * nanosecondsOfMs - *started <= readyPatience;
    }

    std::optional<qint64> started;
};

} // namespace

DiscToc readDiscToc(DriveDevice& device, DriveFailure& failure)
{
    ReadinessWait wait;
    for (int attempt = 1; attempt <= tocAttempts; ++attempt) {
        TocTable table{};
        const DriveReply ready = wait.untilReady(device);
        const DriveReply reply = device.readToc(table);
        failure = ready.ok ? reply.failure : ready.failure;
        if (reply.ok && plausibleToc(table))
            return discFromToc(table);
        if (!reply.ok) {
            qWarning() << "CdDrive: IOCTL_CDROM_READ_TOC failed (attempt" << attempt
                       << "):" << reply.errorNumber;
        } else {
            qWarning() << "CdDrive: invalid TOC returned (attempt" << attempt << ") FirstTrack=" << table[2]
                       << "LastTrack=" << table[3];
        }
        if (attempt < tocAttempts)
            drivePlatform().sleepMilliseconds(tocPauseMs);
    }
    qWarning() << "CdDrive: could not obtain a valid TOC after" << tocAttempts << "attempts";
    return {};
}

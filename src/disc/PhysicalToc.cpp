// The table of contents of a physical disc.

#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

namespace {

constexpr int tocAttempts = 5;
constexpr int tocPauseMs = 300;
constexpr int readyPauseMs = 250;
constexpr qint64 nanosecondsOfMs = 1'000'000;
constexpr qint64 readyPatience = 10'000 * nanosecondsOfMs;
constexpr quint32 sessionGapSectors = 11400; // lead-out and lead-in between two sessions

using TocTable = std::array<quint8, 804>;

quint32 entryLba(const quint8* entry)
{
    const quint32 seconds = quint32{entry[5]} * 60 + entry[6];
    return seconds * SECTORS_PER_SECOND + entry[7] - LEAD_IN_SECTORS;
}

const quint8* tocEntry(const TocTable& table, int place)
{
    return table.data() + 4 + place * 8;
}

bool plausibleToc(const TocTable& table)
{
    const int first = table[2];
    const int last = table[3];
    return first != 0 && last >= first && last < 100;
}

// In a multi-session disc the last audio track would include the gap between
// the sessions.
void cutSessionGaps(QList<TrackInfo>& tracks)
{
    for (qsizetype i = 0; i + 1 < tracks.size(); ++i) {
        TrackInfo& track = tracks[i];
        const TrackInfo& next = tracks[i + 1];
        if (!track.isData && next.isData && next.startLba > track.startLba + sessionGapSectors) {
            track.endLba = next.startLba - sessionGapSectors - 1;
            track.seconds = trackSeconds(track.startLba, track.endLba);
        }
    }
}

DiscToc discFromToc(const TocTable& table)
{
    DiscToc disc;
    const int first = table[2];
    const int count = table[3] - first + 1;
    for (int i = 0; i < count; ++i) {
        const quint8* entry = tocEntry(table, i);
        TrackInfo track;
        track.number = first + i;
        track.startLba = entryLba(entry);
        track.endLba = entryLba(tocEntry(table, i + 1)) - 1;
        track.seconds = trackSeconds(track.startLba, track.endLba);
        track.isData = (entry[1] & 0x04) != 0;
        disc.tracks.append(track);
    }
    cutSessionGaps(disc.tracks);
    disc.totalSectors = entryLba(tocEntry(table, count));
    return disc;
}

// One past the last sector of each audio track that data follows.
QList<quint32> audioEnds(const QList<TrackInfo>& tracks)
{
    QList<quint32> ends;
    for (qsizetype i = 0; i + 1 < tracks.size(); ++i) {
        if (!tracks[i].isData && tracks[i + 1].isData)
            ends.append(tracks[i].endLba + 1);
    }
    return ends;
}

// From the first audio sector to the last; empty where the table makes no sense.
SectorRange audioArea(const QList<TrackInfo>& tracks)
{
    SectorRange area{std::numeric_limits<quint32>::max(), 0};
    for (const TrackInfo& track : tracks) {
        if (!track.isData)
            area = {std::min(area.first, track.startLba), std::max(area.end, track.endLba + 1)};
    }
    return area;
}

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

DiscToc CdDrive::readToc()
{
    if (image)
        return imageDisc;
    if (!device)
        return {};
    ReadinessWait wait;
    for (int attempt = 1; attempt <= tocAttempts; ++attempt) {
        TocTable table{};
        const DriveReply ready = wait.untilReady(*device);
        const DriveReply reply = device->readToc(table);
        failureOfLastToc = ready.ok ? reply.failure : ready.failure;
        if (reply.ok && plausibleToc(table)) {
            DiscToc disc = discFromToc(table);
            sectorLimit = disc.totalSectors;
            batchBounds = audioEnds(disc.tracks);
            device->setAudioArea(audioArea(disc.tracks));
            return disc;
        }
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

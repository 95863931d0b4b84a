#include "disc/C2Probe.h"

#include "disc/DiscModel.h"
#include "disc/SectorBatch.h"

#include <QDebug>

#include <numeric>

namespace {

constexpr int probeAttempts = 3;

bool answers(DriveDevice& device, quint32 lba, quint32 count, SectorBatch& batch, DriveReply& reply)
{
    for (int attempt = 0; attempt < probeAttempts; ++attempt) {
        if (readBatchWithC2(device, lba, count, batch, reply))
            return true;
    }
    return false;
}

} // namespace

bool deliversC2(DriveDevice& device, quint32 lba, quint32 count)
{
    SectorBatch batch;
    DriveReply reply;
    bool answered = answers(device, lba, count, batch, reply);
    // A hole in the batch tells nothing of the pointers; a sector beside it may.
    const bool mayBeAHole =
        reply.failure == DriveFailure::unreadable || reply.failure == DriveFailure::timedOut;
    for (const quint32 alone : {lba, lba + count / 2, lba + count - 1}) {
        if (!answered && mayBeAHole && count > 1)
            answered = answers(device, alone, 1, batch, reply);
    }
    if (!answered) {
        qWarning() << "[CdDrive] C2: READ CD with C2 not available (err=" << reply.errorNumber << ")";
        return false;
    }
    const qint64 sum = std::accumulate(batch.c2Counts.cbegin(), batch.c2Counts.cend(), qint64{0});
    const qint64 bits = batch.c2Counts.size() * RAW_SECTOR_BYTES;
    if (2 * sum > bits) {
        qWarning() << "[CdDrive] C2: values look invalid (" << sum << "/" << bits << "bits set)";
        return false;
    }
    qDebug() << "[CdDrive] C2: supported";
    return true;
}

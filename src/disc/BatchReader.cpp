#include "disc/BatchReader.h"

#include "disc/DiscModel.h"
#include "disc/DrivePlatform.h"

#include <utility>

namespace {

constexpr quint32 immediateAttempts = 5;
constexpr quint32 seekAttempts = 20;
constexpr quint32 patientAttempts = 10;
static_assert(immediateAttempts + seekAttempts + patientAttempts == LADDER_ATTEMPTS);
constexpr int seekPauseMs = 10;
constexpr int patientPauseMs = 100;
constexpr quint32 seekDistance = 100;

} // namespace

std::optional<quint32> BatchReader::read(quint32 lba, quint32 count, qint64 started, SectorBatch& batch)
{
    const bool wasAway = absence.isLasting();
    const auto failedAttempts = climbLadder(lba, count, started, batch);
    if (failedAttempts || (wasAway && absence.isLasting()))
        return failedAttempts;
    return readAlone(lba, count, batch) ? std::optional(LADDER_ATTEMPTS) : std::nullopt;
}

std::optional<quint32> BatchReader::climbLadder(quint32 lba, quint32 count, qint64 started,
                                                SectorBatch& batch)
{
    const bool wasAway = absence.isLasting();
    for (quint32 failed = 0; failed < LADDER_ATTEMPTS; ++failed) {
        if (count == 1 && device.holes().isExhausted(lba))
            return std::nullopt;
        if (failed >= immediateAttempts + seekAttempts) {
            drivePlatform().sleepMilliseconds(patientPauseMs);
        } else if (failed >= immediateAttempts) {
            seekNear(lba);
            drivePlatform().sleepMilliseconds(seekPauseMs);
        }
        if (failed > 0)
            started = drivePlatform().nowNanoseconds();
        if (attempt(lba, count, started, batch))
            return failed;
        if (wasAway && absence.isLasting())
            return std::nullopt;
    }
    return std::nullopt;
}

// What is left when the ladder has failed: a batch may have failed for another
// sector's sake, and a sector that was asked for alone gets a last attempt from a
// cold position before the drive's word is final.
bool BatchReader::readAlone(quint32 lba, quint32 failedBatch, SectorBatch& batch)
{
    KnownHoles& holes = device.holes();
    if (failedBatch > 1) {
        holes.batchGivenUp(lba, failedBatch);
        return attempt(lba, 1, drivePlatform().nowNanoseconds(), batch);
    }
    if (!holes.isExhausted(lba))
        return false;
    device.goFar(lba, ColdReads::Effort::Once);
    if (attempt(lba, 1, drivePlatform().nowNanoseconds(), batch))
        return true;
    holes.add(lba);
    return false;
}

bool BatchReader::attempt(quint32 lba, quint32 count, qint64 started, SectorBatch& batch)
{
    SectorBatch read;
    DriveReply reply;
    const bool delivered = withC2 ? readBatchWithC2(device, lba, count, read, reply)
                                  : readBatchPlain(device, lba, count, read, reply);
    absence.note(delivered, reply.failure);
    if (!delivered)
        return false;
    finished = drivePlatform().nowNanoseconds();
    for (const quint32 dead : slowNoise.delivered(lba, read.data, read.c2Counts, finished - started))
        device.holes().add(dead);
    batch = std::move(read);
    return true;
}

void BatchReader::seekNear(quint32 lba)
{
    QByteArray thrownAway(READ_BATCH_SECTORS * RAW_SECTOR_BYTES, Qt::Uninitialized);
    device.readRaw(lba > seekDistance ? lba - seekDistance : lba + seekDistance, READ_BATCH_SECTORS,
                   {reinterpret_cast<quint8*>(thrownAway.data()), static_cast<size_t>(thrownAway.size())},
                   false);
}

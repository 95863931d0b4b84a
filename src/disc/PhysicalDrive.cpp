#include "disc/PhysicalDrive.h"

#include "disc/C2Probe.h"
#include "disc/DriveModel.h"
#include "disc/DrivePlatform.h"
#include "disc/TocReader.h"

#include <utility>

namespace {

constexpr quint32 freshDistance = 200;  // sectors the head travels before a re-read
constexpr quint32 flushDistance = 2000; // far enough to leave a drive's cache

quint32 farFrom(quint32 lba, quint32 distance)
{
    return lba <= distance ? lba + distance : lba - distance;
}

} // namespace

DiscToc PhysicalDrive::readToc(DriveFailure& failure)
{
    DiscToc disc = readDiscToc(device, failure);
    if (!disc.tracks.isEmpty()) {
        bounds = DiscBounds(disc);
        device.setAudioArea(bounds.audioArea());
    }
    return disc;
}

QByteArray PhysicalDrive::readSector(quint32 lba, ReadPurpose purpose)
{
    QByteArray sector;
    if (batch.holds(lba)) {
        lastFigures.retries = 0;
        lastFigures.c2Errors = batch.c2Errors(lba);
        sector = batch.sector(lba);
    } else {
        sector = readBatch(lba, purpose);
    }
    if (purpose == ReadPurpose::judged && !sector.isEmpty())
        device.handedOut(lba);
    return sector;
}

// One far read is what the sample check of a sector that C2 calls clean may cost on a
// disc without a fault. A reading that votes takes three, whatever the drive has shown
// elsewhere: damage on the way changes what its buffer holds, and an answer out of that
// would be one vote more for the same reading.
QByteArray PhysicalDrive::readSectorFresh(quint32 lba)
{
    const bool again = lba == std::exchange(lastFreshLba, lba);
    return readFromAfar(lba, c2Enabled() && !again ? ColdReads::Effort::Once : ColdReads::Effort::Thorough);
}

QByteArray PhysicalDrive::readFromAfar(quint32 lba, ColdReads::Effort effort)
{
    batch = SectorBatch();
    if (!device.holes().isHole(lba)) {
        device.makeCold(lba, boundedBatch(lba), effort);
        readBatch(farFrom(lba, freshDistance), ReadPurpose::unjudged);
    }
    QByteArray sector = readBatch(lba, ReadPurpose::judged);
    if (!sector.isEmpty())
        device.handedOut(lba);
    return sector;
}

void PhysicalDrive::flushCache(quint32 lba)
{
    device.makeAllCold(lba);
    readBatch(farFrom(lba, flushDistance), ReadPurpose::unjudged);
    batch = SectorBatch();
}

QByteArray PhysicalDrive::readBatch(quint32 lba, ReadPurpose purpose)
{
    lastFigures = ReadFigures();
    const quint32 count = boundedBatch(lba);
    if (count == 0)
        return {};
    if (device.holes().isHole(lba)) {
        lastFigures.retries = LADDER_ATTEMPTS;
        return {};
    }

    const qint64 started = drivePlatform().nowNanoseconds();
    const bool wentAway =
        purpose == ReadPurpose::judged && device.makeCold(lba, count, ColdReads::Effort::Thorough);
    const qint64 ready = wentAway ? drivePlatform().nowNanoseconds() : started;
    const auto failedAttempts = reader.read(lba, count, ready, batch);
    lastFigures.retries = failedAttempts.value_or(LADDER_ATTEMPTS);
    if (!failedAttempts)
        return {};
    lastFigures.c2Errors = batch.c2Errors(lba);
    lastFigures.speedKBs = speed.afterBatch(started, reader.finishedAt(), batch.count);
    return batch.sector(lba);
}

quint32 PhysicalDrive::boundedBatch(quint32 lba) const
{
    return device.holes().boundedBatch(lba, bounds.boundedBatch(lba, READ_BATCH_SECTORS));
}

bool PhysicalDrive::probeC2(quint32 lba)
{
    reader.setC2Enabled(false);
    const quint32 count = boundedBatch(lba);
    c2Supported = count != 0 && deliversC2(device, lba, count);
    return c2Supported;
}

void PhysicalDrive::setC2Enabled(bool on)
{
    const bool enabled = on && c2Supported;
    if (enabled != c2Enabled())
        batch = SectorBatch();
    reader.setC2Enabled(enabled);
}

bool PhysicalDrive::isUsb()
{
    const auto descriptor = device.descriptor();
    return descriptor && descriptor->usb;
}

QString PhysicalDrive::queryModel()
{
    return driveModelText(device);
}

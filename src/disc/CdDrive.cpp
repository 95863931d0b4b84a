#include "disc/CdDrive.h"

#include "disc/DrivePlatform.h"

#include <utility>

namespace {

constexpr quint32 freshDistance = 200;  // sectors the head travels before a re-read
constexpr quint32 flushDistance = 2000; // far enough to leave a drive's cache

quint32 farFrom(quint32 lba, quint32 distance)
{
    return lba <= distance ? lba + distance : lba - distance;
}

} // namespace

CdDrive::CdDrive() = default;

CdDrive::~CdDrive()
{
    release();
}

QStringList CdDrive::enumerateDrives()
{
    return drivePlatform().enumerateDrives();
}

bool CdDrive::borrow()
{
    Lease expected = Lease::none;
    return lease.compare_exchange_strong(expected, Lease::borrowed);
}

void CdDrive::giveBack()
{
    Lease expected = Lease::borrowed;
    if (lease.compare_exchange_strong(expected, Lease::none))
        return;
    if (expected == Lease::closeOnReturn) {
        release();
        lease = Lease::none;
    }
}

void CdDrive::close()
{
    Lease expected = Lease::borrowed;
    if (lease.compare_exchange_strong(expected, Lease::closeOnReturn) || expected == Lease::closeOnReturn)
        return;
    release();
}

void CdDrive::release()
{
    device.reset();
    imageFile.close();
    imagePiece.clear();
    imageDisc = DiscToc();
    emptyCache();
    sectorLimit = 0;
    batchBounds.clear();
    c2Supported = false;
    c2On = false;
    bytesRead = 0;
    timingStarted = false;
    lastFreshLba = noBatch;
    slowNoise = SlowNoise();
    awaySince.reset();
}

void CdDrive::emptyCache()
{
    batchCache.clear();
    batchStartLba = noBatch;
    batchCount = 0;
    batchC2Counts.clear();
}

QByteArray CdDrive::readSector(quint32 lba)
{
    return image ? readImageSector(lba) : readPhysicalSector(lba, Purpose::judged);
}

QByteArray CdDrive::readSectorUnjudged(quint32 lba)
{
    return image ? readImageSector(lba) : readPhysicalSector(lba, Purpose::unjudged);
}

bool CdDrive::isCached(quint32 lba) const
{
    return batchStartLba != noBatch && lba >= batchStartLba && lba - batchStartLba < batchCount;
}

QByteArray CdDrive::cachedSector(quint32 lba) const
{
    return batchCache.mid(static_cast<qsizetype>(lba - batchStartLba) * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
}

QByteArray CdDrive::readPhysicalSector(quint32 lba, Purpose purpose)
{
    QByteArray sector;
    if (isCached(lba)) {
        retriesOfLastRead = 0;
        c2OfLastRead =
            static_cast<quint32>(batchC2Counts.value(static_cast<qsizetype>(lba - batchStartLba), 0));
        sector = cachedSector(lba);
    } else {
        sector = readBatch(lba, purpose);
    }
    if (purpose == Purpose::judged && !sector.isEmpty() && device)
        device->handedOut(lba);
    return sector;
}

// One far read is what the sample check of a sector that C2 calls clean may cost on a
// disc without a fault. A reading that votes takes three, whatever the drive has shown
// elsewhere: damage on the way changes what its buffer holds, and an answer out of that
// would be one vote more for the same reading.
QByteArray CdDrive::readSectorFresh(quint32 lba)
{
    if (image)
        return readImageSector(lba);
    const bool again = lba == std::exchange(lastFreshLba, lba);
    return readFromAfar(lba, c2On && !again ? ColdReads::Effort::Once : ColdReads::Effort::Thorough);
}

QByteArray CdDrive::readFromAfar(quint32 lba, ColdReads::Effort effort)
{
    emptyCache();
    if (device && !device->holes().isHole(lba)) {
        device->makeCold(lba, boundedBatch(lba), effort);
        readBatch(farFrom(lba, freshDistance), Purpose::unjudged);
    }
    const QByteArray sector = readBatch(lba, Purpose::judged);
    if (!sector.isEmpty())
        device->handedOut(lba);
    return sector;
}

void CdDrive::flushDriveCache(quint32 lba)
{
    if (image)
        return;
    emptyCache();
    if (device)
        device->makeAllCold(lba);
    readBatch(farFrom(lba, flushDistance), Purpose::unjudged);
    emptyCache();
}

void CdDrive::setC2Enabled(bool on)
{
    const bool enabled = on && c2Supported;
    if (enabled != c2On)
        emptyCache();
    c2On = enabled;
}

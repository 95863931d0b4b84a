#include "disc/CdDrive.h"

#include "disc/DrivePlatform.h"

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

void CdDrive::borrow()
{
    Lease expected = Lease::none;
    lease.compare_exchange_strong(expected, Lease::borrowed);
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

QByteArray CdDrive::readPhysicalSector(quint32 lba, Purpose purpose)
{
    QByteArray sector;
    if (isCached(lba)) {
        const auto place = static_cast<qsizetype>(lba - batchStartLba);
        retriesOfLastRead = 0;
        c2OfLastRead = static_cast<quint32>(batchC2Counts.value(place, 0));
        sector = batchCache.mid(place * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    } else {
        sector = readBatch(lba, purpose);
    }
    if (purpose == Purpose::judged && !sector.isEmpty() && device)
        device->handedOut(lba);
    return sector;
}

// A sample check of a sector without a fault may cost one far read; whatever else
// is read again is in doubt.
QByteArray CdDrive::readSectorFresh(quint32 lba)
{
    if (image)
        return readImageSector(lba);
    emptyCache();
    if (device && !device->holes().isHole(lba)) {
        const bool maybeCheck = c2On && lba != lastFreshLba;
        device->makeCold(lba, boundedBatch(lba),
                         maybeCheck ? ColdReads::Effort::Once : ColdReads::Effort::Thorough);
        readBatch(farFrom(lba, freshDistance), Purpose::unjudged);
    }
    lastFreshLba = lba;
    return readPhysicalSector(lba, Purpose::judged);
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

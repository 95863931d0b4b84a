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
    if (image)
        return readImageSector(lba);
    if (batchStartLba == noBatch || lba < batchStartLba || lba - batchStartLba >= batchCount)
        return readBatch(lba);
    const auto place = static_cast<qsizetype>(lba - batchStartLba);
    retriesOfLastRead = 0;
    c2OfLastRead = static_cast<quint32>(batchC2Counts.value(place, 0));
    return batchCache.mid(place * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
}

QByteArray CdDrive::readSectorFresh(quint32 lba)
{
    if (image)
        return readImageSector(lba);
    emptyCache();
    readBatch(farFrom(lba, freshDistance));
    return readBatch(lba);
}

void CdDrive::flushDriveCache(quint32 lba)
{
    if (image)
        return;
    emptyCache();
    readBatch(farFrom(lba, flushDistance));
    emptyCache();
}

void CdDrive::setC2Enabled(bool on)
{
    const bool enabled = on && c2Supported;
    if (enabled != c2On)
        emptyCache();
    c2On = enabled;
}

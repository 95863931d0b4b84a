#include "disc/CdDrive.h"

#include "disc/DrivePlatform.h"

#include <utility>

namespace {

constexpr quint32 freshDistance = 200;  // sectors the head travels before a re-read
constexpr quint32 flushDistance = 2000; // far enough to leave a drive's cache
constexpr int forgetfulDrive = 3;       // differing answers after one far read that show it

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
    forgetfulAnswers = 0;
    equalAfterOne = false;
    remembersAfterOne = false;
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
        c2OfLastRead = static_cast<quint32>(batchC2Counts.value(static_cast<qsizetype>(lba - batchStartLba), 0));
        sector = cachedSector(lba);
    } else {
        sector = readBatch(lba, purpose);
    }
    if (purpose == Purpose::judged && !sector.isEmpty() && device)
        device->handedOut(lba);
    return sector;
}

// One far read is enough for most drives, and answers that differ from those before
// them show that it was. Until then three are made where an equal answer would be
// one vote more out of a buffer of several segments; but one for the first re-read,
// which may be the sample check of a disc without a fault.
QByteArray CdDrive::readSectorFresh(quint32 lba)
{
    if (image)
        return readImageSector(lba);
    const bool again = lba == std::exchange(lastFreshLba, lba);
    const bool handed = isCached(lba) && device && device->wasHandedOut(lba, 1);
    const QByteArray before = handed ? cachedSector(lba) : QByteArray();
    const bool once = !remembersAfterOne ? !again || forgetfulAnswers >= forgetfulDrive : c2On && !again;

    const QByteArray sector = readFromAfar(lba, once ? ColdReads::Effort::Once : ColdReads::Effort::Thorough);
    if (sector.isEmpty())
        return sector;
    device->handedOut(lba);
    if (!before.isEmpty()) {
        const bool differs = sector != before;
        if (differs && once)
            ++forgetfulAnswers;
        else if (differs && again && equalAfterOne)
            remembersAfterOne = true;
        equalAfterOne = once && !differs;
    }
    return sector;
}

QByteArray CdDrive::readFromAfar(quint32 lba, ColdReads::Effort effort)
{
    emptyCache();
    if (device && !device->holes().isHole(lba)) {
        device->makeCold(lba, boundedBatch(lba), effort);
        readBatch(farFrom(lba, freshDistance), Purpose::unjudged);
    }
    return readBatch(lba, Purpose::judged);
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

// The physical half of CdDrive: batches with their ladder of retries, C2
// pointers, speed, model text and bus.

#include "base/ByteOrder.h"
#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"

#include <QDebug>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <memory>
#include <numeric>

namespace {

constexpr quint32 immediateAttempts = 5;
constexpr quint32 seekAttempts = 20;
constexpr quint32 patientAttempts = 10;
static_assert(immediateAttempts + seekAttempts + patientAttempts == LADDER_ATTEMPTS);
constexpr int seekPauseMs = 10;
constexpr int patientPauseMs = 100;
constexpr quint32 seekDistance = 100;
constexpr qint64 patienceWithAbsence = 30'000'000'000; // ns
constexpr int probeAttempts = 3;
constexpr size_t inquiryBytes = 96;
constexpr size_t passThroughAlignment = 64;

quint8* alignedStart(QByteArray& block)
{
    void* start = block.data();
    auto space = static_cast<size_t>(block.size());
    return static_cast<quint8*>(std::align(passThroughAlignment, 1, start, space));
}

QString cleanText(const QByteArray& text)
{
    return QString::fromLatin1(text.left(text.indexOf('\0') < 0 ? text.size() : text.indexOf('\0')))
        .simplified();
}

QString joinModel(const QString& vendor, const QString& product)
{
    if (product.isEmpty())
        return {};
    return vendor.isEmpty() ? product : vendor + QStringLiteral(" - ") + product;
}

} // namespace

bool CdDrive::open(const QString& letter)
{
    if (isBorrowed())
        return false;
    close();
    image = false;
    c2OfLastRead = 0;
    auto opened = drivePlatform().open(letter);
    if (!opened) {
        qWarning().noquote() << "CdDrive: cannot open" << letter;
        return false;
    }
    device = std::make_unique<ColdReads>(std::move(opened));
    driveName = letter;
    return true;
}

quint32 CdDrive::boundedBatch(quint32 lba) const
{
    quint32 count = READ_BATCH_SECTORS;
    if (sectorLimit != 0)
        count = lba >= sectorLimit ? 0 : std::min(count, sectorLimit - lba);
    // A drive refuses a batch that reaches from audio into data or into the gap
    // behind a session, and the sound sectors in it would be lost as well.
    for (const quint32 bound : batchBounds) {
        if (lba < bound)
            count = std::min(count, bound - lba);
    }
    return device ? device->holes().boundedBatch(lba, count) : count;
}

bool CdDrive::readRawC2(quint32 lba, quint32 count, QByteArray& data, QList<int>& c2Counts)
{
    if (!device || count < 1)
        return false;
    std::array<quint8, 12> command{0xBE, 0x04};
    byteorder::writeBig(command.data() + 2, lba);
    command[6] = static_cast<quint8>(count >> 16);
    command[7] = static_cast<quint8>(count >> 8);
    command[8] = static_cast<quint8>(count);
    command[9] = 0x12; // user data and the 294-byte C2 block

    const size_t length = size_t{count} * RAW_PLUS_C2_BYTES;
    QByteArray block(static_cast<qsizetype>(length + passThroughAlignment), '\0');
    quint8* bytes = alignedStart(block);
    lastReply = device->passThrough(command, {bytes, length});
    if (!lastReply.delivered(length))
        return false;

    data.clear();
    data.reserve(static_cast<qsizetype>(count) * RAW_SECTOR_BYTES);
    c2Counts.clear();
    for (quint32 i = 0; i < count; ++i) {
        const quint8* sector = bytes + size_t{i} * RAW_PLUS_C2_BYTES;
        data.append(reinterpret_cast<const char*>(sector), RAW_SECTOR_BYTES);
        const quint8* pointers = sector + RAW_SECTOR_BYTES;
        c2Counts.append(std::accumulate(pointers, pointers + C2_BLOCK_BYTES, 0,
                                        [](int sum, quint8 bits) { return sum + std::popcount(bits); }));
    }
    return true;
}

// A batch that comes in takes the place of the one in the cache.
bool CdDrive::attemptBatch(quint32 lba, quint32 count, qint64 started)
{
    QByteArray data;
    QList<int> c2Counts;
    bool delivered = false;
    if (c2On) {
        delivered = readRawC2(lba, count, data, c2Counts);
    } else {
        data.resize(static_cast<qsizetype>(count) * RAW_SECTOR_BYTES);
        const std::span bytes{reinterpret_cast<quint8*>(data.data()), static_cast<size_t>(data.size())};
        lastReply = device->readRaw(lba, count, bytes, true);
        delivered = lastReply.delivered(bytes.size());
    }
    noteAbsence(!delivered && lastReply.failure == DriveFailure::notReady);
    if (!delivered)
        return false;
    batchTime = drivePlatform().nowNanoseconds();
    for (const quint32 dead : slowNoise.delivered(lba, data, c2Counts, batchTime - started))
        device->holes().add(dead);
    batchCache = std::move(data);
    batchStartLba = lba;
    batchCount = count;
    batchC2Counts = std::move(c2Counts);
    c2OfLastRead = static_cast<quint32>(batchC2Counts.value(0, 0));
    return true;
}

void CdDrive::seekNear(quint32 lba)
{
    QByteArray thrownAway(READ_BATCH_SECTORS * RAW_SECTOR_BYTES, Qt::Uninitialized);
    device->readRaw(lba > seekDistance ? lba - seekDistance : lba + seekDistance, READ_BATCH_SECTORS,
                    {reinterpret_cast<quint8*>(thrownAway.data()), static_cast<size_t>(thrownAway.size())},
                    false);
}

QByteArray CdDrive::readBatch(quint32 lba, Purpose purpose)
{
    retriesOfLastRead = 0;
    c2OfLastRead = 0;
    speed = 0;
    const quint32 count = boundedBatch(lba);
    if (count == 0 || !device)
        return {};
    if (device->holes().isHole(lba)) {
        retriesOfLastRead = LADDER_ATTEMPTS;
        return {};
    }

    const qint64 started = drivePlatform().nowNanoseconds();
    const bool wentAway =
        purpose == Purpose::judged && device->makeCold(lba, count, ColdReads::Effort::Thorough);
    const qint64 ready = wentAway ? drivePlatform().nowNanoseconds() : started;
    const bool wasAway = isAway();
    if (!climbLadder(lba, count, ready) && ((wasAway && isAway()) || !readAlone(lba, count))) {
        retriesOfLastRead = LADDER_ATTEMPTS;
        return {};
    }
    updateSpeed(started, batchTime);
    return batchCache.left(RAW_SECTOR_BYTES);
}

bool CdDrive::climbLadder(quint32 lba, quint32 count, qint64 started)
{
    const KnownHoles& holes = device->holes();
    const bool wasAway = isAway();
    for (quint32 attempt = 0; attempt < LADDER_ATTEMPTS; ++attempt) {
        if (count == 1 && holes.isExhausted(lba))
            return false;
        if (attempt >= immediateAttempts + seekAttempts) {
            drivePlatform().sleepMilliseconds(patientPauseMs);
        } else if (attempt >= immediateAttempts) {
            seekNear(lba);
            drivePlatform().sleepMilliseconds(seekPauseMs);
        }
        if (attempt > 0)
            started = drivePlatform().nowNanoseconds();
        if (attemptBatch(lba, count, started)) {
            retriesOfLastRead = attempt;
            return true;
        }
        if (wasAway && isAway())
            return false;
    }
    return false;
}

// What is left when the ladder has failed: a batch may have failed for another
// sector's sake, and a sector that was asked for alone gets a last attempt from a
// cold position before the drive's word is final.
bool CdDrive::readAlone(quint32 lba, quint32 failedBatch)
{
    KnownHoles& holes = device->holes();
    retriesOfLastRead = LADDER_ATTEMPTS;
    if (failedBatch > 1) {
        holes.batchGivenUp(lba, failedBatch);
        return attemptBatch(lba, 1, drivePlatform().nowNanoseconds());
    }
    if (!holes.isExhausted(lba))
        return false;
    device->goFar(lba, ColdReads::Effort::Once);
    if (attemptBatch(lba, 1, drivePlatform().nowNanoseconds()))
        return true;
    holes.add(lba);
    return false;
}

// A drive can lose sight of its disc over a bad place and find it again, so one that
// is unplugged or emptied is waited for with whole ladders for a while.
bool CdDrive::isAway() const
{
    return awaySince && drivePlatform().nowNanoseconds() - *awaySince >= patienceWithAbsence;
}

void CdDrive::noteAbsence(bool absent)
{
    if (!absent)
        awaySince.reset();
    else if (!awaySince)
        awaySince = drivePlatform().nowNanoseconds();
}

void CdDrive::updateSpeed(qint64 started, qint64 now)
{
    if (!timingStarted) {
        firstReadTime = started;
        timingStarted = true;
    }
    bytesRead += quint64{batchCount} * RAW_SECTOR_BYTES;
    const double elapsed = static_cast<double>(now - firstReadTime) / 1e9;
    constexpr double fastest = std::numeric_limits<quint32>::max();
    if (elapsed > 0)
        speed = static_cast<quint32>(std::min(fastest, static_cast<double>(bytesRead) / elapsed / 1024));
}

bool CdDrive::answersProbe(quint32 lba, quint32 count, QList<int>& c2Counts)
{
    QByteArray data;
    for (int attempt = 0; attempt < probeAttempts; ++attempt) {
        if (readRawC2(lba, count, data, c2Counts))
            return true;
    }
    return false;
}

bool CdDrive::probeC2(quint32 lba)
{
    c2Supported = false;
    c2On = false;
    if (image || !device)
        return false;
    const quint32 count = boundedBatch(lba);
    if (count == 0)
        return false;

    QList<int> c2Counts;
    bool answered = answersProbe(lba, count, c2Counts);
    // A hole in the batch tells nothing of the pointers; a sector beside it may.
    const bool mayBeAHole =
        lastReply.failure == DriveFailure::unreadable || lastReply.failure == DriveFailure::timedOut;
    for (const quint32 alone : {lba, lba + count / 2, lba + count - 1}) {
        if (!answered && mayBeAHole && count > 1)
            answered = answersProbe(alone, 1, c2Counts);
    }
    if (!answered) {
        qWarning() << "[CdDrive] C2: READ CD with C2 not available (err=" << lastReply.errorNumber << ")";
        return false;
    }
    const qint64 sum = std::accumulate(c2Counts.cbegin(), c2Counts.cend(), qint64{0});
    const qint64 bits = c2Counts.size() * RAW_SECTOR_BYTES;
    if (2 * sum > bits) {
        qWarning() << "[CdDrive] C2: values look invalid (" << sum << "/" << bits << "bits set)";
        return false;
    }
    c2Supported = true;
    qDebug() << "[CdDrive] C2: supported";
    return true;
}

QString CdDrive::queryModel()
{
    if (image || !device)
        return {};
    const auto descriptor = device->descriptor();
    if (!descriptor)
        return {};

    constexpr std::array<quint8, 6> inquiry{0x12, 0, 0, 0, inquiryBytes, 0};
    alignas(passThroughAlignment) std::array<quint8, inquiryBytes> answer{};
    if (device->passThrough(inquiry, answer).ok) {
        const auto text = reinterpret_cast<const char*>(answer.data());
        const QString vendor = cleanText(QByteArray(text + 8, 8));
        const QString product = cleanText(QByteArray(text + 16, 16));
        if (!vendor.isEmpty() && !product.isEmpty())
            return joinModel(vendor, product);
    }

    QString vendor = cleanText(descriptor->vendor);
    QString product = cleanText(descriptor->product);
    const qsizetype blank = product.indexOf(u' ');
    if ((vendor.isEmpty() || vendor.compare(QLatin1String("ATA"), Qt::CaseInsensitive) == 0) && blank >= 0) {
        vendor = product.left(blank);
        product = product.mid(blank + 1).simplified();
    }
    return joinModel(vendor, product);
}

bool CdDrive::isUsb()
{
    if (image || !device)
        return false;
    const auto descriptor = device->descriptor();
    return descriptor && descriptor->usb;
}

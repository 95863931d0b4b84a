// The run over a physical disc.

#include "base/LargeMemory.h"
#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"
#include "rip/OutputNaming.h"
#include "rip/RipWorker.h"
#include "rip/SampleValues.h"
#include "rip/TrackMemory.h"
#include "rip/TrackWriter.h"
#include "secure/RereadVote.h"
#include "secure/SectorVote.h"
#include "verify/AccurateRip.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

constexpr quint32 crossCheckInterval = 2000; // sectors
constexpr quint32 keepAliveInterval = 100;   // sectors
constexpr quint32 probeDistance = 150;       // sectors behind the first audio sector
constexpr int trackPauseMs = 500;
constexpr quint32 windowFirstSector = 440;
constexpr quint32 windowSectors = 22;
// 99:59:74 is the last address that a disc can name. A track beyond that is a
// damaged table of contents.
constexpr quint32 maxTrackSectors = 100 * 60 * SECTORS_PER_SECOND;

quint32 sectorCount(quint32 firstLba, quint32 lastLba)
{
    const bool ordered = lastLba >= firstLba && lastLba - firstLba < maxTrackSectors;
    return ordered ? lastLba - firstLba + 1 : 0;
}

// The left sample in the low half of each entry.
QList<quint32> frameWindowOf(const QList<int>& samples)
{
    constexpr qsizetype framesPerSector = SECTOR_VALUES / 2;
    QList<quint32> window;
    if (samples.size() < qsizetype{windowFirstSector + windowSectors} * SECTOR_VALUES)
        return window;
    const int* value = samples.constData() + qsizetype{windowFirstSector} * SECTOR_VALUES;
    window.reserve(windowSectors * framesPerSector);
    for (qsizetype frame = 0; frame < windowSectors * framesPerSector; ++frame, value += 2)
        window.append(static_cast<quint32>(value[0]) >> 16 | (static_cast<quint32>(value[1]) & 0xFFFF0000));
    return window;
}

} // namespace

struct RipWorker::DiscRun {
    int audioCount = 0;
    int lastAudioNumber = 0;
    quint32 firstAudioLba = 0;
    bool usb = false;
    bool c2Mode = false;
    int mismatches = 0;
};

void RipWorker::runCdMode()
{
    DiscRun run = beginDiscRun();
    for (qsizetype place = 0; place < order.disc.tracks.size() && !stopping; ++place) {
        if (order.disc.tracks[place].isData) {
            Q_EMIT logLine(QStringLiteral("  Track %1: data track (not audio) - skipped")
                               .arg(order.disc.tracks[place].number, 2, 10, QLatin1Char('0')));
        } else if (!writer->withinMemory([&] { ripDiscTrack(run, place); })) {
            Q_EMIT trackDone(
                failedTrack(order.disc.tracks[place].number, trackName(order.disc.tracks[place])));
        }
    }
    qDebug() << "[RipWorker] Cross-check mismatches this disc:" << run.mismatches;
}

RipWorker::DiscRun RipWorker::beginDiscRun()
{
    DiscRun run;
    run.firstAudioLba = order.disc.tracks.constFirst().startLba;
    lastAudioLba = order.disc.tracks.constLast().endLba;
    for (const TrackInfo& track : std::as_const(order.disc.tracks)) {
        if (track.isData)
            continue;
        if (run.audioCount++ == 0)
            run.firstAudioLba = track.startLba;
        run.lastAudioNumber = track.number;
        lastAudioLba = track.endLba;
    }
    if (!order.cover.isNull())
        writer->saveCover();
    errorTotal = 0;
    suspectTotal = 0;

    run.usb = order.drive->isUsb();
    qDebug().noquote() << "[RipWorker] Drive is USB:" << run.usb << "-> keepalive"
                       << (run.usb ? "enabled" : "disabled");
    const bool c2 =
        order.drive->probeC2(run.firstAudioLba + std::min(probeDistance, lastAudioLba - run.firstAudioLba));
    order.drive->setC2Enabled(c2);
    run.c2Mode = order.drive->c2Enabled();
    const QString mode =
        run.c2Mode
            ? QStringLiteral("Read mode   : secure - C2 error pointers (max %1 re-reads / sector)")
            : QStringLiteral("Read mode   : secure - double read & compare (max %1 re-reads / sector)");
    Q_EMIT logLine(mode.arg(order.rereadLimit));
    return run;
}

void RipWorker::ripDiscTrack(DiscRun& run, qsizetype place)
{
    const TrackInfo& track = order.disc.tracks.at(place);
    const QString name = trackName(track);
    Q_EMIT trackStarted(static_cast<int>(place) + 1, run.audioCount, name);

    const bool isLast = place + 1 == order.disc.tracks.size();
    const quint32 bound = isLast ? lastAudioLba : order.disc.tracks.at(place + 1).startLba - 1;
    const quint32 lastLba = std::min(track.endLba, bound);
    const quint32 count = sectorCount(track.startLba, lastLba);
    if (place > 0)
        drivePlatform().sleepMilliseconds(trackPauseMs);

    if (count == 0 || !memoryHoldsSectors(count)) {
        Q_EMIT trackDone(failedTrack(track.number, name));
        return;
    }
    RipResult result;
    result.trackNumber = track.number;
    result.title = name;

    QList<int> samples = writer->takeSpareSamples();
    samples.resize(0);
    reserveLarge(samples, qsizetype{count} * SECTOR_VALUES);
    {
        QList<QByteArray> firstPass;
        if (!run.c2Mode) {
            const auto status = [&](const QString& pass) {
                Q_EMIT statusText(
                    QStringLiteral("Track %1/%2: %3  —  %4")
                        .arg(QString::number(place + 1), QString::number(run.audioCount), name, pass));
            };
            status(QStringLiteral("1st read"));
            firstPass = readFirstPass(run, track.startLba, count);
            status(QStringLiteral("2nd read (compare)"));
        }
        if (!readTrackSamples(run, track.startLba, count, firstPass, samples, result))
            return;
    }
    result.frameWindow = frameWindowOf(samples);
    applyReadOffset(samples, track.startLba, lastLba);
    result.ok =
        writer->write(std::move(samples), AudioFormat(),
                      {outputBasePath(track.number, name), name, track.number, run.audioCount, order.cover});
    accurateRipCrc(writer->writtenSamples(), track.number, run.lastAudioNumber, result.crcV1, result.crcV2);
    Q_EMIT trackDone(result);
}

QList<QByteArray> RipWorker::readFirstPass(const DiscRun& run, quint32 firstLba, quint32 count)
{
    QList<QByteArray> firstPass(count);
    for (quint32 place = 0; place < count && !stopping; ++place) {
        firstPass[place] = order.drive->readSector(firstLba + place);
        keepAlive(run, firstLba + place);
    }
    order.drive->flushDriveCache(firstLba);
    return firstPass;
}

bool RipWorker::readTrackSamples(DiscRun& run, quint32 firstLba, quint32 count,
                                 const QList<QByteArray>& firstPass, QList<int>& samples, RipResult& result)
{
    for (quint32 place = 0; place < count; ++place) {
        if (stopping)
            return false;
        QByteArray data = order.drive->readSector(firstLba + place);
        Q_EMIT sectorDone(judgeSector(run, firstLba + place,
                                      firstPass.isEmpty() ? nullptr : &firstPass[place], data, result));
        if (data.isEmpty())
            data = silentSector();
        appendSampleValues(samples, data);
    }
    return true;
}

void RipWorker::keepAlive(const DiscRun& run, quint32 lba)
{
    if (run.usb && lba > run.firstAudioLba && (lba - run.firstAudioLba) % keepAliveInterval == 0)
        order.drive->readToc();
}

SectorResult RipWorker::judgeSector(DiscRun& run, quint32 lba, const QByteArray* first, QByteArray& data,
                                    RipResult& result)
{
    SectorResult record;
    record.lba = lba;
    record.speed = order.drive->speedKBs();
    record.c2Errors = run.c2Mode ? order.drive->lastC2Errors() : 0;
    keepAlive(run, lba);

    const bool trusted =
        run.c2Mode ? !data.isEmpty() && record.c2Errors == 0 : !data.isEmpty() && *first == data;
    if (trusted) {
        record.clean = true;
        if (run.c2Mode && (lba - run.firstAudioLba) % crossCheckInterval == 0
            && !passesCrossCheck(lba, data)) {
            record.clean = false;
            record.mismatch = true;
            ++run.mismatches;
            ++errorTotal;
            ++result.errorSectors;
        }
        return record;
    }

    QList<QByteArray> seeds;
    if (!run.c2Mode) {
        for (const QByteArray& read : {data, *first}) {
            if (!read.isEmpty())
                seeds.append(read);
        }
    }
    bool confirmed = false;
    const QByteArray chosen = rereadSector(lba, seeds, run.c2Mode, record.retries, confirmed);
    if (!chosen.isEmpty())
        data = chosen;
    record.retries = std::max(record.retries, 1);
    record.bad = !confirmed;
    ++(confirmed ? suspectTotal : errorTotal);
    ++(confirmed ? result.suspectSectors : result.errorSectors);
    return record;
}

bool RipWorker::passesCrossCheck(quint32 lba, QByteArray& data)
{
    const QByteArray copy = order.drive->readSectorFresh(lba);
    if (copy.isEmpty() || copy == data)
        return true;
    const QByteArray third = order.drive->readSectorFresh(lba);
    if (third == copy)
        data = copy;
    qWarning() << "[RipWorker] Cross-check mismatch at LBA" << lba;
    return false;
}

QByteArray RipWorker::rereadSector(quint32 lba, const QList<QByteArray>& seeds, bool c2Mode, int& reads,
                                   bool& confirmed)
{
    const auto read = [this, lba]() -> SectorRead {
        if (stopping)
            return {};
        const QByteArray data = order.drive->readSectorFresh(lba);
        return {data, order.drive->lastC2Errors()};
    };
    const RereadOutcome outcome = rereadVote(read, seeds, c2Mode, order.rereadLimit);
    reads = outcome.reads;
    confirmed = outcome.confirmed;
    return outcome.data;
}

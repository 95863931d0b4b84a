#include "rip/DiscRun.h"

#include "base/LargeMemory.h"
#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"
#include "disc/SampleValues.h"
#include "rip/OutputNaming.h"
#include "rip/ReadOffset.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"
#include "rip/TrackMemory.h"
#include "rip/TrackWriter.h"
#include "secure/SectorVote.h"
#include "verify/AccurateRip.h"

#include <QDebug>

#include <algorithm>
#include <utility>

namespace {

constexpr quint32 keepAliveInterval = 100; // sectors
constexpr quint32 probeDistance = 150;     // sectors behind the first audio sector
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

void count(const SectorResult& record, RipResult& result)
{
    if (!record.clean)
        ++(record.bad || record.mismatch ? result.errorSectors : result.suspectSectors);
}

} // namespace

DiscRun::DiscRun(const RipOrder& runOrder, TrackWriter& trackWriter, RunReport& runReport)
    : order(runOrder), drive(*runOrder.drive), writer(trackWriter), report(runReport),
      audio(audioAreaOf(runOrder.disc.tracks))
{
}

void DiscRun::run()
{
    if (!order.cover.isNull())
        writer.saveCover();
    chooseReadMode();
    const QList<TrackInfo>& tracks = order.disc.tracks;
    for (qsizetype place = 0; place < tracks.size() && !report.stopRequested(); ++place) {
        const TrackInfo& track = tracks[place];
        if (track.isData) {
            report.log(
                QStringLiteral("  Track %1: data track (not audio) - skipped").arg(twoDigits(track.number)));
        } else if (!writer.withinMemory([&] { ripTrack(place); })) {
            report.trackEnds(failedTrack(track.number, trackName(track)));
        }
    }
    qDebug() << "[RipWorker] Cross-check mismatches this disc:" << mismatches;
}

void DiscRun::chooseReadMode()
{
    usb = drive.isUsb();
    qDebug().noquote() << "[RipWorker] Drive is USB:" << usb << "-> keepalive"
                       << (usb ? "enabled" : "disabled");
    drive.setC2Enabled(
        drive.probeC2(audio.firstLba + std::min(probeDistance, audio.lastLba - audio.firstLba)));
    mode = {drive.c2Enabled(), order.rereadLimit, audio.firstLba};
    const QString words =
        mode.c2 ? QStringLiteral("Read mode   : secure - C2 error pointers (max %1 re-reads / sector)")
                : QStringLiteral("Read mode   : secure - double read & compare (max %1 re-reads / sector)");
    report.log(words.arg(order.rereadLimit));
}

void DiscRun::ripTrack(qsizetype place)
{
    const TrackInfo& track = order.disc.tracks.at(place);
    const QString name = trackName(track);
    report.trackBegins(static_cast<int>(place) + 1, audio.trackCount, name);

    const quint32 lastLba = lastSectorOf(place);
    const quint32 sectors = sectorCount(track.startLba, lastLba);
    if (place > 0)
        drivePlatform().sleepMilliseconds(trackPauseMs);
    // A first pass is held beside the samples until the track is read.
    const quint64 bytesOfValue = sizeof(qint32) + (mode.c2 ? 0 : sizeof(qint16));
    if (sectors == 0 || !memoryHoldsSectors(sectors, bytesOfValue)) {
        report.trackEnds(failedTrack(track.number, name));
        return;
    }
    RipResult result;
    result.trackNumber = track.number;
    result.title = name;
    QList<int> samples = writer.takeSpareSamples();
    samples.resize(0);
    reserveLarge(samples, qsizetype{sectors} * SECTOR_VALUES);
    if (!readSamples(place, sectors, samples, result))
        return;
    result.frameWindow = frameWindowOf(samples);
    applyReadOffset(drive, {order.disc.tracks, audio.lastLba}, samples, track.startLba, lastLba);
    result.ok = writer.write(
        std::move(samples), AudioFormat(),
        {outputBasePath(order, track.number, name), name, track.number, audio.trackCount, order.cover});
    accurateRipCrc(writer.writtenSamples(), track.number, audio.lastNumber, result.crcV1, result.crcV2);
    report.trackEnds(result);
}

quint32 DiscRun::lastSectorOf(qsizetype place) const
{
    const QList<TrackInfo>& tracks = order.disc.tracks;
    const quint32 end = tracks[place].endLba;
    return place + 1 < tracks.size() ? std::min(end, tracks[place + 1].startLba - 1) : end;
}

bool DiscRun::readSamples(qsizetype place, quint32 sectors, QList<int>& samples, RipResult& result)
{
    const quint32 firstLba = order.disc.tracks.at(place).startLba;
    QList<QByteArray> firstPass;
    if (!mode.c2) {
        const auto status = [&](const QString& pass) {
            report.status(
                QStringLiteral("Track %1/%2: %3  —  %4")
                    .arg(QString::number(place + 1), QString::number(audio.trackCount), result.title, pass));
        };
        status(QStringLiteral("1st read"));
        firstPass = readFirstPass(firstLba, sectors);
        status(QStringLiteral("2nd read (compare)"));
    }
    for (quint32 i = 0; i < sectors; ++i) {
        if (report.stopRequested())
            return false;
        QByteArray data = drive.readSector(firstLba + i);
        const SectorResult record = judged(firstLba + i, firstPass.value(i), data);
        count(record, result);
        report.sector(record);
        appendSampleValues(samples, data.isEmpty() ? silentSector() : data);
    }
    return true;
}

QList<QByteArray> DiscRun::readFirstPass(quint32 firstLba, quint32 sectors)
{
    QList<QByteArray> firstPass(sectors);
    for (quint32 i = 0; i < sectors && !report.stopRequested(); ++i) {
        firstPass[i] = drive.readSector(firstLba + i);
        keepAlive(firstLba + i);
    }
    drive.flushDriveCache(firstLba);
    return firstPass;
}

SectorResult DiscRun::judged(quint32 lba, const QByteArray& first, QByteArray& data)
{
    SectorResult record;
    record.lba = lba;
    record.speed = drive.speedKBs();
    record.c2Errors = mode.c2 ? drive.lastC2Errors() : 0;
    keepAlive(lba);
    SectorJudge(drive, report, mode).judge(record, first, data);
    mismatches += record.mismatch ? 1 : 0;
    return record;
}

void DiscRun::keepAlive(quint32 lba)
{
    if (usb && lba > audio.firstLba && (lba - audio.firstLba) % keepAliveInterval == 0)
        drive.readToc();
}

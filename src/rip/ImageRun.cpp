#include "rip/ImageRun.h"

#include "disc/CdDrive.h"
#include "rip/OutputNaming.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"
#include "rip/TrackMemory.h"
#include "rip/TrackWriter.h"
#include "secure/ParanoiaReader.h"
#include "verify/AccurateRip.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

void copyCover(const QString& from, const QString& to)
{
    if (QFileInfo(from).canonicalFilePath() == QFileInfo(to).canonicalFilePath())
        return;
    QFile::remove(to);
    QFile::copy(from, to);
}

} // namespace

void ImageRun::run()
{
    cover = placeCover();
    ParanoiaReader reader;
    reader.onSector = [this, &reader](const SectorResult& record) {
        report.sector(record);
        reader.abortFlag = report.stopRequested();
    };
    const auto trackCount = static_cast<int>(order.disc.tracks.size());
    int place = 0;
    for (const TrackInfo& track : order.disc.tracks) {
        if (report.stopRequested())
            return;
        const QString name = trackName(track);
        report.trackBegins(++place, trackCount, name);
        RipResult result = failedTrack(track.number, name);
        writer.withinMemory([&] { result = ripTrack(reader, track, name); });
        if (!reader.abortFlag)
            report.trackEnds(result);
    }
}

QPixmap ImageRun::placeCover()
{
    const auto trackCount = static_cast<int>(order.disc.tracks.size());
    if (!order.cover.isNull()) {
        writer.saveCover();
        report.trackBegins(0, trackCount, QStringLiteral("Cover art: OK"));
        return order.cover;
    }
    QPixmap found;
    const QString sibling =
        QFileInfo(order.disc.tracks.constFirst().sourceFile).absolutePath() + QLatin1String(coverFileName);
    if (QFileInfo(sibling).isFile() && found.load(sibling))
        copyCover(sibling, order.outputFolder + QLatin1String(coverFileName));
    // Said in every case, also after a cover was found and copied.
    report.trackBegins(0, trackCount, QStringLiteral("Cover art: not found"));
    return found;
}

RipResult ImageRun::ripTrack(ParanoiaReader& reader, const TrackInfo& track, const QString& name)
{
    RipResult result = failedTrack(track.number, name);
    if (!memoryHoldsSectors(track.endLba - track.startLba + 1, sizeof(qint32)))
        return result;
    QList<int> samples = writer.takeSpareSamples();
    reader.readTrack(*order.drive, track, samples);
    if (samples.isEmpty())
        return result;
    result.errorSectors = static_cast<quint32>(std::count_if(reader.results.cbegin(), reader.results.cend(),
                                                             [](const SectorResult& r) { return r.bad; }));
    result.suspectSectors = std::accumulate(
        reader.results.cbegin(), reader.results.cend(), quint32{0},
        [](quint32 sum, const SectorResult& r) { return sum + static_cast<quint32>(r.retries); });

    const auto trackCount = static_cast<int>(order.disc.tracks.size());
    result.ok =
        writer.write(std::move(samples), AudioFormat(),
                     {outputBasePath(order, track.number, name), name, track.number, trackCount, cover});
    accurateRipCrc(writer.writtenSamples(), track.number, trackCount, result.crcV1, result.crcV2);
    return result;
}

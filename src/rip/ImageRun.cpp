// The run over a CUE image.

#include "base/LargeMemory.h"
#include "disc/CdDrive.h"
#include "rip/OutputNaming.h"
#include "rip/RipWorker.h"
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

constexpr qsizetype widenedAtOnce = 4096; // values; stays in the processor's cache

// Fresh memory is filled piece by piece, so that it is touched once; values
// of a track before are overwritten where they stand.
void leftJustify(const QList<qint16>& samples, QList<int>& pcm)
{
    reserveLarge(pcm, samples.size());
    for (qsizetype place = 0; place < samples.size(); place += widenedAtOnce) {
        const qsizetype count = std::min(widenedAtOnce, samples.size() - place);
        pcm.resize(std::max(pcm.size(), place + count));
        std::transform(samples.cbegin() + place, samples.cbegin() + place + count, pcm.begin() + place,
                       [](qint16 value) { return int{value} * 65536; });
    }
    pcm.resize(samples.size());
}

void copyCover(const QString& from, const QString& to)
{
    if (QFileInfo(from).canonicalFilePath() == QFileInfo(to).canonicalFilePath())
        return;
    QFile::remove(to);
    QFile::copy(from, to);
}

} // namespace

QPixmap RipWorker::imageCover()
{
    const auto trackCount = static_cast<int>(order.disc.tracks.size());
    const QString target = order.outputFolder + QLatin1String(coverFileName);
    if (!order.cover.isNull()) {
        writer->saveCover();
        Q_EMIT trackStarted(0, trackCount, QStringLiteral("Cover art: OK"));
        return order.cover;
    }
    QPixmap found;
    const QString sibling =
        QFileInfo(order.disc.tracks.constFirst().sourceFile).absolutePath() + QLatin1String(coverFileName);
    if (QFileInfo(sibling).isFile() && found.load(sibling))
        copyCover(sibling, target);
    // Said in every case, also after a cover was found and copied.
    Q_EMIT trackStarted(0, trackCount, QStringLiteral("Cover art: not found"));
    return found;
}

void RipWorker::runCueMode()
{
    const QPixmap runCover = imageCover();
    ParanoiaReader reader;
    reader.onSector = [this, &reader](const SectorResult& record) {
        Q_EMIT sectorDone(record);
        reader.abortFlag = stopping;
    };
    const auto trackCount = static_cast<int>(order.disc.tracks.size());
    int place = 0;
    for (const TrackInfo& track : std::as_const(order.disc.tracks)) {
        if (stopping)
            return;
        const QString name = trackName(track);
        Q_EMIT trackStarted(++place, trackCount, name);
        RipResult result = failedTrack(track.number, name);
        writer->withinMemory([&] { result = ripImageTrack(reader, track, name, runCover); });
        if (!reader.abortFlag)
            Q_EMIT trackDone(result);
    }
}

RipResult RipWorker::ripImageTrack(ParanoiaReader& reader, const TrackInfo& track, const QString& name,
                                   const QPixmap& trackCover)
{
    RipResult result = failedTrack(track.number, name);
    if (!memoryHoldsSectors(track.endLba - track.startLba + 1))
        return result;
    QList<qint16> samples = reader.readTrack(*order.drive, track);
    if (samples.isEmpty())
        return result;
    result.errorSectors = static_cast<quint32>(std::count_if(reader.results.cbegin(), reader.results.cend(),
                                                             [](const SectorResult& r) { return r.bad; }));
    result.suspectSectors = std::accumulate(
        reader.results.cbegin(), reader.results.cend(), quint32{0},
        [](quint32 sum, const SectorResult& r) { return sum + static_cast<quint32>(r.retries); });

    QList<int> pcm = writer->takeSpareSamples();
    leftJustify(samples, pcm);
    samples = QList<qint16>();
    result.ok = writer->write(std::move(pcm), AudioFormat(),
                              {outputBasePath(track.number, name), name, track.number,
                               static_cast<int>(order.disc.tracks.size()), trackCover});
    accurateRipCrc(writer->writtenSamples(), track.number, static_cast<int>(order.disc.tracks.size()),
                   result.crcV1, result.crcV2);
    return result;
}

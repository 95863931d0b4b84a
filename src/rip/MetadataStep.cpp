#include "rip/MetadataStep.h"

#include "metadata/lookup/AnswerText.h"
#include "metadata/lookup/CoverArt.h"
#include "metadata/lookup/GnuDb.h"
#include "metadata/lookup/MusicBrainz.h"
#include "rip/RipOrder.h"
#include "rip/RunReport.h"

#include <QDebug>

#include <algorithm>
#include <exception>

namespace {

void fillIfEmpty(QString& field, const QString& value)
{
    if (field.isEmpty())
        field = takenOver(value);
}

template<typename Track>
void fillTitles(QList<TrackInfo>& tracks, const QList<Track>& found)
{
    const qsizetype count = std::min(tracks.size(), found.size());
    for (qsizetype i = 0; i < count; ++i)
        fillIfEmpty(tracks[i].title, found[i].title);
}

void fillFromMusicBrainz(RipOrder& order)
{
    const MusicBrainzResult found = musicBrainzLookup(order.disc);
    if (found.title.isEmpty())
        return;
    qDebug().noquote() << "[RipWorker] MusicBrainz OK:" << found.title;
    fillIfEmpty(order.artist, found.artist);
    fillIfEmpty(order.album, found.title);
    fillIfEmpty(order.year, found.year);
    fillTitles(order.disc.tracks, found.tracks);
    if (order.cover.isNull() && !found.mbid.isEmpty())
        order.cover = CoverArt::pictureAt(CoverArt::archiveImageUrl(found.mbid));
}

void fillFromGnuDb(RipOrder& order)
{
    qDebug() << "[RipWorker] MusicBrainz not found, trying GnuDB";
    const GnuDbResult found = gnudbLookup(order.disc);
    if (found.album.isEmpty())
        return;
    qDebug().noquote() << "[RipWorker] GnuDB OK:" << found.album;
    fillIfEmpty(order.artist, found.artist);
    fillIfEmpty(order.album, found.album);
    fillIfEmpty(order.year, found.year);
    fillTitles(order.disc.tracks, found.tracks);
}

void fillFromServices(RipOrder& order, const RunReport& report)
{
    fillFromMusicBrainz(order);
    if (order.album.isEmpty() && !report.stopRequested())
        fillFromGnuDb(order);
    if (order.cover.isNull() && !order.album.isEmpty() && !report.stopRequested()) {
        qDebug() << "[RipWorker] Fetching cover art via CoverArt";
        CoverArt covers;
        covers.discogsToken = order.discogsToken;
        order.cover = covers.fetch(order.artist, order.album);
    }
}

} // namespace

void runMetadataStep(RipOrder& order, RunReport& report)
{
    report.trackBegins(0, static_cast<int>(order.disc.tracks.size()), QStringLiteral("Fetching metadata..."));
    // What leaves a thread's slot ends the program.
    try {
        fillFromServices(order, report);
    } catch (const std::exception& trouble) {
        qWarning() << "[RipWorker] lookup given up:" << trouble.what();
    }
    report.metadata(order);
}

// The step of a disc run that fills in what the user left empty.

#include "metadata/lookup/AnswerText.h"
#include "metadata/lookup/CoverArt.h"
#include "metadata/lookup/GnuDb.h"
#include "metadata/lookup/MusicBrainz.h"
#include "rip/RipWorker.h"

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

} // namespace

void RipWorker::fetchMetadata()
{
    Q_EMIT trackStarted(0, static_cast<int>(disc.tracks.size()), QStringLiteral("Fetching metadata..."));
    // What leaves this thread's slot ends the program.
    try {
        fillFromServices();
    } catch (const std::exception& trouble) {
        qWarning() << "[RipWorker] lookup given up:" << trouble.what();
    }
    Q_EMIT metadataReady(artist, album, year, cover, disc.tracks);
}

void RipWorker::fillFromServices()
{
    fillFromMusicBrainz();
    if (album.isEmpty() && !stopping)
        fillFromGnuDb();
    if (cover.isNull() && !album.isEmpty() && !stopping) {
        qDebug() << "[RipWorker] Fetching cover art via CoverArt";
        CoverArt covers;
        covers.discogsToken = discogsToken;
        cover = covers.fetch(artist, album);
    }
}

void RipWorker::fillFromMusicBrainz()
{
    const MusicBrainzResult found = musicBrainzLookup(disc);
    if (found.title.isEmpty())
        return;
    qDebug().noquote() << "[RipWorker] MusicBrainz OK:" << found.title;
    fillIfEmpty(artist, found.artist);
    fillIfEmpty(album, found.title);
    fillIfEmpty(year, found.year);
    fillTitles(disc.tracks, found.tracks);
    if (cover.isNull() && !found.mbid.isEmpty())
        cover = CoverArt::pictureAt(CoverArt::archiveImageUrl(found.mbid));
}

void RipWorker::fillFromGnuDb()
{
    qDebug() << "[RipWorker] MusicBrainz not found, trying GnuDB";
    const GnuDbResult found = gnudbLookup(disc);
    if (found.album.isEmpty())
        return;
    qDebug().noquote() << "[RipWorker] GnuDB OK:" << found.album;
    fillIfEmpty(artist, found.artist);
    fillIfEmpty(album, found.album);
    fillIfEmpty(year, found.year);
    fillTitles(disc.tracks, found.tracks);
}

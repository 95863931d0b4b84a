#include "ui/LookupChains.h"

#include "metadata/Http.h"
#include "metadata/HttpTransport.h"
#include "metadata/ServiceHosts.h"

#include <QDebug>
#include <QThreadPool>

namespace {

QPixmap pictureAt(const QString& address)
{
    QPixmap picture;
    if (address.isEmpty())
        return picture;
    const QByteArray body = httpGet(address);
    if (!body.isEmpty())
        picture.loadFromData(body);
    return picture;
}

QPixmap storePicture(const ITunesResult& album)
{
    return album.album.isEmpty() ? QPixmap() : pictureAt(album.artworkUrl);
}

// Without a release id nothing is looked for at all.
QPixmap coverOfRelease(const MusicBrainzResult& release)
{
    if (release.mbid.isEmpty())
        return {};
    const QPixmap front = pictureAt(
        QStringLiteral("%1/release/%2/front-500").arg(QLatin1String(services::coverArtArchive), release.mbid));
    return front.isNull() ? pictureAt(CoverArt::iTunesImageUrl(release.artist, release.title)) : front;
}

} // namespace

MetaResult lookUpDisc(const DiscToc& disc)
{
    const CoverArt covers;
    MetaResult found;
    found.musicBrainz = musicBrainzLookup(disc);
    qDebug().noquote() << "[Meta] MusicBrainz:" << found.musicBrainz.title;
    if (!found.musicBrainz.title.isEmpty()) {
        found.cover = coverOfRelease(found.musicBrainz);
        return found;
    }

    found.gnuDb = gnudbLookup(disc);
    qDebug().noquote() << "[Meta] GnuDB:" << found.gnuDb.album;
    if (!found.gnuDb.album.isEmpty()) {
        found.iTunes = CoverArt::lookupITunes(found.gnuDb.artist, found.gnuDb.album);
        found.cover = storePicture(found.iTunes);
        if (found.cover.isNull())
            found.cover = pictureAt(covers.discogsImageUrl(found.gnuDb.artist, found.gnuDb.album));
        return found;
    }

    qDebug() << "[Meta] GnuDB miss -> iTunes fallback";
    const QString artist = found.gnuDb.artist.isEmpty() ? disc.albumArtist : found.gnuDb.artist;
    const QString album = disc.albumTitle;
    if (artist.isEmpty() && album.isEmpty()) {
        qDebug() << "[Meta] no artist/album info, skip iTunes";
        return found;
    }
    found.iTunes = CoverArt::lookupITunes(artist, album);
    found.cover = storePicture(found.iTunes);
    return found;
}

MetaResult lookUpSheet(const DiscToc& disc)
{
    const CoverArt covers;
    MetaResult found;
    found.musicBrainz = musicBrainzLookup(disc);
    qDebug().noquote() << "[Meta/CUE] MusicBrainz:" << found.musicBrainz.title;
    if (!found.musicBrainz.title.isEmpty()) {
        found.cover = coverOfRelease(found.musicBrainz);
        return found;
    }

    qDebug().noquote() << QStringLiteral("[Meta/CUE] MusicBrainz miss → iTunes fallback");
    found.iTunes = CoverArt::lookupITunes(disc.albumArtist, disc.albumTitle);
    qDebug().noquote() << "[Meta/CUE] iTunes:" << found.iTunes.album << "tracks:" << found.iTunes.tracks.size();
    found.cover = storePicture(found.iTunes);
    if (found.iTunes.album.isEmpty())
        found.cover = pictureAt(covers.discogsImageUrl(disc.albumArtist, disc.albumTitle));
    return found;
}

void endLookups()
{
    httpTransport().stop();
    QThreadPool::globalInstance()->waitForDone();
}

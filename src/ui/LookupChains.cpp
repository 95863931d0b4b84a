#include "ui/LookupChains.h"

#include "metadata/http/HttpTransport.h"

#include <QDebug>

#include <exception>

namespace {

QPixmap storePicture(const ITunesResult& album)
{
    return album.album.isEmpty() ? QPixmap() : CoverArt::pictureAt(album.artworkUrl);
}

// Without a release id nothing is looked for at all.
QPixmap coverOfRelease(const MusicBrainzResult& release)
{
    if (release.mbid.isEmpty())
        return {};
    const QPixmap front = CoverArt::pictureAt(CoverArt::archiveImageUrl(release.mbid));
    return front.isNull() ? CoverArt::pictureAt(CoverArt::iTunesImageUrl(release.artist, release.title))
                          : front;
}

/// The release that MusicBrainz has, if any, with its cover.
MetaResult askMusicBrainz(const DiscToc& disc, const char* debugMark)
{
    MetaResult found;
    found.musicBrainz = musicBrainzLookup(disc);
    qDebug().noquote() << debugMark << found.musicBrainz.title;
    if (!found.musicBrainz.title.isEmpty())
        found.cover = coverOfRelease(found.musicBrainz);
    return found;
}

MetaResult discChain(const DiscToc& disc)
{
    const CoverArt covers;
    MetaResult found = askMusicBrainz(disc, "[Meta] MusicBrainz:");
    if (!found.musicBrainz.title.isEmpty())
        return found;

    found.gnuDb = gnudbLookup(disc);
    qDebug().noquote() << "[Meta] GnuDB:" << found.gnuDb.album;
    if (!found.gnuDb.album.isEmpty()) {
        found.iTunes = CoverArt::lookupITunes(found.gnuDb.artist, found.gnuDb.album);
        found.cover = storePicture(found.iTunes);
        if (found.cover.isNull())
            found.cover = CoverArt::pictureAt(covers.discogsImageUrl(found.gnuDb.artist, found.gnuDb.album));
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

MetaResult sheetChain(const DiscToc& disc)
{
    const CoverArt covers;
    MetaResult found = askMusicBrainz(disc, "[Meta/CUE] MusicBrainz:");
    if (!found.musicBrainz.title.isEmpty())
        return found;

    qDebug().noquote() << QStringLiteral("[Meta/CUE] MusicBrainz miss → iTunes fallback");
    found.iTunes = CoverArt::lookupITunes(disc.albumArtist, disc.albumTitle);
    qDebug().noquote() << "[Meta/CUE] iTunes:" << found.iTunes.album
                       << "tracks:" << found.iTunes.tracks.size();
    found.cover = storePicture(found.iTunes);
    if (found.iTunes.album.isEmpty())
        found.cover = CoverArt::pictureAt(covers.discogsImageUrl(disc.albumArtist, disc.albumTitle));
    return found;
}

// An exception that leaves a thread of the pool ends the program.
template<typename Look>
auto nothingOnException(const char* message, const Look& look) -> decltype(look())
{
    try {
        return look();
    } catch (const std::exception& trouble) {
        qWarning() << message << trouble.what();
        return {};
    }
}

} // namespace

MetaResult lookUpDisc(const DiscToc& disc)
{
    return nothingOnException("[Meta] lookup given up:", [&disc] { return discChain(disc); });
}

MetaResult lookUpSheet(const DiscToc& disc)
{
    return nothingOnException("[Meta] lookup given up:", [&disc] { return sheetChain(disc); });
}

QPixmap coverOfSheet(const DiscToc& sheet)
{
    return nothingOnException("[Meta/CUE] cover given up:",
                              [&sheet] { return CoverArt().fetch(sheet.albumArtist, sheet.albumTitle); });
}

void stopLookups()
{
    httpTransport().stop();
}

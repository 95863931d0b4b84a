#include "fuzz/ParserTargets.h"

#include "fuzz/Promise.h"
#include "metadata/GnuDb.h"
#include "metadata/ITunes.h"
#include "metadata/MusicBrainz.h"

using fuzz::require;

namespace {

QByteArray copyOf(const char* bytes, size_t size)
{
    return QByteArray(bytes, static_cast<qsizetype>(size));
}

} // namespace

void fuzz::musicBrainz(const char* bytes, size_t size)
{
    const MusicBrainzResult result = parseMusicBrainzDisc(copyOf(bytes, size));
    require(result.year.size() <= 4, "a year has at most four characters");
    require(result.media.isEmpty() || result.media.size() == result.discCount,
            "the disc count counts the media");
    qsizetype longest = 0;
    for (const MusicBrainzMedium& medium : result.media) {
        for (const MusicBrainzTrack& track : medium.tracks)
            require(track.disc == medium.position, "a track knows its medium");
        longest = medium.position == 1 ? medium.tracks.size() : longest;
    }
    require(result.tracks.size() == longest, "the tracks are those of the last medium at position 1");
}

void fuzz::xmcd(const char* bytes, size_t size)
{
    const GnuDbResult result = parseXmcd(QString::fromUtf8(bytes, static_cast<qsizetype>(size)));
    require(result.album == result.album.trimmed() && result.artist == result.artist.trimmed(),
            "texts are trimmed");
    for (qsizetype i = 1; i < result.tracks.size(); ++i) {
        const qint64 before = qint64{result.tracks[i - 1].number};
        const qint64 number = qint64{result.tracks[i].number};
        require(before < number || number == qint64{-2'147'483'647} - 1, "track numbers ascend");
    }
}

void fuzz::iTunes(const char* bytes, size_t size)
{
    const QByteArray body = copyOf(bytes, size);
    const QString album = QString::fromUtf8(body.left(12));
    const ITunesAlbum chosen = chooseITunesAlbum(body, album);
    require(chosen.result.year.size() <= 4, "a year has at most four characters");
    require(!chosen.result.artworkUrl.contains(QLatin1String("100x100bb")),
            "small artwork is never asked for");
    require(!chooseITunesArtwork(body, album).contains(QLatin1String("100x100bb")), "nor here");
    for (const QString& title : parseITunesSongs(body))
        require(!title.isEmpty(), "no song is without a title");
}

#include "fuzz/ParserTargets.h"

#include "base/ByteOrder.h"
#include "fuzz/Promise.h"
#include "metadata/lookup/GnuDb.h"
#include "metadata/lookup/ITunes.h"
#include "metadata/lookup/MusicBrainz.h"
#include "verify/AccurateRipDatabase.h"

#include <algorithm>

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

void fuzz::dbar(const char* bytes, size_t size)
{
    constexpr qsizetype headerBytes = 13;
    constexpr qsizetype entryBytes = 9;
    const QByteArray body = copyOf(bytes, size);
    AccurateRipIds ids{2, 1, 2, 3};
    if (body.size() >= headerBytes)
        ids = {static_cast<quint8>(body[0]), byteorder::readLittle<quint32>(body.constData() + 1),
               byteorder::readLittle<quint32>(body.constData() + 5),
               byteorder::readLittle<quint32>(body.constData() + 9)};
    const QList<QList<ArEntry>> tracks = parseDbar(body, ids);
    require(tracks.size() == ids.audioTracks, "each audio track has a list");
    qsizetype entries = 0;
    for (const QList<ArEntry>& track : tracks) {
        entries += track.size();
        for (const ArEntry& entry : track) {
            require(entry.crc != 0 || entry.crc450 != 0, "no entry is without any checksum");
            const ArTrackVerdict verdict = accurateRipMatch(0, entry.crc, track);
            require(verdict.matched == (entry.crc != 0),
                    "an entry matches its own checksum, and zero matches none");
            require(!verdict.matched || verdict.confidence >= entry.confidence,
                    "the largest confidence counts");
        }
    }
    const qsizetype room = std::max<qsizetype>(body.size() - headerBytes, 0) / entryBytes;
    require(entries <= room, "no entry is made up");
}

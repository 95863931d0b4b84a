#include "metadata/lookup/MusicBrainz.h"

#include "metadata/http/Http.h"
#include "metadata/http/ServiceHosts.h"
#include "metadata/lookup/ReleaseDate.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int offsetFields = 99;
constexpr int loggedBytes = 300;

QByteArray upperHex(qint64 value, int width)
{
    return QByteArray::number(value, 16).toUpper().rightJustified(width, '0');
}

MusicBrainzMedium mediumFromJson(const QJsonObject& object)
{
    MusicBrainzMedium medium;
    medium.position = object[QLatin1String("position")].toInt();
    const QJsonArray tracks = object[QLatin1String("tracks")].toArray();
    for (const auto& value : tracks) {
        MusicBrainzTrack track;
        track.number = value[QLatin1String("number")].toString().toInt();
        track.title = value[QLatin1String("title")].toString();
        track.disc = medium.position;
        medium.tracks.append(track);
    }
    return medium;
}

} // namespace

QString musicBrainzDiscId(const DiscToc& disc)
{
    if (disc.tracks.isEmpty())
        return {};

    const int first = disc.tracks.first().number;
    const int last = disc.tracks.last().number;
    const quint32 leadout = disc.totalSectors + LEAD_IN_SECTORS;
    qDebug() << "[MB] DiscID calc: first=" << first << "last=" << last << "leadout=" << leadout;
    for (const TrackInfo& track : disc.tracks)
        qDebug() << "  track" << track.number << "offset=" << track.startLba + LEAD_IN_SECTORS;

    QByteArray text = upperHex(first, 2) + upperHex(last, 2) + upperHex(leadout, 8);
    for (qsizetype i = 0; i < offsetFields; ++i)
        text += upperHex(i < disc.tracks.size() ? disc.tracks[i].startLba + LEAD_IN_SECTORS : 0, 8);

    QByteArray id = QCryptographicHash::hash(text, QCryptographicHash::Sha1).toBase64();
    id.replace('+', '.').replace('/', '_').replace('=', '-');
    qDebug().noquote() << "[MB] DiscID:" << id;
    return QString::fromLatin1(id);
}

MusicBrainzResult musicBrainzLookup(const DiscToc& disc)
{
    const QString id = musicBrainzDiscId(disc);
    if (id.isEmpty())
        return {};

    const QString url =
        QLatin1String(services::musicBrainz)
        + QStringLiteral("/ws/2/discid/%1?inc=recordings+artists&fmt=json&cdstubs=no").arg(id);
    qDebug().noquote() << "[MB] DiscID URL:" << url;
    const QByteArray body = httpGet(url);
    qDebug().noquote() << "[MB] DiscID response:" << body.left(loggedBytes);

    MusicBrainzResult result = parseMusicBrainzDisc(body);
    if (result.title.isEmpty())
        qWarning() << "[MB] DiscID miss -> iTunes fallback will handle";
    else
        qDebug().noquote() << "[MB] DiscID hit:" << result.title;
    return result;
}

MusicBrainzResult parseMusicBrainzDisc(const QByteArray& body)
{
    if (body.isEmpty())
        return {};

    const QJsonObject answer = QJsonDocument::fromJson(body).object();
    if (answer.contains(QLatin1String("error"))) {
        qWarning().noquote() << "[MB] error:" << answer[QLatin1String("error")].toString();
        return {};
    }
    const QJsonArray releases = answer[QLatin1String("releases")].toArray();
    if (releases.isEmpty()) {
        qWarning() << "[MB] no releases found";
        return {};
    }

    const QJsonObject release = releases.first().toObject();
    MusicBrainzResult result;
    result.title = release[QLatin1String("title")].toString();
    result.year = yearOfDate(release[QLatin1String("date")].toString());
    result.mbid = release[QLatin1String("id")].toString();
    const QJsonArray credits = release[QLatin1String("artist-credit")].toArray();
    if (!credits.isEmpty())
        result.artist = credits.first()[QLatin1String("artist")][QLatin1String("name")].toString();
    qDebug().noquote() << "[MB] found:" << result.title << "/" << result.artist << "mbid=" << result.mbid;

    const QJsonArray media = release[QLatin1String("media")].toArray();
    result.discCount = static_cast<int>(media.size());
    for (const auto& value : media) {
        const MusicBrainzMedium medium = mediumFromJson(value.toObject());
        if (medium.position == 1)
            result.tracks = medium.tracks;
        result.media.append(medium);
    }
    return result;
}

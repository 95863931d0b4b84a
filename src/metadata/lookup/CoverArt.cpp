#include "metadata/lookup/CoverArt.h"

#include "metadata/http/Http.h"
#include "metadata/http/ServiceHosts.h"
#include "metadata/lookup/JsonAnswer.h"

#include <QDebug>
#include <QJsonArray>
#include <QUrl>

namespace {

QString percentEncoded(const QString& text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

QPixmap archiveImage(const QString& mbid)
{
    const QByteArray body = CoverArt::get(CoverArt::archiveImageUrl(mbid));
    QPixmap image;
    if (body.isEmpty())
        qWarning().noquote() << "CoverArt[MB]: image not available for MBID" << mbid;
    else if (image.loadFromData(body))
        qDebug() << "CoverArt[MB]: success" << image.size();
    return image;
}

/// The first entry of a list in an answer. Without one it is undefined, and the
/// log has a word on it.
QJsonValue firstOf(const QByteArray& body, QLatin1String key, const char* noAnswer, const char* noEntries)
{
    if (body.isEmpty()) {
        qWarning() << noAnswer;
        return QJsonValue::Undefined;
    }
    const QJsonArray entries = jsonArray(body, key);
    if (entries.isEmpty()) {
        qWarning() << noEntries;
        return QJsonValue::Undefined;
    }
    return entries.first();
}

} // namespace

QByteArray CoverArt::get(const QString& url)
{
    return verbatimGet(url);
}

QString CoverArt::archiveImageUrl(const QString& mbid)
{
    return QLatin1String(services::coverArtArchive) + QStringLiteral("/release/%1/front-500").arg(mbid);
}

QPixmap CoverArt::pictureAt(const QString& url)
{
    QPixmap picture;
    if (url.isEmpty())
        return picture;
    const QByteArray body = httpGet(url);
    if (!body.isEmpty())
        picture.loadFromData(body);
    return picture;
}

QPixmap CoverArt::fetch(const QString& artist, const QString& album) const
{
    qDebug().noquote() << "CoverArt::fetch" << artist << album;
    const QString mbid = findMbid(artist, album);
    if (!mbid.isEmpty()) {
        QPixmap image = archiveImage(mbid);
        if (!image.isNull())
            return image;
    }

    QString url = discogsImageUrl(artist, album);
    if (url.isEmpty())
        url = iTunesImageUrl(artist, album);
    if (url.isEmpty()) {
        qWarning() << "CoverArt: not found in any source";
        return {};
    }

    qDebug().noquote() << "CoverArt: downloading" << url;
    const QByteArray body = get(url);
    if (body.isEmpty()) {
        qWarning() << "CoverArt: image download failed";
        return {};
    }
    QPixmap image;
    image.loadFromData(body);
    qDebug() << "CoverArt: success" << image.size();
    return image;
}

QString CoverArt::findMbid(const QString& artist, const QString& album)
{
    const QString query = QStringLiteral("artist:\"%1\" AND release:\"%2\"").arg(artist, album);
    const QByteArray body = get(QLatin1String(services::musicBrainz) + QLatin1String("/ws/2/release/?query=")
                                + percentEncoded(query) + QLatin1String("&fmt=json&limit=5"));
    const QJsonValue release = firstOf(body, QLatin1String("releases"), "CoverArt[MB]: request failed",
                                       "CoverArt[MB]: no releases found");
    if (release.isUndefined())
        return {};
    QString mbid = release[QLatin1String("id")].toString();
    qDebug().noquote() << "CoverArt[MB]: MBID =" << mbid;
    return mbid;
}

QString CoverArt::discogsImageUrl(const QString& artist, const QString& album) const
{
    if (discogsToken.isEmpty()) {
        qDebug() << "CoverArt[Discogs]: token not set, skip";
        return {};
    }
    const QString query = percentEncoded(QStringLiteral("%1 %2").arg(artist, album));
    const QByteArray body = get(QLatin1String(services::discogs) + QLatin1String("/database/search?q=")
                                + query + QLatin1String("&type=release&per_page=5&token=") + discogsToken);
    const QJsonValue result = firstOf(body, QLatin1String("results"), "CoverArt[Discogs]: request failed",
                                      "CoverArt[Discogs]: no results");
    if (result.isUndefined())
        return {};
    QString url = result[QLatin1String("cover_image")].toString();
    if (url.isEmpty())
        url = result[QLatin1String("thumb")].toString();
    qDebug().noquote() << "CoverArt[Discogs]: url =" << url;
    return url;
}

QString CoverArt::iTunesImageUrl(const QString& artist, const QString& album)
{
    const QByteArray body =
        get(QLatin1String(services::iTunes) + QLatin1String("/search?term=") + iTunesTerm(artist, album)
            + QLatin1String("&entity=album&limit=10&country=JP"));
    if (body.isEmpty()) {
        qWarning() << "CoverArt[iTunes]: request failed";
        return {};
    }
    return chooseITunesArtwork(body, album);
}

ITunesResult CoverArt::lookupITunes(const QString& artist, const QString& album)
{
    const QString search = QLatin1String(services::iTunes) + QLatin1String("/search?term=")
                           + iTunesTerm(artist, album)
                           + QLatin1String("&entity=album&limit=10&country=JP&lang=ja_jp");
    qDebug().noquote() << "[iTunes] album search:" << search;
    const QByteArray albums = get(search);
    if (albums.isEmpty()) {
        qWarning() << "[iTunes] album search failed";
        return {};
    }

    auto [result, collectionId] = chooseITunesAlbum(albums, album);
    if (collectionId < 1)
        return result;

    const QString lookup =
        QLatin1String(services::iTunes)
        + QStringLiteral("/lookup?id=%1&entity=song&country=JP&lang=ja_jp").arg(collectionId);
    qDebug().noquote() << "[iTunes] track lookup:" << lookup;
    const QByteArray songs = get(lookup);
    if (songs.isEmpty())
        return result;
    result.tracks = parseITunesSongs(songs);
    qDebug() << "[iTunes] tracks:" << result.tracks.size();
    return result;
}

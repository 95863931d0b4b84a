#include "metadata/lookup/ITunes.h"

#include "metadata/lookup/JsonAnswer.h"
#include "metadata/lookup/ReleaseDate.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QUrl>

#include <algorithm>

namespace {

QJsonArray resultsOf(const QByteArray& body)
{
    return jsonArray(body, QLatin1String("results"));
}

bool namesMatch(const QString& name, const QString& album)
{
    return name.contains(album, Qt::CaseInsensitive) || album.contains(name, Qt::CaseInsensitive);
}

QString largeArtwork(QString address)
{
    return address.replace(QLatin1String("100x100bb"), QLatin1String("600x600bb"));
}

// A number of any size as a whole number; far past what an id or a track can be,
// it stops.
qint64 wholeNumber(const QJsonValue& value)
{
    constexpr double limit = 9.0e15;
    return static_cast<qint64>(std::clamp(value.toDouble(), -limit, limit));
}

} // namespace

QString iTunesTerm(const QString& artist, const QString& album)
{
    QByteArray term = QUrl::toPercentEncoding(artist + QLatin1Char(' ') + album);
    return QString::fromLatin1(term.replace("%20", "+"));
}

ITunesAlbum chooseITunesAlbum(const QByteArray& body, const QString& album)
{
    const QJsonArray results = resultsOf(body);
    qDebug() << "[iTunes] album results:" << results.size();
    if (results.isEmpty())
        return {};

    QJsonObject best = results.first().toObject();
    for (const auto& value : results) {
        if (namesMatch(value[QLatin1String("collectionName")].toString(), album)) {
            best = value.toObject();
            break;
        }
    }

    ITunesAlbum chosen;
    chosen.collectionId = wholeNumber(best[QLatin1String("collectionId")]);
    chosen.result.artist = best[QLatin1String("artistName")].toString();
    chosen.result.album = best[QLatin1String("collectionName")].toString();
    chosen.result.year = yearOfDate(best[QLatin1String("releaseDate")].toString());
    chosen.result.artworkUrl = largeArtwork(best[QLatin1String("artworkUrl100")].toString());
    qDebug().noquote() << "[iTunes] best album:" << chosen.result.album << "artist:" << chosen.result.artist
                       << "year:" << chosen.result.year << "collectionId:" << chosen.collectionId;
    return chosen;
}

QString chooseITunesArtwork(const QByteArray& body, const QString& album)
{
    const QJsonArray results = resultsOf(body);
    qDebug() << "CoverArt[iTunes]: results count" << results.size();
    for (const auto& value : results) {
        const QString artwork = value[QLatin1String("artworkUrl100")].toString();
        if (!artwork.isEmpty() && namesMatch(value[QLatin1String("collectionName")].toString(), album))
            return largeArtwork(artwork);
    }
    return results.isEmpty() ? QString()
                             : largeArtwork(results.first()[QLatin1String("artworkUrl100")].toString());
}

QStringList parseITunesSongs(const QByteArray& body)
{
    QMap<qint64, QString> titles;
    const QJsonArray results = resultsOf(body);
    for (const auto& value : results) {
        if (value[QLatin1String("wrapperType")].toString() != QLatin1String("track"))
            continue;
        const qint64 number = wholeNumber(value[QLatin1String("trackNumber")]);
        const QString title = value[QLatin1String("trackName")].toString();
        if (number > 0 && !title.isEmpty())
            titles[number] = title;
    }
    return titles.values();
}

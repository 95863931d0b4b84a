#include "support/ServiceAnswers.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

QByteArray written(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QJsonArray listOf(const QList<QJsonObject>& objects)
{
    QJsonArray array;
    for (const QJsonObject& object : objects)
        array.append(object);
    return array;
}

QJsonObject artistCredit(const QString& name, bool isLast)
{
    const QJsonObject artist{{QStringLiteral("id"), QStringLiteral("8b6a7c1e-0000-4000-8000-000000000001")},
                             {QStringLiteral("name"), name},
                             {QStringLiteral("sort-name"), name},
                             {QStringLiteral("disambiguation"), QString()},
                             {QStringLiteral("type"), QStringLiteral("Group")},
                             {QStringLiteral("country"), QStringLiteral("JP")}};
    return {{QStringLiteral("name"), name + QStringLiteral(" (as credited)")},
            {QStringLiteral("joinphrase"), isLast ? QString() : QStringLiteral(" & ")},
            {QStringLiteral("artist"), artist}};
}

QJsonObject medium(const ServedMedium& description)
{
    QJsonArray tracks;
    for (qsizetype i = 0; i < description.titles.size(); ++i) {
        const QString& title = description.titles[i];
        const QJsonObject recording{{QStringLiteral("title"), title + QStringLiteral(" (recording)")},
                                    {QStringLiteral("length"), 215'000},
                                    {QStringLiteral("video"), false}};
        tracks.append(
            QJsonObject{{QStringLiteral("id"), QStringLiteral("00000000-0000-4000-8000-000000000002")},
                        {QStringLiteral("position"), i + 1},
                        {QStringLiteral("number"), QString::number(i + 1)},
                        {QStringLiteral("title"), title},
                        {QStringLiteral("length"), 214'960},
                        {QStringLiteral("recording"), recording}});
    }
    return {{QStringLiteral("position"), description.position},
            {QStringLiteral("title"), QString()},
            {QStringLiteral("format"), QStringLiteral("CD")},
            {QStringLiteral("track-count"), description.titles.size()},
            {QStringLiteral("track-offset"), 0},
            {QStringLiteral("tracks"), tracks}};
}

} // namespace

QJsonObject musicbrainz::release(const ServedRelease& description)
{
    QJsonArray credits;
    for (qsizetype i = 0; i < description.artists.size(); ++i)
        credits.append(artistCredit(description.artists[i], i + 1 == description.artists.size()));
    QJsonArray media;
    for (const ServedMedium& one : description.media)
        media.append(medium(one));
    return {{QStringLiteral("id"), description.id},
            {QStringLiteral("title"), description.title},
            {QStringLiteral("status"), QStringLiteral("Official")},
            {QStringLiteral("quality"), QStringLiteral("normal")},
            {QStringLiteral("country"), QStringLiteral("JP")},
            {QStringLiteral("barcode"), QJsonValue::Null},
            {QStringLiteral("date"), description.date},
            {QStringLiteral("artist-credit"), credits},
            {QStringLiteral("media"), media}};
}

QByteArray musicbrainz::discAnswer(const QList<QJsonObject>& releases)
{
    return written({{QStringLiteral("id"), QStringLiteral("lwHl8fGzJyLXQR33ug60E8jhf4k-")},
                    {QStringLiteral("sectors"), 214'800},
                    {QStringLiteral("offset-count"), 2},
                    {QStringLiteral("offsets"), QJsonArray{150, 107'400}},
                    {QStringLiteral("releases"), listOf(releases)}});
}

QByteArray musicbrainz::error(const QString& text)
{
    return written({{QStringLiteral("error"), text},
                    {QStringLiteral("help"), QStringLiteral("For usage, please see the documentation")}});
}

QByteArray musicbrainz::searchAnswer(const QStringList& ids)
{
    QJsonArray releases;
    for (const QString& id : ids) {
        releases.append(QJsonObject{{QStringLiteral("id"), id},
                                    {QStringLiteral("score"), 100 - 10 * releases.size()},
                                    {QStringLiteral("title"), QStringLiteral("Still Water")}});
    }
    return written({{QStringLiteral("created"), QStringLiteral("2024-01-01T00:00:00.000Z")},
                    {QStringLiteral("count"), ids.size()},
                    {QStringLiteral("offset"), 0},
                    {QStringLiteral("releases"), releases}});
}

QJsonObject itunes::album(const ServedAlbum& description)
{
    return {{QStringLiteral("wrapperType"), QStringLiteral("collection")},
            {QStringLiteral("collectionType"), QStringLiteral("Album")},
            {QStringLiteral("artistId"), 270'000'001},
            {QStringLiteral("collectionId"), description.id},
            {QStringLiteral("artistName"), description.artist},
            {QStringLiteral("collectionName"), description.name},
            {QStringLiteral("artworkUrl60"),
             QString(description.artwork).replace(QStringLiteral("100x100"), QStringLiteral("60x60"))},
            {QStringLiteral("artworkUrl100"), description.artwork},
            {QStringLiteral("collectionPrice"), 1'528.0},
            {QStringLiteral("trackCount"), 12},
            {QStringLiteral("country"), QStringLiteral("JPN")},
            {QStringLiteral("releaseDate"), description.date}};
}

QJsonObject itunes::song(const ServedAlbum& album, const ServedSong& description)
{
    return {{QStringLiteral("wrapperType"), QStringLiteral("track")},
            {QStringLiteral("kind"), QStringLiteral("song")},
            {QStringLiteral("collectionId"), album.id},
            {QStringLiteral("collectionName"), album.name},
            {QStringLiteral("artistName"), album.artist},
            {QStringLiteral("discCount"), 2},
            {QStringLiteral("discNumber"), description.disc},
            {QStringLiteral("trackNumber"), description.number},
            {QStringLiteral("trackName"), description.name},
            {QStringLiteral("trackCensoredName"), description.name}};
}

QByteArray itunes::answer(const QList<QJsonObject>& results)
{
    return "\n\n\n"
           + written({{QStringLiteral("resultCount"), results.size()},
                      {QStringLiteral("results"), listOf(results)}});
}

QByteArray itunes::songAnswer(const ServedAlbum& leading, const QList<ServedSong>& songs)
{
    QList<QJsonObject> results{album(leading)};
    for (const ServedSong& one : songs)
        results.append(song(leading, one));
    return answer(results);
}

QByteArray discogs::searchAnswer(const QString& coverImage, const QString& thumb)
{
    const QJsonObject first{{QStringLiteral("id"), 1'234'567},
                            {QStringLiteral("type"), QStringLiteral("release")},
                            {QStringLiteral("title"), QStringLiteral("Marsh Choir - Still Water")},
                            {QStringLiteral("thumb"), thumb},
                            {QStringLiteral("cover_image"), coverImage}};
    return written({{QStringLiteral("pagination"), QJsonObject{{QStringLiteral("items"), 1}}},
                    {QStringLiteral("results"), QJsonArray{first}}});
}

QByteArray discogs::noResults()
{
    return written({{QStringLiteral("pagination"), QJsonObject{{QStringLiteral("items"), 0}}},
                    {QStringLiteral("results"), QJsonArray()}});
}

QByteArray discogs::refusal()
{
    return written({{QStringLiteral("message"), QStringLiteral("Invalid consumer token.")}});
}

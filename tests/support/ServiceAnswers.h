#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

/// Answers in the shape in which the lookup services send theirs: with all the
/// keys and lines that the program has no use for.

struct ServedMedium {
    int position = 1;
    QStringList titles;
};

struct ServedRelease {
    QString id = QStringLiteral("3d1c4b60-6a6c-4f0e-9d3e-2c63c3a4f6b1");
    QString title = QStringLiteral("Still Water");
    QStringList artists{QStringLiteral("Marsh Choir")};
    QString date = QStringLiteral("1998-05-20");
    QList<ServedMedium> media;
};

namespace musicbrainz {

/// One release as it stands in an answer; a test takes keys away.
QJsonObject release(const ServedRelease& description);
QByteArray discAnswer(const QList<QJsonObject>& releases);
QByteArray error(const QString& text);
QByteArray searchAnswer(const QStringList& ids);

} // namespace musicbrainz

struct ServedRecord {
    QString category = QStringLiteral("rock");
    QString discId = QStringLiteral("940b2d0c");
    QString discTitle = QStringLiteral("Marsh Choir / Still Water");
    QString year = QStringLiteral("1998");
    QString genre = QStringLiteral("Folk");
    QStringList titles;
};

namespace gnudb {

/// Code 200: one exact match.
QByteArray exactMatch(const ServedRecord& record);
/// Code 210 or 211: a list of matches.
QByteArray matchList(int code, const QList<ServedRecord>& records);
QByteArray noMatch();
/// The answer to a read command: status line, record, closing point.
QByteArray recordAnswer(const ServedRecord& record);

} // namespace gnudb

struct ServedAlbum {
    qint64 id = 1440831012;
    QString artist = QStringLiteral("Marsh Choir");
    QString name = QStringLiteral("Still Water");
    QString date = QStringLiteral("1998-05-20T07:00:00Z");
    QString artwork = QStringLiteral("https://images.test/art/100x100bb.jpg");
};

struct ServedSong {
    int disc = 1;
    int number = 1;
    QString name;
};

namespace itunes {

/// One album as it stands in an answer; a test takes keys away.
QJsonObject album(const ServedAlbum& description);
QJsonObject song(const ServedAlbum& album, const ServedSong& description);
QByteArray answer(const QList<QJsonObject>& results);
/// The answer to a lookup: the album itself, then its songs.
QByteArray songAnswer(const ServedAlbum& album, const QList<ServedSong>& songs);

} // namespace itunes

namespace discogs {

QByteArray searchAnswer(const QString& coverImage, const QString& thumb);
QByteArray noResults();
QByteArray refusal(); ///< to a token that is none

} // namespace discogs

namespace accuraterip {

struct Entry {
    quint8 confidence = 0;
    quint32 crc = 0;
    quint32 crc450 = 0;
};

/// One pressing of a database file.
QByteArray pressing(quint32 discId1, quint32 discId2, quint32 cddbId, const QList<Entry>& entries);

} // namespace accuraterip

/// A PNG picture of one colour.
QByteArray picture(int width, int height);

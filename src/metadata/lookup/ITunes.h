#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The answers of the iTunes Search API, without the requests.

/// What the iTunes store knows of an album. The empty album is the sign of a miss.
struct ITunesResult {
    QString artist;
    QString album;
    QString year; ///< four digits
    QString artworkUrl;
    QStringList tracks; ///< by track number; gaps in the numbers close up
};

/// An album search's pick: the album's data and the number that its songs are
/// asked by, below 1 when there is none.
struct ITunesAlbum {
    ITunesResult result;
    qint64 collectionId = 0;
};

/// The store's search term: artist and album, percent-encoded, with plus signs
/// for blanks.
QString iTunesTerm(const QString& artist, const QString& album);

/// Takes the first result whose name contains the album text or is contained in
/// it, else the first of all; the default record without results.
ITunesAlbum chooseITunesAlbum(const QByteArray& body, const QString& album);

/// Picks artwork as chooseITunesAlbum picks an album, except that a result
/// without artwork is passed over. Empty when there is none.
QString chooseITunesArtwork(const QByteArray& body, const QString& album);

/// The song titles of a lookup by album number, ascending by track number.
QStringList parseITunesSongs(const QByteArray& body);

#pragma once

#include "metadata/lookup/ITunes.h"

#include <QByteArray>
#include <QPixmap>
#include <QString>

/// Finds a cover picture, and an album's data, from artist and album text alone.
/// All calls block the thread on their requests. A miss is an empty text, an
/// empty record, or a null pixmap.
class CoverArt {
public:
    /// Personal access token for Discogs; that source is off without one.
    QString discogsToken;

    /// Tries the Cover Art Archive, Discogs and iTunes, in this order.
    QPixmap fetch(const QString& artist, const QString& album) const;

    /// The MusicBrainz id of the release that a text search finds first.
    static QString findMbid(const QString& artist, const QString& album);
    QString discogsImageUrl(const QString& artist, const QString& album) const;
    static QString iTunesImageUrl(const QString& artist, const QString& album);

    /// Where the Cover Art Archive keeps the front picture of a release.
    static QString archiveImageUrl(const QString& mbid);
    /// The picture at an address, by httpGet; null for the empty address, too.
    static QPixmap pictureAt(const QString& url);

    /// Asks the Japanese store for the album and for its songs.
    static ITunesResult lookupITunes(const QString& artist, const QString& album);

    /// A GET request that returns the body of any status: verbatimGet.
    static QByteArray get(const QString& url);
};

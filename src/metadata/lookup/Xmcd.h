#pragma once

#include <QList>
#include <QString>

struct GnuDbTrack {
    int number = 0; ///< counted from 1
    QString title;
};

/// What GnuDB knows of a disc. The empty album is the sign of a miss.
struct GnuDbResult {
    QString artist;
    QString album;
    QString year;  ///< as written
    QString genre; ///< as written
    QList<GnuDbTrack> tracks;
};

/// Reads an xmcd record, without its status line.
GnuDbResult parseXmcd(const QString& text);

#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>
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

/// Asks GnuDB for the disc; among several candidates the first with the right
/// number of titles wins, else the first of all. Blocks.
GnuDbResult gnudbLookup(const DiscToc& disc);

/// Fetches one record with its status line; empty on failure. Blocks.
QByteArray gnudbRead(const QString& category, const QString& discId);

/// Reads an xmcd record, without its status line.
GnuDbResult parseXmcd(const QString& text);

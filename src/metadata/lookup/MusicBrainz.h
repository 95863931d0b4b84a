#pragma once

#include "disc/DiscModel.h"

#include <QByteArray>
#include <QList>
#include <QString>

struct MusicBrainzTrack {
    int number = 0;
    QString title;
    int disc = 1; ///< position of its medium
};

struct MusicBrainzMedium {
    int position = 0; ///< number in the set
    QList<MusicBrainzTrack> tracks;
};

/// What MusicBrainz knows of a disc. The empty title is the sign of a miss.
struct MusicBrainzResult {
    QString title;
    QString artist; ///< of the first credit alone
    QString year;   ///< four digits
    QString mbid;
    int discCount = 1; ///< media of the release; 0 when it names none
    QList<MusicBrainzMedium> media;
    QList<MusicBrainzTrack> tracks; ///< of the medium at position 1
};

/// The MusicBrainz disc id; empty for a disc without tracks.
QString musicBrainzDiscId(const DiscToc& disc);

/// Asks for the releases that carry the disc's id, and takes the first. Blocks.
MusicBrainzResult musicBrainzLookup(const DiscToc& disc);

/// Reduces the service's answer to its first release, without a weighing of
/// candidates and with every text as it stands.
MusicBrainzResult parseMusicBrainzDisc(const QByteArray& body);

#pragma once

#include "disc/DiscModel.h"
#include "metadata/lookup/CoverArt.h"
#include "metadata/lookup/GnuDb.h"
#include "metadata/lookup/MusicBrainz.h"

#include <QPixmap>

/// What a chain of lookups found; the records of the services that it did not
/// get to, or that missed, are at their defaults.
struct MetaResult {
    MusicBrainzResult musicBrainz;
    GnuDbResult gnuDb; ///< of a physical disc alone
    ITunesResult iTunes;
    QPixmap cover; ///< null when no picture was found
};

/// MusicBrainz, then GnuDB, then iTunes, each only after a miss of the one
/// before, with a picture looked for along the way. Blocks on the network; for a
/// thread of the pool. Throws nothing: want of memory is a miss of everything.
MetaResult lookUpDisc(const DiscToc& disc);

/// MusicBrainz, then iTunes by the sheet's own artist and album; likewise.
MetaResult lookUpSheet(const DiscToc& disc);

/// The cover that the services have for a sheet's artist and album, or none. Blocks;
/// throws nothing.
QPixmap coverOfSheet(const DiscToc& sheet);

/// Ends every lookup and verification under way, and all later ones at once, and
/// waits for nothing. For the end of the program, which then waits for their threads
/// while the application still stands (waitForBackground): a thread that makes a
/// picture without it ends the process.
void stopLookups();

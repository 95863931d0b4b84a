#pragma once

#include "disc/DiscModel.h"

#include <QList>
#include <QString>

/// The identifiers under which the AccurateRip database files a pressing, and
/// the two checksums that it stores of a track, by the published scheme. All of
/// it is arithmetic modulo 2 to the 32nd; nothing fails, and all is reentrant.

struct AccurateRipIds {
    quint8 audioTracks = 0;
    quint32 discId1 = 0; ///< sum of the audio tracks' first sectors and the lead-out
    quint32 discId2 = 0; ///< the same values, each times its place from 1
    quint32 cddbId = 0;  ///< freedb id of the whole disc, data tracks included
};

/// All zero for a disc without audio tracks.
AccurateRipIds computeAccurateRipIds(const DiscToc& disc);

/// The name of the database file: "dBAR-TTT-discId1-discId2-cddbId".
QString accurateRipDiscId(const AccurateRipIds& ids);
QString accurateRipDiscId(const DiscToc& disc);

/// Both checksums of one track: the sum over its frames of (right << 16 | left)
/// times the frame's position from 1; the second adds the high half of each
/// product as well. Five sectors are left out at the start of track 1 and at the
/// end of the last track.
///
/// @param samples  interleaved left/right, 16-bit values shifted left by 16; a
///                 last odd value is left out
void accurateRipCrc(const QList<int>& samples, int trackNumber, int lastTrackNumber, quint32& crcV1,
                    quint32& crcV2);

#pragma once

#include "disc/DiscModel.h"

#include <QList>

class CdDrive;

/// Where the samples of a disc may be borrowed from.
struct AudioBounds {
    QList<TrackInfo> tracks;  ///< nothing is borrowed from those with data
    quint32 lastAudioLba = 0; ///< nor from behind this; 0 is no bound
};

/// Shifts the samples of a finished disc track in place, by the drive's read
/// offset in stereo frames. What moves in comes from the neighbouring track by a
/// plain read, or is silence outside of the bounds and where nothing is read. An
/// image track is shifted by values and filled with silence instead:
/// shiftWithSilence.
///
/// @param pcm       16-bit values shifted left by 16; its length never changes
/// @param firstLba  first and last sector of the track
void applyReadOffset(CdDrive& drive, const AudioBounds& bounds, QList<int>& pcm, quint32 firstLba,
                     quint32 lastLba);

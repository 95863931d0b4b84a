#pragma once

#include "disc/DiscModel.h"

#include <QList>

/// Where the audio of a disc lies. On a disc without audio the sectors are those
/// of all its tracks.
struct AudioArea {
    int trackCount = 0;   ///< tracks with audio
    int lastNumber = 0;   ///< of the last track with audio; 0 when there is none
    quint32 firstLba = 0; ///< first sector of the first track with audio
    quint32 lastLba = 0;  ///< last sector of the last one
};

AudioArea audioAreaOf(const QList<TrackInfo>& tracks);

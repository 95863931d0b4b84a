#pragma once

#include "disc/DiscModel.h"

/// A physical disc of audio tracks, numbered from 1, that begin at these sectors.
inline DiscToc discOf(const QList<quint32>& starts, quint32 leadOut)
{
    DiscToc disc;
    disc.totalSectors = leadOut;
    for (qsizetype i = 0; i < starts.size(); ++i) {
        TrackInfo track;
        track.number = static_cast<int>(i) + 1;
        track.startLba = starts[i];
        track.endLba = (i + 1 < starts.size() ? starts[i + 1] : leadOut) - 1;
        track.seconds = trackSeconds(track.startLba, track.endLba);
        disc.tracks.append(track);
    }
    return disc;
}

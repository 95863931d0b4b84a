#include "rip/AudioArea.h"

AudioArea audioAreaOf(const QList<TrackInfo>& tracks)
{
    AudioArea area;
    if (tracks.isEmpty())
        return area;
    area.firstLba = tracks.constFirst().startLba;
    area.lastLba = tracks.constLast().endLba;
    for (const TrackInfo& track : tracks) {
        if (track.isData)
            continue;
        if (area.trackCount++ == 0)
            area.firstLba = track.startLba;
        area.lastNumber = track.number;
        area.lastLba = track.endLba;
    }
    return area;
}

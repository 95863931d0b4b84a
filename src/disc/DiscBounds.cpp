#include "disc/DiscBounds.h"

#include <algorithm>
#include <limits>

namespace {

// One past the last sector of each audio track that data follows.
QList<quint32> endsBeforeData(const QList<TrackInfo>& tracks)
{
    QList<quint32> ends;
    for (qsizetype i = 0; i + 1 < tracks.size(); ++i) {
        if (!tracks[i].isData && tracks[i + 1].isData)
            ends.append(tracks[i].endLba + 1);
    }
    return ends;
}

SectorRange areaOfAudio(const QList<TrackInfo>& tracks)
{
    SectorRange area{std::numeric_limits<quint32>::max(), 0};
    for (const TrackInfo& track : tracks) {
        if (!track.isData)
            area = {std::min(area.first, track.startLba), std::max(area.end, track.endLba + 1)};
    }
    return area;
}

} // namespace

DiscBounds::DiscBounds(const DiscToc& disc)
    : leadOut(disc.totalSectors), audioEnds(endsBeforeData(disc.tracks)), area(areaOfAudio(disc.tracks))
{
}

quint32 DiscBounds::boundedBatch(quint32 lba, quint32 count) const
{
    if (leadOut != 0)
        count = lba >= leadOut ? 0 : std::min(count, leadOut - lba);
    for (const quint32 end : audioEnds) {
        if (lba < end)
            count = std::min(count, end - lba);
    }
    return count;
}

#include "disc/TocTable.h"

namespace {

constexpr quint32 sessionGapSectors = 11400; // lead-out and lead-in between two sessions

quint32 entryLba(const quint8* entry)
{
    const quint32 seconds = quint32{entry[5]} * 60 + entry[6];
    return seconds * SECTORS_PER_SECOND + entry[7] - LEAD_IN_SECTORS;
}

const quint8* tocEntry(const TocTable& table, int place)
{
    return table.data() + 4 + place * 8;
}

// In a multi-session disc the last audio track would include the gap between
// the sessions.
void cutSessionGaps(QList<TrackInfo>& tracks)
{
    for (qsizetype i = 0; i + 1 < tracks.size(); ++i) {
        TrackInfo& track = tracks[i];
        const TrackInfo& next = tracks[i + 1];
        if (!track.isData && next.isData && next.startLba > track.startLba + sessionGapSectors) {
            track.endLba = next.startLba - sessionGapSectors - 1;
            track.seconds = trackSeconds(track.startLba, track.endLba);
        }
    }
}

} // namespace

bool plausibleToc(const TocTable& table)
{
    const int first = table[2];
    const int last = table[3];
    return first != 0 && last >= first && last < 100;
}

DiscToc discFromToc(const TocTable& table)
{
    DiscToc disc;
    const int first = table[2];
    const int count = table[3] - first + 1;
    for (int i = 0; i < count; ++i) {
        const quint8* entry = tocEntry(table, i);
        TrackInfo track;
        track.number = first + i;
        track.startLba = entryLba(entry);
        track.endLba = entryLba(tocEntry(table, i + 1)) - 1;
        track.seconds = trackSeconds(track.startLba, track.endLba);
        track.isData = (entry[1] & 0x04) != 0;
        disc.tracks.append(track);
    }
    cutSessionGaps(disc.tracks);
    disc.totalSectors = entryLba(tocEntry(table, count));
    return disc;
}

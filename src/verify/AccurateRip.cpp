#include "verify/AccurateRip.h"

#include "disc/DigitSum.h"

#include <algorithm>

namespace {

constexpr quint64 trimmedFrames = 5 * SECTOR_VALUES / 2;

quint32 wholeSeconds(quint32 sector)
{
    return (sector + LEAD_IN_SECTORS) / SECTORS_PER_SECOND;
}

quint32 freedbId(const DiscToc& disc)
{
    quint32 digits = 0;
    for (const TrackInfo& track : disc.tracks)
        digits += digitSum(wholeSeconds(track.startLba));
    const quint32 seconds = wholeSeconds(disc.totalSectors) - wholeSeconds(disc.tracks.constFirst().startLba);
    return (digits % 255) << 24 | seconds << 8 | static_cast<quint32>(disc.tracks.size());
}

} // namespace

AccurateRipIds computeAccurateRipIds(const DiscToc& disc)
{
    AccurateRipIds ids;
    quint32 place = 0;
    for (const TrackInfo& track : disc.tracks) {
        if (track.isData)
            continue;
        ++place;
        ids.discId1 += track.startLba;
        ids.discId2 += std::max(track.startLba, 1u) * place;
    }
    if (place == 0)
        return {};
    ids.discId1 += disc.totalSectors;
    ids.discId2 += disc.totalSectors * (place + 1);
    ids.audioTracks = static_cast<quint8>(place);
    ids.cddbId = freedbId(disc);
    return ids;
}

QString accurateRipDiscId(const AccurateRipIds& ids)
{
    const QChar zero(u'0');
    return QStringLiteral("dBAR-%1-%2-%3-%4")
        .arg(ids.audioTracks, 3, 10, zero)
        .arg(ids.discId1, 8, 16, zero)
        .arg(ids.discId2, 8, 16, zero)
        .arg(ids.cddbId, 8, 16, zero);
}

QString accurateRipDiscId(const DiscToc& disc)
{
    return accurateRipDiscId(computeAccurateRipIds(disc));
}

// The position counts in 32 bits beside a 64-bit index, so that the compiler sees
// a product of two 32-bit numbers and turns the loop into vector code.
void accurateRipCrc(const QList<int>& samples, int trackNumber, int lastTrackNumber, quint32& crcV1,
                    quint32& crcV2)
{
    crcV1 = 0;
    crcV2 = 0;
    const auto frames = static_cast<quint64>(samples.size()) / 2;
    const quint64 first = trackNumber == 1 ? trimmedFrames : 1;
    quint64 last = frames;
    if (trackNumber == lastTrackNumber)
        last = frames > trimmedFrames ? frames - trimmedFrames : 0;
    if (first > last)
        return;

    const int* values = samples.constData() + 2 * (first - 1);
    const quint64 counted = last - first + 1;
    auto position = static_cast<quint32>(first);
    quint32 low = 0;
    quint32 high = 0;
    for (quint64 i = 0; i < counted; ++i, ++position) {
        const auto left = static_cast<quint32>(values[2 * i]);
        const auto right = static_cast<quint32>(values[2 * i + 1]);
        const quint32 frame = (right & 0xFFFF0000) | left >> 16;
        const quint64 product = quint64{frame} * position;
        low += static_cast<quint32>(product);
        high += static_cast<quint32>(product >> 32);
    }
    crcV1 = low;
    crcV2 = low + high;
}

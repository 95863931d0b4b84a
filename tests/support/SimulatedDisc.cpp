#include "support/SimulatedDisc.h"

#include "disc/DiscModel.h"

#include <algorithm>

namespace {

constexpr qint64 frameBytes = 4;
constexpr qint64 sectorFrames = RAW_SECTOR_BYTES / frameBytes;

void putEntry(std::span<quint8, 804> table, qsizetype place, int number, quint32 lba, bool isData)
{
    quint8* entry = table.data() + 4 + place * 8;
    const quint32 address = lba + LEAD_IN_SECTORS;
    entry[1] = static_cast<quint8>(0x10 | (isData ? 0x04 : 0x00));
    entry[2] = static_cast<quint8>(number);
    entry[5] = static_cast<quint8>(address / 75 / 60);
    entry[6] = static_cast<quint8>(address / 75 % 60);
    entry[7] = static_cast<quint8>(address % 75);
}

qint64 sectorOfFrame(qint64 frame)
{
    return frame >= 0 ? frame / sectorFrames : (frame + 1) / sectorFrames - 1;
}

} // namespace

quint32 SimulatedDisc::leadOut() const
{
    return leadOutLba != 0 ? leadOutLba : static_cast<quint32>(audio.size() / RAW_SECTOR_BYTES);
}

void SimulatedDisc::fillToc(std::span<quint8, 804> table) const
{
    if (!tocBytes.isEmpty()) {
        std::ranges::copy(tocBytes.left(static_cast<qsizetype>(table.size())), table.data());
        return;
    }
    const auto count = static_cast<int>(tracks.size());
    const quint32 length = 2 + 8 * (static_cast<quint32>(count) + 1);
    table[0] = static_cast<quint8>(length >> 8);
    table[1] = static_cast<quint8>(length);
    table[2] = static_cast<quint8>(firstTrackNumber);
    table[3] = static_cast<quint8>(firstTrackNumber + count - 1);
    for (int i = 0; i < count; ++i)
        putEntry(table, i, firstTrackNumber + i, tracks[i].startLba, tracks[i].isData);
    putEntry(table, count, 0xAA, leadOut(), false);
}

bool SimulatedDisc::isAudio(qint64 lba) const
{
    if (lba < 0 || lba >= leadOut())
        return false;
    const auto next = std::find_if(tracks.cbegin(), tracks.cend(),
                                   [lba](const SimulatedTrack& track) { return track.startLba > lba; });
    if (next == tracks.cbegin())
        return true; // the pause before the first track
    const SimulatedTrack& current = *(next - 1);
    const bool inGap = next != tracks.cend() && next->session > current.session
                       && lba >= qint64{next->startLba} - simulatedSessionGap;
    return !current.isData && !inGap;
}

void SimulatedDisc::copyFrames(qint64 firstFrame, quint8* sector) const
{
    const qint64 held = audio.size() / RAW_SECTOR_BYTES;
    qint64 done = 0;
    while (done < sectorFrames) {
        const qint64 frame = firstFrame + done;
        const qint64 lba = sectorOfFrame(frame);
        const qint64 within = frame - lba * sectorFrames;
        const qint64 count = std::min(sectorFrames - within, sectorFrames - done);
        quint8* target = sector + done * frameBytes;
        if (held > 0 && isAudio(lba))
            std::copy_n(audio.constData() + lba % held * RAW_SECTOR_BYTES + within * frameBytes,
                        count * frameBytes, target);
        else
            std::fill_n(target, count * frameBytes, quint8{0});
        done += count;
    }
}

QByteArray SimulatedDisc::visibleSector(quint32 lba, int offset) const
{
    QByteArray sector(RAW_SECTOR_BYTES, '\0');
    const qint64 first = qint64{lba} * sectorFrames;
    copyFrames(first, reinterpret_cast<quint8*>(sector.data()));
    for (qint64 i = 0; i < sectorFrames; ++i) {
        if (!isAudio(sectorOfFrame(first + i + offset)))
            std::fill_n(sector.data() + i * frameBytes, frameBytes, '\0');
    }
    return sector;
}

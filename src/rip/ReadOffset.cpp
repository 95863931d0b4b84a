#include "rip/ReadOffset.h"

#include "disc/CdDrive.h"
#include "disc/SampleValues.h"

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 framesPerSector = SECTOR_VALUES / 2;

bool mayHoldAudio(const AudioBounds& bounds, qint64 lba)
{
    const qint64 last = bounds.lastAudioLba != 0 ? bounds.lastAudioLba : std::numeric_limits<quint32>::max();
    return lba >= 0 && lba <= last
           && std::none_of(bounds.tracks.cbegin(), bounds.tracks.cend(), [lba](const TrackInfo& track) {
                  return track.isData && track.startLba <= lba && lba <= track.endLba;
              });
}

// Values of the disc from a stereo frame on, read without judgement.
QList<int> neighbourValues(CdDrive& drive, const AudioBounds& bounds, qint64 firstFrame, qsizetype count)
{
    const qint64 firstSector =
        firstFrame >= 0 ? firstFrame / framesPerSector : (firstFrame + 1) / framesPerSector - 1;
    const qsizetype skipped = (firstFrame - firstSector * framesPerSector) * 2;
    QList<int> values;
    values.reserve(skipped + count + SECTOR_VALUES);
    for (qint64 lba = firstSector; values.size() < skipped + count; ++lba) {
        QByteArray sector;
        if (mayHoldAudio(bounds, lba))
            sector = drive.readSectorUnjudged(static_cast<quint32>(lba));
        if (sector.size() != RAW_SECTOR_BYTES)
            sector = QByteArray(RAW_SECTOR_BYTES, '\0');
        appendSampleValues(values, sector);
    }
    return values.mid(skipped, count);
}

} // namespace

void applyReadOffset(CdDrive& drive, const AudioBounds& bounds, QList<int>& pcm, quint32 firstLba,
                     quint32 lastLba)
{
    const qint64 offset = drive.readOffset();
    if (offset == 0 || pcm.isEmpty())
        return;
    // More than the whole track may move in; only what stays is read.
    const qsizetype moved = std::min<qsizetype>(std::abs(offset) * 2, pcm.size());
    if (offset < 0) {
        const QList<int> before =
            neighbourValues(drive, bounds, qint64{firstLba} * framesPerSector + offset, moved);
        std::move_backward(pcm.begin(), pcm.end() - moved, pcm.end());
        std::copy(before.cbegin(), before.cend(), pcm.begin());
    } else {
        const qint64 skipped = offset - moved / 2;
        const QList<int> behind =
            neighbourValues(drive, bounds, (qint64{lastLba} + 1) * framesPerSector + skipped, moved);
        std::move(pcm.begin() + moved, pcm.end(), pcm.begin());
        std::copy(behind.cbegin(), behind.cend(), pcm.end() - moved);
    }
}

// The drive's read offset on a finished disc track.

#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "rip/SampleValues.h"

#include <algorithm>
#include <limits>

namespace {

constexpr qint64 framesPerSector = SECTOR_VALUES / 2;

} // namespace

void RipWorker::applyReadOffset(QList<int>& pcm, quint32 firstLba, quint32 lastLba)
{
    const qint64 offset = order.drive ? order.drive->readOffset() : 0;
    if (offset == 0 || pcm.isEmpty())
        return;
    // More than the whole track may move in; only what stays is read.
    const qsizetype moved = std::min<qsizetype>(std::abs(offset) * 2, pcm.size());
    if (offset < 0) {
        const QList<int> before = neighbourValues(qint64{firstLba} * framesPerSector + offset, moved);
        std::move_backward(pcm.begin(), pcm.end() - moved, pcm.end());
        std::copy(before.cbegin(), before.cend(), pcm.begin());
    } else {
        const qint64 skipped = offset - moved / 2;
        const QList<int> behind = neighbourValues((qint64{lastLba} + 1) * framesPerSector + skipped, moved);
        std::move(pcm.begin() + moved, pcm.end(), pcm.begin());
        std::copy(behind.cbegin(), behind.cend(), pcm.end() - moved);
    }
}

bool RipWorker::mayHoldAudio(qint64 lba) const
{
    const qint64 bound = lastAudioLba != 0 ? lastAudioLba : std::numeric_limits<quint32>::max();
    return lba >= 0 && lba <= bound
           && std::none_of(order.disc.tracks.cbegin(), order.disc.tracks.cend(),
                           [lba](const TrackInfo& track) {
                               return track.isData && track.startLba <= lba && lba <= track.endLba;
                           });
}

QList<int> RipWorker::neighbourValues(qint64 firstFrame, qsizetype count)
{
    const qint64 firstSector =
        firstFrame >= 0 ? firstFrame / framesPerSector : (firstFrame + 1) / framesPerSector - 1;
    const qsizetype skipped = (firstFrame - firstSector * framesPerSector) * 2;
    QList<int> values;
    values.reserve(skipped + count + SECTOR_VALUES);
    for (qint64 lba = firstSector; values.size() < skipped + count; ++lba) {
        QByteArray sector;
        if (mayHoldAudio(lba))
            sector = order.drive->readSectorUnjudged(static_cast<quint32>(lba));
        if (sector.size() != RAW_SECTOR_BYTES)
            sector = QByteArray(RAW_SECTOR_BYTES, '\0');
        appendSampleValues(values, sector);
    }
    return values.mid(skipped, count);
}

#include "secure/ParanoiaReader.h"

#include "base/LargeMemory.h"
#include "secure/SectorVote.h"

#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {

// 4 GiB of audio, 6.7 hours, are what a WAV image holds. A sheet with absurd times
// asks for more.
constexpr quint32 maxTrackSectors = 0xFFFFFFFF / RAW_SECTOR_BYTES;

void appendSector(QList<qint16>& samples, const QByteArray& sector)
{
    const qsizetype place = samples.size();
    samples.resize(place + SECTOR_VALUES);
    qFromLittleEndian<qint16>(sector.constData(), SECTOR_VALUES, samples.data() + place);
}

} // namespace

ParanoiaReader::ParanoiaReader(QObject* parent) : QObject(parent) {}

QList<qint16> ParanoiaReader::readTrack(CdDrive& drive, const TrackInfo& track)
{
    abortFlag = false;
    results.clear();
    // A track that ends before it starts has a count above any track's.
    const quint32 count = track.endLba - track.startLba + 1;
    if (count == 0 || count > maxTrackSectors)
        return {};

    QList<qint16> samples;
    reserveLarge(samples, static_cast<qsizetype>(count) * SECTOR_VALUES);
    results.reserve(static_cast<qsizetype>(count));
    const bool direct = !forceVerify && (track.sourceIsAudioFile || !track.sourceFile.isEmpty());
    for (quint32 place = 0; place < count && !abortFlag; ++place) {
        const quint32 lba = track.startLba + place;
        SectorResult record;
        const QByteArray sector =
            direct ? readSectorDirect(drive, lba, record) : readSectorVerified(drive, lba, record);
        results.append(record);
        appendSector(samples, sector);
        if (onSector)
            onSector(record);
        if (onProgress)
            onProgress(track.number, static_cast<int>(place + 1), static_cast<int>(count));
    }
    if (abortFlag)
        return {};
    shiftWithSilence(samples, drive.readOffset());
    return samples;
}

QByteArray ParanoiaReader::readSectorDirect(CdDrive& drive, quint32 lba, SectorResult& record)
{
    const QByteArray sector = drive.readSector(lba);
    record = SectorResult();
    record.lba = lba;
    record.bad = sector.isEmpty();
    record.clean = !record.bad;
    return record.bad ? silentSector() : sector;
}

QByteArray ParanoiaReader::readSectorVerified(CdDrive& drive, quint32 lba, SectorResult& record)
{
    return voteOnSector([&drive](quint32 sector) { return drive.readSector(sector); }, lba, maxReads,
                        abortFlag, record);
}

void shiftWithSilence(QList<qint16>& samples, int offset)
{
    const qsizetype shift = std::abs(qsizetype{offset});
    if (shift == 0 || shift >= samples.size())
        return;
    if (offset > 0) {
        std::move(samples.begin() + shift, samples.end(), samples.begin());
        std::fill(samples.end() - shift, samples.end(), qint16{0});
    } else {
        std::move_backward(samples.begin(), samples.end() - shift, samples.end());
        std::fill(samples.begin(), samples.begin() + shift, qint16{0});
    }
}

#include "secure/ParanoiaReader.h"

#include "base/LargeMemory.h"
#include "disc/SampleValues.h"
#include "secure/SectorVote.h"

#include <algorithm>
#include <cstdlib>

namespace {

// 4 GiB of audio, 6.7 hours, are what a WAV image holds. A sheet with absurd times
// asks for more.
constexpr quint32 maxTrackSectors = 0xFFFFFFFF / RAW_SECTOR_BYTES;

template<typename Value>
void shift(QList<Value>& samples, int offset)
{
    const qsizetype distance = std::abs(qsizetype{offset});
    if (distance == 0 || distance >= samples.size())
        return;
    if (offset > 0) {
        std::move(samples.begin() + distance, samples.end(), samples.begin());
        std::fill(samples.end() - distance, samples.end(), Value{0});
    } else {
        std::move_backward(samples.begin(), samples.end() - distance, samples.end());
        std::fill(samples.begin(), samples.begin() + distance, Value{0});
    }
}

} // namespace

ParanoiaReader::ParanoiaReader(QObject* parent) : QObject(parent) {}

QList<qint16> ParanoiaReader::readTrack(CdDrive& drive, const TrackInfo& track)
{
    QList<qint16> samples;
    readInto(samples, drive, track);
    return samples;
}

void ParanoiaReader::readTrack(CdDrive& drive, const TrackInfo& track, QList<int>& samples)
{
    readInto(samples, drive, track);
}

template<typename Value>
void ParanoiaReader::readInto(QList<Value>& samples, CdDrive& drive, const TrackInfo& track)
{
    abortFlag = false;
    results.clear();
    // A track that ends before it starts has a count above any track's.
    const quint32 count = track.endLba - track.startLba + 1;
    if (count == 0 || count > maxTrackSectors)
        return samples.clear();

    const qsizetype valueCount = qsizetype{count} * SECTOR_VALUES;
    reserveLarge(samples, valueCount);
    samples.resize(std::min(samples.size(), valueCount));
    results.reserve(static_cast<qsizetype>(count));
    const bool direct = !forceVerify && (track.sourceIsAudioFile || !track.sourceFile.isEmpty());
    for (quint32 place = 0; place < count && !abortFlag; ++place) {
        const quint32 lba = track.startLba + place;
        SectorResult record;
        const QByteArray sector =
            direct ? readSectorDirect(drive, lba, record) : readSectorVerified(drive, lba, record);
        results.append(record);
        // What the list has not held before becomes zeros where these are still in the cache.
        const qsizetype first = qsizetype{place} * SECTOR_VALUES;
        samples.resize(std::max(samples.size(), first + SECTOR_VALUES));
        putSampleValues(samples.data() + first, sector);
        if (onSector)
            onSector(record);
        if (onProgress)
            onProgress(track.number, static_cast<int>(place + 1), static_cast<int>(count));
    }
    if (abortFlag)
        return samples.clear();
    shiftWithSilence(samples, drive.readOffset());
}

QByteArray ParanoiaReader::readSectorDirect(CdDrive& drive, quint32 lba, SectorResult& record)
{
    QByteArray sector = drive.readSector(lba);
    record = SectorResult();
    record.lba = lba;
    record.bad = sector.isEmpty();
    record.clean = !record.bad;
    if (record.bad)
        sector = silentSector();
    return sector;
}

QByteArray ParanoiaReader::readSectorVerified(CdDrive& drive, quint32 lba, SectorResult& record)
{
    return voteOnSector([&drive](quint32 sector) { return drive.readSector(sector); }, lba, maxReads,
                        abortFlag, record);
}

void shiftWithSilence(QList<qint16>& samples, int offset)
{
    shift(samples, offset);
}

void shiftWithSilence(QList<int>& samples, int offset)
{
    shift(samples, offset);
}

#include "secure/ParanoiaReader.h"

#include <QMap>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int trustedVotes = 3;  // ends the voting early
constexpr int acceptedVotes = 2; // enough once the attempts are used up

// 2 GiB of audio, over three hours: no disc holds that, but a sheet with absurd
// times asks for it.
constexpr quint32 maxTrackSectors = 0x7FFFFFFF / RAW_SECTOR_BYTES;

using Votes = QMap<QByteArray, int>;

QByteArray silence()
{
    return QByteArray(RAW_SECTOR_BYTES, '\0');
}

// The lowest key wins a tie.
Votes::const_iterator mostVoted(const Votes& votes)
{
    auto best = votes.cend();
    for (auto entry = votes.cbegin(); entry != votes.cend(); ++entry) {
        if (best == votes.cend() || entry.value() > best.value())
            best = entry;
    }
    return best;
}

void appendSector(QList<qint16>& samples, const QByteArray& sector)
{
    const qsizetype place = samples.size();
    samples.resize(place + SECTOR_VALUES);
    qFromLittleEndian<qint16>(sector.constData(), SECTOR_VALUES, samples.data() + place);
}

} // namespace

ParanoiaReader::ParanoiaReader(QObject* parent)
    : QObject(parent)
{
}

QList<qint16> ParanoiaReader::readTrack(CdDrive& drive, const TrackInfo& track)
{
    abortFlag = false;
    results.clear();
    // A track that ends before it starts has a count above any track's.
    const quint32 count = track.endLba - track.startLba + 1;
    if (count == 0 || count > maxTrackSectors)
        return {};

    QList<qint16> samples;
    samples.reserve(static_cast<qsizetype>(count) * SECTOR_VALUES);
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
    return record.bad ? silence() : sector;
}

QByteArray ParanoiaReader::readSectorVerified(CdDrive& drive, quint32 lba, SectorResult& record)
{
    record = SectorResult();
    record.lba = lba;
    const QByteArray first = drive.readSector(lba);
    if (first.isEmpty()) {
        record.bad = true;
        return silence();
    }
    Votes votes{{first, 1}};
    const QByteArray second = drive.readSector(lba);
    if (second == first) {
        record.clean = true;
        return first;
    }
    if (!second.isEmpty())
        ++votes[second];
    ++record.retries;

    for (int attempt = 2; attempt < maxReads && !abortFlag; ++attempt) {
        drive.readSector(lba > 0 ? lba - 1 : lba + 1);
        const QByteArray again = drive.readSector(lba);
        ++record.retries;
        if (again.isEmpty())
            continue;
        ++votes[again];
        const auto trusted = std::find_if(votes.cbegin(), votes.cend(), [](int n) { return n >= trustedVotes; });
        if (trusted != votes.cend())
            return trusted.key();
    }
    const auto best = mostVoted(votes);
    record.bad = best.value() < acceptedVotes;
    return best.key();
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

#include "FileJudge.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <QFile>

#include <algorithm>
#include <cstring>

namespace {

constexpr qint64 frameBytes = 4;
constexpr qint64 sectorFrames = RAW_SECTOR_BYTES / frameBytes;

} // namespace

QByteArray samplesOfWave(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    for (qsizetype place = 12; place + 8 <= bytes.size();) {
        const auto size = qsizetype{byteorder::readLittle<quint32>(bytes.constData() + place + 4)};
        if (bytes.mid(place, 4) == "data")
            return bytes.mid(place + 8, size);
        place += 8 + size + (size & 1);
    }
    return {};
}

bool FileJudge::judge(quint32 first, quint32 last, const QByteArray& samples)
{
    const qint64 count = qint64{last} - first + 1;
    if (samples.size() != count * RAW_SECTOR_BYTES)
        return false;
    for (qint64 i = 0; i < count; ++i)
        judgeSector(first, last, first + static_cast<quint32>(i), samples.constData() + i * RAW_SECTOR_BYTES);
    return true;
}

DiscRipOutcome FileJudge::result() const
{
    DiscRipOutcome sum = outcome;
    for (auto said = verdicts.cbegin(); said != verdicts.cend(); ++said) {
        if (wrongReads.contains(said.key()))
            continue;
        sum.falselyBad += *said == Verdict::Unconfirmed ? 1 : 0;
        sum.recoveredRight += *said == Verdict::Recovered ? 1 : 0;
    }
    return sum;
}

void FileJudge::judgeSector(quint32 first, quint32 last, quint32 lba, const char* held)
{
    const QByteArray truth = drive.truth(lba);
    if (std::memcmp(truth.constData(), held, RAW_SECTOR_BYTES) == 0)
        return;
    Verdict highest = Verdict::Unconfirmed;
    for (qint64 frame = 0; frame < sectorFrames; ++frame) {
        if (std::memcmp(truth.constData() + frame * frameBytes, held + frame * frameBytes, frameBytes) != 0)
            highest = std::max(highest, verdictOfFrame(first, last, qint64{lba} * sectorFrames + frame));
    }
    ++outcome.wrong;
    ++(highest == Verdict::Good        ? outcome.wrongGood
       : highest == Verdict::Borrowed  ? outcome.wrongBorrowed
       : highest == Verdict::Recovered ? outcome.wrongRecovered
                                       : outcome.wrongUnconfirmed);
}

// Of the read that a wrong frame of a file came from.
Verdict FileJudge::verdictOfFrame(quint32 first, quint32 last, qint64 frame)
{
    const qint64 place = frame + drive.readOffset;
    const qint64 read = place / sectorFrames;
    if (place < qint64{first} * sectorFrames || read > last)
        return Verdict::Borrowed;
    const auto lba = static_cast<quint32>(read);
    wrongReads.insert(lba);
    return verdicts.value(lba, Verdict::Good);
}

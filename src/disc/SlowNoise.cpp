#include "disc/SlowNoise.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr qint64 slow = 500'000'000; // ns; ten times what a batch takes a drive that need not try again
constexpr qsizetype readingsOfTheDead = 5;
constexpr qsizetype suspectsAtMost = 2000; // 18 MB
constexpr quint32 addressesOfADisc = 100 * 60 * SECTORS_PER_SECOND;

// From sample to sample music goes a small part of its height, and silence nowhere; noise
// goes more than all of it. So music is told from noise also by a drive that does not find
// its place again, of which no two readings are alike.
bool looksLikeNoise(QByteArrayView reading)
{
    constexpr qsizetype frame = 4;
    const auto sampleAt = [&](qsizetype place) {
        return qint64{byteorder::readLittle<qint16>(reading.data() + place)};
    };
    qint64 level = 0;
    qint64 steps = 0;
    for (qsizetype place = frame; place < reading.size(); place += 2) {
        level += std::abs(sampleAt(place));
        steps += std::abs(sampleAt(place) - sampleAt(place - frame));
    }
    return steps > 0 && steps >= level;
}

// Two readings of a damaged sector differ in some bytes, two noises share next to none.
bool areAlike(QByteArrayView one, QByteArrayView other)
{
    qsizetype shared = 0;
    for (qsizetype place = 0; place < one.size(); ++place)
        shared += one[place] == other[place] ? 1 : 0;
    return shared * 8 >= one.size();
}

} // namespace

QList<quint32> SlowNoise::delivered(quint32 lba, const QByteArray& sectors, const QList<int>& c2Counts,
                                    qint64 nanoseconds)
{
    QList<quint32> dead;
    const qsizetype count = sectors.size() / RAW_SECTOR_BYTES;
    for (qsizetype place = 0; place < count; ++place) {
        const quint32 sector = lba + static_cast<quint32>(place);
        if (sector >= addressesOfADisc || (!cleared.isEmpty() && cleared.testBit(sector)))
            continue;
        const auto reading = QByteArrayView(sectors).sliced(place * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
        const bool flagged = c2Counts.value(place, 1) > 0;
        if (nanoseconds < slow)
            cameQuickly(sector, reading);
        else if (!flagged || !looksLikeNoise(reading))
            clear(sector);
        else if (isDead(sector, reading))
            dead.append(sector);
    }
    return dead;
}

// The last reading once more is what the drive still holds in its memory, and says
// nothing of the disc.
void SlowNoise::cameQuickly(quint32 lba, QByteArrayView reading)
{
    const auto suspect = find(lba);
    if (suspect == suspects.end() || suspect->readings.constLast() != reading)
        clear(lba);
}

bool SlowNoise::isDead(quint32 lba, QByteArrayView reading)
{
    auto suspect = find(lba);
    if (suspect == suspects.end()) {
        if (suspects.size() == suspectsAtMost)
            suspects.removeFirst();
        suspects.append(Suspect{lba, {}});
        suspect = suspects.end() - 1;
    }
    if (std::any_of(suspect->readings.cbegin(), suspect->readings.cend(),
                    [&](const QByteArray& before) { return areAlike(before, reading); })) {
        clear(lba);
        return false;
    }
    suspect->readings.append(reading.toByteArray());
    if (suspect->readings.size() < readingsOfTheDead)
        return false;
    suspects.erase(suspect);
    return true;
}

void SlowNoise::clear(quint32 lba)
{
    const auto suspect = find(lba);
    if (suspect != suspects.end())
        suspects.erase(suspect);
    if (cleared.isEmpty())
        cleared.resize(addressesOfADisc);
    cleared.setBit(lba);
}

QList<SlowNoise::Suspect>::iterator SlowNoise::find(quint32 lba)
{
    return std::find_if(suspects.begin(), suspects.end(),
                        [lba](const Suspect& suspect) { return suspect.lba == lba; });
}

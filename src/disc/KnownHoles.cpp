#include "disc/KnownHoles.h"

#include <algorithm>

namespace {

// What the first bad sector of a batch that was given up is still asked: enough
// to give a sector that is read now and then its chance, and few enough for both
// ladders together to stay below two minutes where a failing read takes two seconds.
constexpr quint32 attemptsAfterBatch = 15;

} // namespace

void KnownHoles::batchGivenUp(quint32 lba, quint32 count)
{
    stretches.append({lba, lba + count, lba + count});
}

void KnownHoles::failed(quint32 lba, quint32 count)
{
    if (count == 1)
        ++failures[lba];
}

void KnownHoles::delivered(quint32 lba, quint32 count)
{
    if (failures.isEmpty() && stretches.isEmpty())
        return;
    for (quint32 sector = lba; sector < lba + count; ++sector) {
        failures.remove(sector);
        settle(sector);
    }
}

bool KnownHoles::isExhausted(quint32 lba) const
{
    const bool failedABatch =
        std::any_of(stretches.cbegin(), stretches.cend(),
                    [lba](const Stretch& stretch) { return stretch.first == lba && lba < stretch.culprit; });
    return failures.value(lba) >= (failedABatch ? attemptsAfterBatch : LADDER_ATTEMPTS);
}

void KnownHoles::add(quint32 lba)
{
    holes.insert(lba);
    const bool refused = failures.remove(lba);
    for (Stretch& stretch : stretches) {
        if (refused && lba >= stretch.first)
            stretch.culprit = std::min(stretch.culprit, lba);
    }
    settle(lba);
}

void KnownHoles::settle(quint32 lba)
{
    for (Stretch& stretch : stretches) {
        if (stretch.first != lba)
            continue;
        do {
            ++stretch.first;
        } while (isHole(stretch.first));
    }
    stretches.removeIf([](const Stretch& stretch) { return stretch.first >= stretch.end; });
}

bool KnownHoles::anyHole(quint32 lba, quint32 count) const
{
    return std::any_of(holes.cbegin(), holes.cend(),
                       [=](quint32 hole) { return hole >= lba && hole - lba < count; });
}

bool KnownHoles::anyTrouble(quint32 lba, quint32 count) const
{
    return anyHole(lba, count)
           || std::any_of(stretches.cbegin(), stretches.cend(), [=](const Stretch& stretch) {
                  return stretch.first < lba + count && lba < stretch.end;
              });
}

quint32 KnownHoles::boundedBatch(quint32 lba, quint32 count) const
{
    quint32 bound = count;
    for (const quint32 hole : holes) {
        if (hole >= lba && hole - lba < bound)
            bound = std::max(1U, hole - lba);
    }
    for (const Stretch& stretch : stretches) {
        if (lba >= stretch.first && lba < stretch.end)
            return std::min(1U, count);
        if (lba < stretch.first)
            bound = std::min(bound, stretch.first - lba);
    }
    return bound;
}

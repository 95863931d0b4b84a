#include "support/SimulatedMechanism.h"

#include <algorithm>

namespace {

constexpr double strokeSectors = 80 * 60 * 75;
constexpr double sectorsPerSecond = 75;

quint32 distanceBetween(quint32 one, quint32 other)
{
    return std::max(one, other) - std::min(one, other);
}

} // namespace

SimulatedMechanism::Reading SimulatedMechanism::read(quint32 lba, quint32 count, qint64& clock)
{
    Reading reading;
    for (quint32 sector = lba; sector < lba + count; ++sector) {
        WrongPattern pattern;
        if (useCached(sector) || answers.contains(sector)) {
            pattern = answers.value(sector).pattern; // none where the disc is sound
        } else {
            readOnTo(sector, clock);
            reading.end = readFromDisc(sector, clock, pattern);
            if (reading.end != Reading::Whole)
                return reading;
        }
        reading.patterns.append(pattern);
    }
    return reading;
}

bool SimulatedMechanism::isCached(quint32 lba) const
{
    return std::any_of(segments.cbegin(), segments.cend(),
                       [lba](const Segment& one) { return one.holds(lba); });
}

bool SimulatedMechanism::useCached(quint32 lba)
{
    const auto found =
        std::find_if(segments.begin(), segments.end(), [lba](const Segment& s) { return s.holds(lba); });
    if (found == segments.end())
        return false;
    found->lastUse = ++uses;
    return true;
}

// What the head passes over on its way into the buffer's reach is read as well.
// A sector in between that cannot be read ends that; the head then jumps.
void SimulatedMechanism::readOnTo(quint32 lba, qint64& clock)
{
    const bool within = std::any_of(segments.cbegin(), segments.cend(), [&](const Segment& one) {
        return one.end == head && lba > one.end && lba - one.end <= readAhead;
    });
    for (WrongPattern pattern; within && head < lba;) {
        if (readFromDisc(head, clock, pattern) != Reading::Whole)
            return;
    }
}

SimulatedMechanism::Segment& SimulatedMechanism::segmentFor(quint32 lba)
{
    const auto going =
        std::find_if(segments.begin(), segments.end(), [lba](const Segment& s) { return s.end == lba; });
    if (going != segments.end())
        return *going;
    if (segments.size() < cacheSegments) {
        segments.append({lba, lba});
        return segments.last();
    }
    const auto oldest =
        std::min_element(segments.begin(), segments.end(),
                         [](const Segment& a, const Segment& b) { return a.lastUse < b.lastUse; });
    *oldest = {lba, lba};
    return *oldest;
}

void SimulatedMechanism::keep(quint32 lba)
{
    if (cacheSectors == 0)
        return;
    segments.removeIf([lba](const Segment& one) { return one.holds(lba); });
    const quint32 room = std::max(1U, cacheSectors / static_cast<quint32>(cacheSegments));
    Segment& segment = segmentFor(lba);
    segment.end = lba + 1;
    segment.first = std::max(segment.first, segment.end - std::min(segment.end, room));
    segment.lastUse = ++uses;
}

SimulatedMechanism::Reading::End SimulatedMechanism::readFromDisc(quint32 lba, qint64& clock,
                                                                  WrongPattern& pattern)
{
    moveHead(lba, clock);
    transfer(lba, clock);
    Remembered answer;
    const qint64 transferred = clock;
    const Reading::End end = suffer(lba, clock, answer);
    head = lba + 1;
    if (clock > transferred)
        readyTime = clock;
    if (end == Reading::Whole) {
        ++sectorsFromDisc;
        keep(lba);
        pattern = answer.pattern;
    } else {
        streaming = false;
    }
    forgetWhatIsFarFrom(lba);
    if (end == Reading::Whole && readings.contains(lba) && (isCached(lba) || answer.staleWithin > 0))
        answers.insert(lba, answer);
    return end;
}

void SimulatedMechanism::moveHead(quint32 lba, qint64& clock)
{
    if (!spinning || (spinDownAfter > 0 && clock - readyTime > spinDownAfter)) {
        clock += spinUpNanoseconds;
        spinning = true;
        streaming = false;
    }
    if (lba == head)
        return;
    const double part = distanceBetween(lba, head) / strokeSectors;
    clock += seekNanoseconds + static_cast<qint64>(static_cast<double>(strokeNanoseconds) * part);
    streaming = false;
}

void SimulatedMechanism::transfer(quint32 lba, qint64& clock)
{
    if (speed <= 0) {
        readyTime = clock;
        return;
    }
    const bool damaged = std::any_of(faults.cbegin(), faults.cend(),
                                     [lba](const SectorFault& fault) { return fault.covers(lba); });
    const auto time = static_cast<qint64>(1e9 / (sectorsPerSecond * (damaged ? speedOnDamage : speed)));
    // What the head has read while the host was idle is there already.
    const qint64 earliest = clock - time * qint64{cacheSectors};
    const qint64 started = streaming && cacheSectors > 0 ? std::max(readyTime, earliest) : clock;
    readyTime = started + time;
    clock = std::max(clock, readyTime);
    streaming = true;
}

SimulatedMechanism::Reading::End SimulatedMechanism::suffer(quint32 lba, qint64& clock, Remembered& answer)
{
    quint64 place = 0;
    for (const SectorFault& fault : faults) {
        ++place;
        if (!fault.covers(lba))
            continue;
        const quint32 turn = readings[lba];
        clock += fault.nanoseconds;
        answer.staleWithin = std::max({answer.staleWithin, fault.staleWithin, staleWithin});
        const quint64 faultSeed = scramble(seed, place, 0);
        const bool strikes = happens(fault.probability, scramble(faultSeed, lba, turn));
        if (fault.kind == SectorFault::Wrong && answer.pattern.wrongBytes == 0)
            answer.pattern = patternOfReading(fault, faultSeed, lba, turn);
        if (fault.kind == SectorFault::Slow || fault.kind == SectorFault::Wrong || !strikes)
            continue;
        ++readings[lba];
        return fault.kind == SectorFault::Unreadable ? Reading::Unreadable
               : fault.kind == SectorFault::Hanging  ? Reading::Hanging
                                                     : Reading::Short;
    }
    if (readings.contains(lba))
        ++readings[lba];
    return Reading::Whole;
}

void SimulatedMechanism::forgetWhatIsFarFrom(quint32 lba)
{
    if (answers.isEmpty())
        return;
    answers.removeIf([&](const auto& entry) {
        const quint32 within = entry.value().staleWithin;
        const bool stale = within > 0 && distanceBetween(lba, entry.key()) < within;
        return !isCached(entry.key()) && !stale;
    });
}

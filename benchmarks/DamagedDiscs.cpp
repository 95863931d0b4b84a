#include "DamagedDiscs.h"

#include <algorithm>

namespace {

// A range of sectors somewhere on the disc, after the first seconds.
SectorFault& placed(SimulatedDrive& drive, SectorFault fault, quint64 seed, quint32 width)
{
    const quint64 turn = static_cast<quint64>(drive.mechanism.faults.size());
    constexpr quint32 edge = 300;
    const quint32 room = std::max(drive.leadOut(), 2 * edge + width + 1) - 2 * edge - width;
    fault.first = edge + static_cast<quint32>(scramble(seed, turn, 11) % room);
    fault.last = fault.first + width - 1;
    drive.mechanism.faults.append(fault);
    return drive.mechanism.faults.last();
}

double between(double low, double high, quint64 number)
{
    return low + (high - low) * static_cast<double>(number % 1000) / 1000;
}

// One scratch for so many sectors of the disc, in the middle.
void scratch(SimulatedDrive& drive, quint64 seed, quint32 sectorsEach, quint32 widest, double low, double high)
{
    const quint32 count = std::max(1U, drive.leadOut() / sectorsEach);
    for (quint32 i = 0; i < count; ++i) {
        const quint64 number = scramble(seed, i, 12);
        placed(drive, SectorFault::flaky(0, 0, between(low, high, number)), seed,
               1 + static_cast<quint32>(scramble(number, 1, 0) % widest));
    }
}

void clean(SimulatedDrive&, quint64) {}

void lightScratches(SimulatedDrive& drive, quint64 seed) { scratch(drive, seed, 400, 3, 0.05, 0.3); }

void heavyScratches(SimulatedDrive& drive, quint64 seed) { scratch(drive, seed, 150, 8, 0.5, 0.95); }

void sameWrongBytes(SimulatedDrive& drive, quint64 seed)
{
    scratch(drive, seed, 400, 4, 0.4, 0.8);
    for (SectorFault& fault : drive.mechanism.faults)
        fault.variants = 1;
}

void trackEdges(SimulatedDrive& drive, quint64)
{
    for (const SimulatedTrack& track : drive.tracks.mid(1))
        drive.mechanism.faults.append(SectorFault::flaky(track.startLba - 2, track.startLba + 1, 0.6));
}

void deadSpot(SimulatedDrive& drive, quint64 seed) { placed(drive, SectorFault::deadSpot(0, 0), seed, 12); }

void unreadableSpot(SimulatedDrive& drive, quint64 seed) { placed(drive, SectorFault::unreadable(0, 0), seed, 3); }

void staleWithin150(SimulatedDrive& drive, quint64 seed)
{
    lightScratches(drive, seed);
    drive.mechanism.staleWithin = 150;
}

void staleWithin1500(SimulatedDrive& drive, quint64 seed)
{
    lightScratches(drive, seed);
    drive.mechanism.staleWithin = 1500;
}

void largeCache(SimulatedDrive& drive, quint64 seed)
{
    lightScratches(drive, seed);
    drive.mechanism.cacheSectors = 890; // 2 MB
}

void c2AllSet(SimulatedDrive& drive, quint64 seed)
{
    heavyScratches(drive, seed);
    drive.c2 = SimulatedDrive::C2::AllSet;
}

void c2NeverSet(SimulatedDrive& drive, quint64 seed)
{
    heavyScratches(drive, seed);
    drive.c2 = SimulatedDrive::C2::NeverSet;
}

void c2Noisy(SimulatedDrive& drive, quint64 seed)
{
    heavyScratches(drive, seed);
    drive.c2 = SimulatedDrive::C2::Noisy;
    drive.c2NoiseRate = 0.02;
}

void c2PartiallyHonest(SimulatedDrive& drive, quint64 seed)
{
    heavyScratches(drive, seed);
    for (SectorFault& fault : drive.mechanism.faults)
        fault.wrongBytes = 4;
    drive.c2 = SimulatedDrive::C2::PartiallyHonest;
}

void silentFlaky(SimulatedDrive& drive, quint64 seed)
{
    for (int i = 0; i < 10; ++i)
        placed(drive, SectorFault::silentlyFlaky(0, 0, 0.3), seed, 2);
}

void silentSticky(SimulatedDrive& drive, quint64 seed)
{
    for (int i = 0; i < 10; ++i)
        placed(drive, SectorFault::silentlySticky(0, 0), seed, 2);
}

void hanging(SimulatedDrive& drive, quint64 seed)
{
    placed(drive, SectorFault::hanging(0, 0), seed, 1);
    for (int i = 0; i < 4; ++i)
        placed(drive, SectorFault::hanging(0, 0, 0.5), seed, 1);
}

void mixed(SimulatedDrive& drive, quint64 seed)
{
    lightScratches(drive, seed);
    scratch(drive, scramble(seed, 1, 1), 1000, 5, 0.5, 0.9);
    placed(drive, SectorFault::deadSpot(0, 0), seed, 4);
    placed(drive, SectorFault::unreadable(0, 0, 0.7), seed, 2);
    placed(drive, SectorFault::shortAnswer(0, 0, 0.5), seed, 2);
    placed(drive, SectorFault::hanging(0, 0, 0.3), seed, 1);
    placed(drive, SectorFault::slow(0, 0), seed, 100);
    placed(drive, SectorFault::stale(0, 0, 0.3, 150), seed, 2);
}

void secondSession(SimulatedDrive& drive, quint64)
{
    const quint32 data = drive.leadOut() + simulatedSessionGap;
    drive.tracks.append({data, true, 2});
    drive.leadOutLba = data + 3000;
}

} // namespace

const QList<DamagedDisc>& damagedDiscs()
{
    static const QList<DamagedDisc> discs{
        {"clean", clean},
        {"clean, data in a second session", secondSession},
        {"light scratches", lightScratches},
        {"heavy scratches, honest C2", heavyScratches},
        {"scratches that read wrong the same way", sameWrongBytes},
        {"scratches where tracks meet", trackEdges},
        {"dead spot", deadSpot},
        {"unreadable spot", unreadableSpot},
        {"cache of 890 sectors", largeCache},
        {"cache stale within 150 sectors", staleWithin150},
        {"cache stale within 1500 sectors", staleWithin1500},
        {"C2 all set", c2AllSet, true},
        {"C2 never set", c2NeverSet, true},
        {"C2 noisy", c2Noisy, true},
        {"C2 misses half of 4 wrong bytes", c2PartiallyHonest, true},
        {"silent errors, now and then", silentFlaky},
        {"silent errors, always the same", silentSticky},
        {"hanging sectors", hanging},
        {"mixed", mixed},
    };
    return discs;
}

void insertSoundDisc(SimulatedDrive& drive, const QByteArray& audio)
{
    constexpr qint64 millisecond = 1'000'000;
    drive.audio = audio;
    const quint32 sectors = drive.leadOut();
    drive.tracks = {{0}, {sectors / 3}, {sectors * 2 / 3}};
    drive.commandNanoseconds = millisecond;
    drive.mechanism.cacheSectors = 60;
    drive.mechanism.speed = 40;
    drive.mechanism.speedOnDamage = 4;
    drive.mechanism.spinUpNanoseconds = 2000 * millisecond;
    drive.mechanism.seekNanoseconds = 80 * millisecond;
    drive.mechanism.strokeNanoseconds = 120 * millisecond;
}

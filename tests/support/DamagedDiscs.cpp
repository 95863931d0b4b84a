#include "support/DamagedDiscs.h"

#include "disc/DiscModel.h"

#include <algorithm>
#include <utility>

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
void scratch(SimulatedDrive& drive, quint64 seed, quint32 sectorsEach, quint32 widest, double low,
             double high)
{
    const quint32 count = std::max(1U, drive.leadOut() / sectorsEach);
    for (quint32 i = 0; i < count; ++i) {
        const quint64 number = scramble(seed, i, 12);
        placed(drive, SectorFault::flaky(0, 0, between(low, high, number)), seed,
               1 + static_cast<quint32>(scramble(number, 1, 0) % widest));
    }
}

void clean(SimulatedDrive&, quint64) {}

void lightScratches(SimulatedDrive& drive, quint64 seed)
{
    scratch(drive, seed, 400, 3, 0.05, 0.3);
}

void heavyScratches(SimulatedDrive& drive, quint64 seed)
{
    scratch(drive, seed, 150, 8, 0.5, 0.95);
}

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

void deadSpot(SimulatedDrive& drive, quint64 seed)
{
    placed(drive, SectorFault::deadSpot(0, 0), seed, 12);
}

void unreadableSpot(SimulatedDrive& drive, quint64 seed)
{
    placed(drive, SectorFault::unreadable(0, 0), seed, 3);
}

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

// A buffer of so many megabytes: one ring, or three segments of which the one used
// least recently goes. Half of a ring lies ahead of the head.
void giveBuffer(SimulatedDrive& drive, double megabytes, int segments)
{
    drive.mechanism.cacheSectors = static_cast<quint32>(megabytes * 1024 * 1024 / RAW_SECTOR_BYTES);
    drive.mechanism.cacheSegments = segments;
    drive.mechanism.readAhead = drive.mechanism.cacheSectors / static_cast<quint32>(segments) / 2;
}

QList<DamagedDisc> discsInDrivesWithBuffers()
{
    QList<DamagedDisc> discs;
    for (const int segments : {1, 3}) {
        for (const double megabytes : {0.125, 0.5, 1.0, 2.0, 4.0, 8.0}) {
            for (const auto& [trouble, damage] : {std::pair{"clean", &clean},
                                                  {"light scratches", &lightScratches},
                                                  {"heavy scratches", &heavyScratches}}) {
                const QString name = QStringLiteral("%1 MB, %2, %3");
                discs.append({name.arg(megabytes).arg(segments == 1 ? QLatin1String("one ring")
                                                                    : QLatin1String("three segments"),
                                                      QLatin1String(trouble)),
                              [damage = damage, megabytes, segments](SimulatedDrive& drive, quint64 seed) {
                                  damage(drive, seed);
                                  giveBuffer(drive, megabytes, segments);
                              }});
            }
        }
    }
    return discs;
}

} // namespace

const QList<DamagedDisc>& damagedDiscs()
{
    static const QList<DamagedDisc> discs =
        QList<DamagedDisc>{
            {QStringLiteral("clean"), clean},
            {QStringLiteral("clean, data in a second session"), secondSession},
            {QStringLiteral("light scratches"), lightScratches},
            {QStringLiteral("heavy scratches, honest C2"), heavyScratches},
            {QStringLiteral("scratches that read wrong the same way"), sameWrongBytes},
            {QStringLiteral("scratches where tracks meet"), trackEdges},
            {QStringLiteral("dead spot"), deadSpot},
            {QStringLiteral("unreadable spot"), unreadableSpot},
            {QStringLiteral("cache stale within 150 sectors"), staleWithin150},
            {QStringLiteral("cache stale within 1500 sectors"), staleWithin1500},
            {QStringLiteral("C2 all set"), c2AllSet, true},
            {QStringLiteral("C2 never set"), c2NeverSet, true},
            {QStringLiteral("C2 noisy"), c2Noisy, true},
            {QStringLiteral("C2 misses half of 4 wrong bytes"), c2PartiallyHonest, true},
            {QStringLiteral("silent errors, now and then"), silentFlaky},
            {QStringLiteral("silent errors, always the same"), silentSticky},
            {QStringLiteral("hanging sectors"), hanging},
            {QStringLiteral("mixed"), mixed},
        }
        + discsInDrivesWithBuffers();
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

// What the rip of a sound disc costs: commands to the drive, and processor time
// beside a drive that takes none of its own.

#include "ChildRun.h"
#include "DiscRip.h"
#include "Options.h"
#include "QuietSurroundings.h"
#include "disc/DiscModel.h"
#include "disc/DriveWatchdog.h"
#include "support/DiscMaker.h"

#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

constexpr quint32 batch = READ_BATCH_SECTORS;
constexpr quint32 crossCheckDistance = 2000;
constexpr double aimTimesRealTime = 150;
constexpr double aimGuardMilliseconds = 1; // of a poll step of 50
constexpr int patternSectors = 1000;

struct Plan {
    int minutes = 60;
    int tracks = 12;
    int runs = 5;
};

void insertDisc(SimulatedDrive& drive, const Plan& plan, bool c2)
{
    drive.audio = makeAudio(patternSectors, 1);
    drive.leadOutLba = static_cast<quint32>(plan.minutes * 60 * SECTORS_PER_SECOND);
    drive.tracks.clear();
    for (int i = 0; i < plan.tracks; ++i)
        drive.tracks.append(
            SimulatedTrack{drive.leadOutLba / static_cast<quint32>(plan.tracks) * static_cast<quint32>(i)});
    drive.c2Available = c2;
    drive.commandNanoseconds = 0;
}

// The batches that a walk over sectors needs, when each starts where the one
// before it has ended.
class Batches {
public:
    void walk(quint32 first, quint32 last)
    {
        for (quint32 lba = first; lba <= last; ++lba) {
            if (lba >= end || lba < start)
                read(lba);
        }
    }
    void read(quint32 lba)
    {
        ++count;
        start = lba;
        end = lba + batch;
    }
    void drop() { start = end = 0; }
    qint64 count = 0;

private:
    quint32 start = 0;
    quint32 end = 0;
};

qint64 expectedC2Reads(const SimulatedDrive& drive)
{
    Batches batches;
    for (quint32 lba = 0; lba < drive.leadOut(); ++lba) {
        batches.walk(lba, lba);
        if (lba % crossCheckDistance == 0) {
            batches.read(lba + batch); // anywhere else
            batches.read(lba);
        }
    }
    return batches.count;
}

qint64 expectedCompareReads(const SimulatedDrive& drive)
{
    Batches batches;
    for (qsizetype i = 0; i < drive.tracks.size(); ++i) {
        const quint32 first = drive.tracks[i].startLba;
        const quint32 last =
            (i + 1 < drive.tracks.size() ? drive.tracks[i + 1].startLba : drive.leadOut()) - 1;
        batches.walk(first, last);
        batches.read(last); // the flush
        batches.drop();
        batches.walk(first, last);
    }
    return batches.count;
}

// What it costs that a sound sector which is read again comes from the disc: one
// far read for each cross-check, or for each track's second pass.
qint64 expectedFarReads(const SimulatedDrive& drive, bool c2)
{
    return c2 ? (drive.leadOut() + crossCheckDistance - 1) / crossCheckDistance : drive.tracks.size();
}

bool printCount(const char* what, qint64 sent, qint64 expected)
{
    std::printf("%-52s %8lld %8lld  %s\n", what, static_cast<long long>(sent),
                static_cast<long long>(expected), sent == expected ? "ok" : "DIFFERS");
    return sent == expected;
}

bool countCommands(const Plan& plan, const QString& folder)
{
    using Command = SimulatedDrive::Command;
    bool right = true;
    std::printf("%-52s %8s %8s\n", "commands for a sound disc", "sent", "expected");
    for (const bool c2 : {true, false}) {
        SimulatedDrive drive;
        insertDisc(drive, plan, c2);
        DiscRipOptions options;
        options.folder = folder;
        options.judge = false;
        ripSimulatedDisc(drive, options);
        std::printf("%s\n", c2 ? "with C2" : "by comparison");
        // Without C2 the probe is three refused attempts.
        right &= printCount("  reads with C2, the probe among them", drive.count(Command::RawWithC2),
                            c2 ? expectedC2Reads(drive) + 1 : 3);
        right &= printCount("  reads without, the far reads among them", drive.count(Command::Raw),
                            expectedFarReads(drive, c2) + (c2 ? 0 : expectedCompareReads(drive)));
        right &= printCount("  seeks of the ladder", drive.count(Command::SeekRead), 0);
        right &= printCount("  tables of contents", drive.count(Command::Toc), 1);
        right &= printCount("  readiness checks", drive.count(Command::Verify), 1);
        right &= printCount("  pauses between tracks", drive.count(Command::Sleep), plan.tracks - 1);
    }
    return right;
}

// Processor seconds of the drive alone: the commands of a rip, sent without one.
double driveShare(const Plan& plan)
{
    SimulatedDrive drive;
    insertDisc(drive, plan, true);
    const auto device = drive.open(drive.letter);
    std::vector<quint8> data(size_t{batch} * RAW_PLUS_C2_BYTES);
    const double before = ownProcessorSeconds();
    for (quint32 lba = 0; lba + batch <= drive.leadOut(); lba += batch) {
        const quint8 command[12] = {0xBE,
                                    0x04,
                                    0,
                                    static_cast<quint8>(lba >> 16),
                                    static_cast<quint8>(lba >> 8),
                                    static_cast<quint8>(lba),
                                    0,
                                    0,
                                    batch,
                                    0x12,
                                    0,
                                    0};
        device->passThrough(command, data);
    }
    return ownProcessorSeconds() - before;
}

void printSpeed(const char* what, double seconds, const Plan& plan)
{
    std::printf("%-52s %8.3f s %7.0f times real time\n", what, seconds, plan.minutes * 60 / seconds);
}

bool measureProcessor(const Plan& plan, const QString& folder)
{
    std::printf("\nprocessor time for %d minutes, median of %d runs\n", plan.minutes, plan.runs);
    double withC2 = 0;
    for (const bool c2 : {true, false}) {
        std::vector<double> seconds;
        for (int i = 0; i < plan.runs; ++i) {
            SimulatedDrive drive;
            insertDisc(drive, plan, c2);
            DiscRipOptions options;
            options.folder = folder;
            options.judge = false;
            seconds.push_back(ripSimulatedDisc(drive, options).processorSeconds);
        }
        std::ranges::sort(seconds);
        const double middle = seconds[seconds.size() / 2];
        printSpeed(c2 ? "rip to WAV with C2" : "rip to WAV by comparison", middle, plan);
        if (c2)
            withC2 = middle;
    }
    printSpeed("  of that the simulated drive itself, with C2", driveShare(plan), plan);
    const bool fast = plan.minutes * 60 / withC2 >= aimTimesRealTime;
    std::printf("aim with C2: above %.0f times real time  %s\n", aimTimesRealTime, fast ? "ok" : "MISSED");
    return fast;
}

// Milliseconds on the wall that a read of this length takes.
double timeRead(std::chrono::milliseconds length, bool guarded)
{
    const auto before = std::chrono::steady_clock::now();
    if (guarded) {
        const ReadGuard guard([](const BeforeCancelling&) {}, 0);
        std::this_thread::sleep_for(length);
    } else {
        std::this_thread::sleep_for(length);
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - before).count();
}

// The guard of platforms whose read command has no time limit of its own.
bool measureGuard()
{
    constexpr int reads = 300;
    bool unnoticed = true;
    std::printf("\n%-52s %10s %10s %10s\n", "time of a read, milliseconds, median", "guarded", "unguarded",
                "added");
    for (const int length : {0, 2, 9, 60}) {
        std::vector<double> times[2];
        for (int i = 0; i < reads / (length > 10 ? 10 : 1); ++i) {
            for (const bool guarded : {true, false})
                times[guarded ? 0 : 1].push_back(timeRead(std::chrono::milliseconds(length), guarded));
        }
        for (std::vector<double>& side : times)
            std::ranges::sort(side);
        const double guarded = times[0][times[0].size() / 2];
        const double unguarded = times[1][times[1].size() / 2];
        std::printf("  a read of %2d ms %35s %10.3f %10.3f %10.3f\n", length, "", guarded, unguarded,
                    guarded - unguarded);
        unnoticed = unnoticed && guarded - unguarded < aimGuardMilliseconds;
    }
    std::printf("aim: below %.0f ms  %s\n", aimGuardMilliseconds, unnoticed ? "ok" : "MISSED");
    return unnoticed;
}

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("minutes", "Length of the disc.", plan.minutes);
    options.number("tracks", "Tracks on it.", plan.tracks);
    options.number("runs", "Timed rips.", plan.runs);
    options.read(application);
    plan.minutes = std::max(2, plan.minutes);
    plan.tracks = std::min(plan.tracks, 99);
    return plan;
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    keepSurroundingsQuiet(folder.path());
    const QGuiApplication application(argc, argv);
    dropDebugLog();
    const Plan plan = readPlan(application);
    const bool counted = countCommands(plan, folder.path() + QStringLiteral("/out"));
    const bool fast = measureProcessor(plan, folder.path() + QStringLiteral("/out"));
    const bool unnoticed = measureGuard();
    return counted && fast && unnoticed ? 0 : 1;
}

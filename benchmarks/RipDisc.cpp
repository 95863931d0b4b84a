// What the rip of a sound disc costs: commands to the drive, and processor time
// beside a drive that takes none of its own.

#include "ChildRun.h"
#include "DiscPeer.h"
#include "DiscRip.h"
#include "Measure.h"
#include "Options.h"
#include "QuietSurroundings.h"
#include "disc/DiscModel.h"
#include "disc/DriveWatchdog.h"
#include "support/DiscMaker.h"

#include <QDir>
#include <QFile>
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
constexpr double timesRealTime = 150;
constexpr double guardMilliseconds = 1; // of a poll step of 50
constexpr int patternSectors = 1000;

struct Plan {
    int minutes = 60;
    int tracks = 12;
    int runs = 5;
    int peerMinutes = 10;
};

const char* modeName(bool c2)
{
    return c2 ? "C2" : "compare";
}

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

struct Count {
    const char* what;
    qint64 sent;
    qint64 expected;
};

QList<Count> countsOf(const SimulatedDrive& drive, const Plan& plan, bool c2)
{
    using Command = SimulatedDrive::Command;
    // Without C2 the probe is three refused attempts.
    return {{"reads with C2, the probe among them", drive.count(Command::RawWithC2),
             c2 ? expectedC2Reads(drive) + 1 : 3},
            {"reads without, the far reads among them", drive.count(Command::Raw),
             expectedFarReads(drive, c2) + (c2 ? 0 : expectedCompareReads(drive))},
            {"seeks of the ladder", drive.count(Command::SeekRead), 0},
            {"tables of contents", drive.count(Command::Toc), 1},
            {"readiness checks", drive.count(Command::Verify), 1},
            {"pauses between tracks", drive.count(Command::Sleep), plan.tracks - 1}};
}

bool countCommands(const Plan& plan, const QString& folder)
{
    bool right = true;
    for (const bool c2 : {true, false}) {
        SimulatedDrive drive;
        insertDisc(drive, plan, c2);
        DiscRipOptions options;
        options.folder = folder;
        options.judge = false;
        ripSimulatedDisc(drive, options);
        qint64 sent = 0;
        qint64 expected = 0;
        const QList<Count> counts = countsOf(drive, plan, c2);
        for (const Count& count : counts) {
            sent += count.sent;
            expected += count.expected;
            if (count.sent != count.expected)
                std::fprintf(stderr, "%s: %lld sent, %lld expected\n", count.what,
                             static_cast<long long>(count.sent), static_cast<long long>(count.expected));
            right = right && count.sent == count.expected;
        }
        printRow({QStringLiteral("commands for a sound disc, ") + QLatin1String(modeName(c2)),
                  QStringLiteral("what the method must send"), QString()},
                 {static_cast<double>(sent)}, {static_cast<double>(expected)}, bounds::discCommands);
        for (const Count& count : counts)
            printNote(QLatin1String(count.what), QString(), static_cast<double>(count.sent));
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

bool measureProcessor(const Plan& plan, const QString& folder)
{
    const double seconds = plan.minutes * 60;
    bool fast = true;
    for (const bool c2 : {true, false}) {
        QList<double> taken;
        for (int i = 0; i < plan.runs; ++i) {
            SimulatedDrive drive;
            insertDisc(drive, plan, c2);
            DiscRipOptions options;
            options.folder = folder;
            options.judge = false;
            taken.append(ripSimulatedDisc(drive, options).processorSeconds);
        }
        fast &=
            printRow({QStringLiteral("disc of %1 minutes, ").arg(plan.minutes) + QLatin1String(modeName(c2)),
                      QStringLiteral("150 times real time"), QStringLiteral("s")},
                     taken, QList<double>(taken.size(), seconds / timesRealTime), bounds::discSpeed);
        printNote(QStringLiteral("times real time"), QStringLiteral("x"), seconds / median(taken));
    }
    printNote(QStringLiteral("of that the simulated drive itself, with C2"), QStringLiteral("s"),
              driveShare(plan));
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
    QList<double> added;
    for (const int length : {0, 2, 9, 60}) {
        QList<double> times[2];
        for (int i = 0; i < reads / (length > 10 ? 10 : 1); ++i) {
            for (const bool guarded : {true, false})
                times[guarded ? 0 : 1].append(timeRead(std::chrono::milliseconds(length), guarded));
        }
        added.append(median(times[0]) - median(times[1]));
    }
    const double most = *std::max_element(added.cbegin(), added.cend());
    return printRow(
        {QStringLiteral("what the watchdog adds to a read"), QStringLiteral("1 ms"), QStringLiteral("ms")},
        {most}, {guardMilliseconds}, bounds::watchdog);
}

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("minutes", "Length of the disc.", plan.minutes);
    options.number("tracks", "Tracks on it.", plan.tracks);
    options.number("runs", "Timed rips.", plan.runs);
    options.number("peer-minutes", "Length of the disc that cdparanoia rips, too.", plan.peerMinutes);
    options.read(application);
    plan.minutes = std::max(2, plan.minutes);
    plan.tracks = std::min(plan.tracks, 99);
    return plan;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && QByteArray(argv[1]) == ripDescribedCommand) {
        dropDebugLog();
        return ripDescribedDisc(argc, argv, QFile::decodeName(argv[2]));
    }
    const QTemporaryDir folder;
    keepSurroundingsQuiet(folder.path());
    const QGuiApplication application(argc, argv);
    dropDebugLog();
    const Plan plan = readPlan(application);
    printHead();
    const QString out = folder.path() + QStringLiteral("/out");
    const bool counted = countCommands(plan, out);
    const bool fast = measureProcessor(plan, out);
    const bool unnoticed = measureGuard();
    QDir(out).removeRecursively();
    const DiscPeer peer{QStringLiteral(TARVEL_PLAYED_DRIVE), plan.peerMinutes, 4, plan.runs};
    const int peerCode = runToEnd([&] { peer.printRows(folder.path()); });
    return counted && fast && unnoticed ? peerCode : 1;
}

// Rips damaged discs through the real worker and counts what is wrong in the
// files, by what the worker said of it; and through cdparanoia, an independent program.

#include "DiscRip.h"
#include "PeerRip.h"
#include "QuietSurroundings.h"
#include "playeddrive/DriveDescription.h"
#include "support/DamagedDiscs.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int offsets[] = {0, 6, 667, -30};

struct Plan {
    int seconds = 120;
    int rereads = 20;
    quint64 seed = 1;
    bool every = false;  ///< a row for each rip
    bool peer = false;   ///< cdparanoia's rows as well
    int peerLimit = 600; ///< seconds that one of its rips may take
    QString only;
};

void printHead()
{
    std::printf(
        "| disc | mode | wrong | **good** | recovered | borrowed | error | falsely bad | saved | commands | "
        "sectors | drive time |\n");
    std::printf("|---|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|\n");
}

void printRow(const QString& name, const char* mode, const DiscRipOutcome& sum, int stopped)
{
    const QString remark = stopped > 0       ? QStringLiteral(" %1 STOPPED").arg(stopped)
                           : !sum.filesWhole ? QStringLiteral(" FILES NOT WHOLE")
                                             : QString();
    std::printf("| %s | %s | %d | **%d** | %d | %d | %d | %d | %d | %llu | %llu | %.0f s |%s\n",
                qPrintable(name), mode, sum.wrong, sum.wrongGood, sum.wrongRecovered, sum.wrongBorrowed,
                sum.wrongUnconfirmed, sum.falselyBad, sum.recoveredRight, sum.commands, sum.sectors,
                sum.driveSeconds, qPrintable(remark));
    std::fflush(stdout);
}

// What is about C2 is nothing new to a ripper that does not ask for it, and of the
// buffers three stand for all.
bool isForPeer(const DamagedDisc& disc)
{
    static const QStringList buffers{QStringLiteral("0.5 MB, one ring, light scratches"),
                                     QStringLiteral("2 MB, one ring, light scratches"),
                                     QStringLiteral("8 MB, three segments, light scratches")};
    return !disc.c2Only && (!disc.name.contains(QLatin1String(" MB, ")) || buffers.contains(disc.name));
}

class Table {
public:
    explicit Table(const Plan& chosen) : plan(chosen) {}

    bool print()
    {
        printHead();
        for (const DamagedDisc& disc : damagedDiscs()) {
            if (!disc.name.contains(plan.only) || (plan.peer && !isForPeer(disc)))
                continue;
            row(disc.name, Ripper::OursWithC2);
            if (!disc.c2Only)
                row(disc.name, Ripper::OursWithout);
            if (plan.peer)
                row(disc.name, Ripper::Peer);
        }
        return whole;
    }

private:
    enum class Ripper { OursWithC2, OursWithout, Peer };

    void row(const QString& disc, Ripper ripper)
    {
        PeerRip::Outcome sum;
        int stopped = 0;
        DriveDescription drive;
        drive.disc = disc;
        drive.seconds = plan.seconds;
        drive.audioSeed = static_cast<quint32>(plan.seed);
        drive.c2 = ripper != Ripper::OursWithout;
        drive.seed = plan.seed * 1000;
        for (const bool usb : {false, true}) {
            for (const int offset : offsets) {
                drive.usb = usb;
                drive.readOffset = offset;
                const PeerRip::Outcome outcome = rip(drive, ripper);
                if (plan.every)
                    printRow(QStringLiteral("%1, offset %2, %3")
                                 .arg(disc)
                                 .arg(offset)
                                 .arg(usb ? QLatin1String("USB") : QLatin1String("internal")),
                             modeOf(ripper, outcome), outcome, outcome.gaveUp ? 1 : 0);
                sum += outcome;
                stopped += outcome.gaveUp ? 1 : 0;
                ++drive.seed;
            }
        }
        whole = whole && (sum.filesWhole || ripper == Ripper::Peer);
        if (!plan.every)
            printRow(disc, modeOf(ripper, sum), sum, stopped);
    }

    PeerRip::Outcome rip(const DriveDescription& description, Ripper ripper) const
    {
        if (ripper == Ripper::Peer)
            return PeerRip(QStringLiteral(TARVEL_PLAYED_DRIVE), plan.peerLimit).rip(description);
        SimulatedDrive drive;
        setUpDrive(drive, description);
        const QTemporaryDir folder;
        DiscRipOptions options;
        options.folder = folder.path();
        options.maxRereads = plan.rereads;
        return {ripSimulatedDisc(drive, options)};
    }

    static const char* modeOf(Ripper ripper, const DiscRipOutcome& outcome)
    {
        return ripper == Ripper::Peer ? "cdparanoia" : outcome.c2Mode ? "C2" : "compare";
    }

    Plan plan;
    bool whole = true;
};

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    QCommandLineParser parser;
    parser.addHelpOption();
    const auto option = [&](const char* name, const char* text, const QString& preset) {
        parser.addOption({QLatin1String(name), QLatin1String(text), QLatin1String(name), preset});
    };
    option("seconds", "Length of each disc.", QString::number(plan.seconds));
    option("rereads", "Re-reads of a sector at most.", QString::number(plan.rereads));
    option("seed", "Decides where the damage lies and what each read gives.", QString::number(plan.seed));
    option("peer-limit", "Seconds of real time after which a rip of cdparanoia's is stopped.",
           QString::number(plan.peerLimit));
    option("only", "Discs whose name holds this text.", QString());
    parser.addOption(
        {QStringLiteral("every"), QStringLiteral("A row for each rip instead of the sum of eight.")});
    parser.addOption({QStringLiteral("peer"),
                      QStringLiteral("The rows of cdparanoia as well, of a choice of the discs.")});
    parser.process(application);
    plan.seconds = std::max(30, parser.value(QStringLiteral("seconds")).toInt());
    plan.rereads = parser.value(QStringLiteral("rereads")).toInt();
    plan.seed = parser.value(QStringLiteral("seed")).toULongLong();
    plan.only = parser.value(QStringLiteral("only"));
    plan.peer = parser.isSet(QStringLiteral("peer"));
    plan.peerLimit = std::max(1, parser.value(QStringLiteral("peer-limit")).toInt());
    plan.every = parser.isSet(QStringLiteral("every"));
    return plan;
}

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir home;
    keepSurroundingsQuiet(home.path());
    const QGuiApplication application(argc, argv);
    dropDebugLog();
    return Table(readPlan(application)).print() ? 0 : 1;
}

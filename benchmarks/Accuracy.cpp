// Rips damaged discs through the real worker and counts what is wrong in the
// files, by what the worker said of it.

#include "DiscRip.h"
#include "QuietSurroundings.h"
#include "disc/DiscModel.h"
#include "support/DamagedDiscs.h"
#include "support/DiscMaker.h"

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
    bool every = false; ///< a row for each rip
    QString only;
};

void printHead()
{
    std::printf(
        "| disc | mode | wrong | **good** | recovered | borrowed | error | falsely bad | saved | commands | "
        "sectors | drive time |\n");
    std::printf("|---|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|\n");
}

void printRow(const QString& name, const DiscRipOutcome& sum)
{
    std::printf("| %s | %s | %d | **%d** | %d | %d | %d | %d | %d | %llu | %llu | %.0f s |%s\n",
                qPrintable(name), sum.c2Mode ? "C2" : "compare", sum.wrong, sum.wrongGood, sum.wrongRecovered,
                sum.wrongBorrowed, sum.wrongUnconfirmed, sum.falselyBad, sum.recoveredRight, sum.commands,
                sum.sectors, sum.driveSeconds, sum.filesWhole ? "" : " FILES NOT WHOLE");
    std::fflush(stdout);
}

class Table {
public:
    explicit Table(const Plan& chosen)
        : plan(chosen), audio(makeAudio(plan.seconds * SECTORS_PER_SECOND, static_cast<quint32>(plan.seed)))
    {
    }

    bool print()
    {
        printHead();
        for (const DamagedDisc& disc : damagedDiscs()) {
            if (!disc.name.contains(plan.only))
                continue;
            row(disc, true);
            if (!disc.c2Only)
                row(disc, false);
        }
        return whole;
    }

private:
    void row(const DamagedDisc& disc, bool c2)
    {
        DiscRipOutcome sum;
        quint64 turn = 0;
        for (const bool usb : {false, true}) {
            for (const int offset : offsets) {
                const DiscRipOutcome outcome = rip(disc, c2, usb, offset, plan.seed * 1000 + turn++);
                if (plan.every)
                    printRow(QStringLiteral("%1, offset %2, %3")
                                 .arg(disc.name)
                                 .arg(offset)
                                 .arg(usb ? QLatin1String("USB") : QLatin1String("internal")),
                             outcome);
                sum += outcome;
            }
        }
        whole = whole && sum.filesWhole;
        if (!plan.every)
            printRow(disc.name, sum);
    }

    DiscRipOutcome rip(const DamagedDisc& disc, bool c2, bool usb, int offset, quint64 seed) const
    {
        SimulatedDrive drive;
        insertSoundDisc(drive, audio);
        drive.usb = usb;
        drive.readOffset = offset;
        drive.c2Available = c2;
        drive.mechanism.seed = seed;
        disc.damage(drive, seed);
        const QTemporaryDir folder;
        DiscRipOptions options;
        options.folder = folder.path();
        options.maxRereads = plan.rereads;
        return ripSimulatedDisc(drive, options);
    }

    Plan plan;
    QByteArray audio;
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
    option("only", "Discs whose name holds this text.", QString());
    parser.addOption(
        {QStringLiteral("every"), QStringLiteral("A row for each rip instead of the sum of eight.")});
    parser.process(application);
    plan.seconds = std::max(30, parser.value(QStringLiteral("seconds")).toInt());
    plan.rereads = parser.value(QStringLiteral("rereads")).toInt();
    plan.seed = parser.value(QStringLiteral("seed")).toULongLong();
    plan.only = parser.value(QStringLiteral("only"));
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

// Rips images in fresh processes and sets what that costs against tools that do
// the same work.

#include "ChildRun.h"
#include "Measure.h"
#include "MemoryPasses.h"
#include "MusicImage.h"
#include "Options.h"
#include "QuietSurroundings.h"
#include "RipCommands.h"
#include "rip/RipTypes.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr char workerCommand[] = "run-worker";
constexpr char windowCommand[] = "run-window";
constexpr char stallCommand[] = "run-stalls";
constexpr char passesCommand[] = "run-passes";
constexpr int longMinutes = 79;
constexpr double longSampleBytes = longMinutes * 60.0 * 44100 * 2 * 4;
constexpr double stallSeconds = 0.1;

// The figures of the result line that a run of this program prints.
double reported(const RunCost& cost, int place)
{
    return cost.output.simplified().split(' ').value(place).toDouble();
}
double ripProcessorOf(const RunCost& cost)
{
    return reported(cost, 0);
}
double ripWallOf(const RunCost& cost)
{
    return reported(cost, 1);
}
double stallOf(const RunCost& cost)
{
    return reported(cost, 2);
}

struct Plan {
    int minutes = 48;
    int shortMinutes = 2;
    int tracks = 12;
    int pairs = 5;
    QStringList rows;

    bool has(const char* row) const { return rows.isEmpty() || rows.contains(QLatin1String(row)); }
};

/// A format of the rip beside the tool that does the same work on one track.
struct Format {
    const char* row;
    OutputFormat number;
    const char* name;
    const char* tool;      ///< with what settles its work
    const char* arguments; ///< the rest; IN and OUT stand for its files
    bool isSlow;           ///< the shorter image will do
    bool inWindow;         ///< the window offers it
    Bound worker;
    Bound window;
};

QStringList words(const char* text)
{
    return QString::fromLatin1(text).split(u' ');
}

const QList<Format>& formats()
{
    using namespace bounds;
    static const QList<Format> list{
        {"flac", OutputFlac, "FLAC", "flac -5", "-s -f -o OUT.flac IN", false, true, sameEncoder,
         encodedInWindow},
        {"wav", OutputWav, "WAV", "dd", "", false, true, copiedImage, copiedInWindow},
        {"mp3", OutputMp3, "MP3", "lame --cbr -b 320 -q 2", "--quiet IN OUT.mp3", true, true, sameEncoder,
         encodedInWindow},
        {"aac", OutputAac, "AAC", "ffmpeg", "-v error -y -i IN -c:a aac -b:a 192k OUT.m4a", true, false,
         sameEncoder, encodedInWindow},
        {"alac", OutputAlac, "ALAC", "ffmpeg", "-v error -y -i IN -c:a alac OUT.m4a", true, false,
         sameEncoder, encodedInWindow},
    };
    return list;
}

class Benchmark {
public:
    Benchmark(const Plan& chosen, const QString& workFolder)
        : plan(chosen), folder(workFolder), output(workFolder + QStringLiteral("/out"))
    {
    }

    void run()
    {
        printHead();
        const MusicImage image = makeMusicImage(folder + QStringLiteral("/image"), plan.minutes, plan.tracks);
        const MusicImage shorter = makeMusicImage(folder + QStringLiteral("/short"), plan.shortMinutes,
                                                  std::min(plan.tracks, plan.shortMinutes));
        for (const Format& format : formats()) {
            if (plan.has(format.row))
                formatRows(format, format.isSlow ? shorter : image);
        }
        if (plan.has("window"))
            windowRows(image);
        if (plan.has("memory"))
            memoryRows();
    }

private:
    RunCost inEmptyFolder(const QList<QStringList>& commands)
    {
        QDir(output).removeRecursively();
        QDir().mkpath(output);
        RunCost sum;
        for (const QStringList& command : commands)
            sum += runChild(command);
        QDir(output).removeRecursively();
        return sum;
    }

    RunCost rip(const char* command, const MusicImage& source, OutputFormat format)
    {
        return inEmptyFolder({{QCoreApplication::applicationFilePath(), QLatin1String(command), source.cue,
                               output, QString::number(format)}});
    }

    QList<QStringList> copies(const MusicImage& source) const
    {
        QList<QStringList> commands;
        for (int track = 0; track < source.tracks; ++track)
            commands.append({QStringLiteral("dd"), QStringLiteral("if=") + source.bin,
                             QStringLiteral("of=%1/%2").arg(output).arg(track), QStringLiteral("bs=1M"),
                             QStringLiteral("iflag=skip_bytes,count_bytes"), QStringLiteral("status=none"),
                             QStringLiteral("skip=%1").arg(track * source.trackBytes()),
                             QStringLiteral("count=%1").arg(source.trackBytes())});
        return commands;
    }

    QList<QStringList> toolCommands(const Format& format, const MusicImage& source) const
    {
        if (format.number == OutputWav)
            return copies(source);
        const QString waves = folder + QStringLiteral("/waves");
        QDir().mkpath(waves);
        QList<QStringList> commands;
        for (const QString& wave : writeTrackWaves(source, waves)) {
            QStringList command = words(format.tool) + words(format.arguments);
            command.replaceInStrings(QRegularExpression(QStringLiteral("^IN$")), wave);
            command.replaceInStrings(QRegularExpression(QStringLiteral("^OUT")),
                                     QStringLiteral("%1/%2").arg(output).arg(commands.size()));
            commands.append(command);
        }
        return commands;
    }

    // The worker counts as a whole process, as its tool does. The window counts from the
    // click to the result: its start is a figure of its own.
    void formatRows(const Format& format, const MusicImage& source)
    {
        const QList<QStringList> commands = toolCommands(format, source);
        QList<std::function<RunCost()>> sides{
            [&] { return inEmptyFolder(commands); },
            [&] { return rip(workerCommand, source, format.number); },
        };
        if (format.inWindow)
            sides.append([&] { return rip(windowCommand, source, format.number); });
        if (format.number == OutputWav)
            sides.append([&] { return passes(source); });
        const QList<QList<RunCost>> costs = runInTurn(plan.pairs, sides);
        const QList<double> tool = processorOf(costs[0]);
        const auto name = [&](const char* side) {
            return RowName{
                QStringLiteral("image to %1, %2").arg(QLatin1String(format.name), QLatin1String(side)),
                QLatin1String(format.tool), QStringLiteral("s")};
        };
        printRow(name("worker"), processorOf(costs[1]), tool, format.worker);
        printNote(QStringLiteral("of that the rip, without the start"), QStringLiteral("s"),
                  median(figures(costs[1], ripProcessorOf)));
        if (format.number == OutputWav)
            floorRow(processorOf(costs[1]), tool, figures(costs[3], ripProcessorOf));
        if (format.inWindow)
            printRow(name("window"), figures(costs[2], ripProcessorOf), tool, format.window);
        QDir(folder + QStringLiteral("/waves")).removeRecursively();
    }

    static RunCost passes(const MusicImage& source)
    {
        return runChild({QCoreApplication::applicationFilePath(), QLatin1String(passesCommand),
                         QString::number(source.tracks), QString::number(source.trackBytes()), QString()});
    }

    // What no rip of this design can be cheaper than.
    static void floorRow(const QList<double>& worker, const QList<double>& copies, QList<double> floor)
    {
        std::transform(floor.cbegin(), floor.cend(), copies.cbegin(), floor.begin(), std::plus<>());
        printRow({QStringLiteral("image to WAV, worker"), QStringLiteral("dd, and three passes over memory"),
                  QStringLiteral("s")},
                 worker, floor, bounds::copiedImageAndPasses);
    }

    void windowRows(const MusicImage& image)
    {
        const QList<QList<RunCost>> costs =
            runInTurn((plan.pairs + 1) / 2, {[&] { return rip(windowCommand, image, OutputFlac); },
                                             [&] { return rip(workerCommand, image, OutputFlac); },
                                             [&] { return rip(stallCommand, image, OutputFlac); }});
        printRow({QStringLiteral("image to FLAC, window, on the wall"), QStringLiteral("worker"),
                  QStringLiteral("s")},
                 figures(costs[0], ripWallOf), figures(costs[1], ripWallOf), bounds::windowWall);
        const QList<double> stalls = figures(costs[2], stallOf);
        printRow({QStringLiteral("longest stall of the window in a rip"), QStringLiteral("0.1 s"),
                  QStringLiteral("s")},
                 stalls, QList<double>(stalls.size(), stallSeconds), bounds::stall);
    }

    void memoryRows()
    {
        const MusicImage whole = makeMusicImage(folder + QStringLiteral("/long"), longMinutes, 1);
        constexpr double mebibyte = 1024 * 1024;
        for (const auto& [format, name] : {std::pair{OutputFlac, "FLAC"}, std::pair{OutputWav, "WAV"}}) {
            const double peak = static_cast<double>(rip(workerCommand, whole, format).peakBytes);
            printRow({QStringLiteral("peak memory, 79 minutes to %1").arg(QLatin1String(name)),
                      QStringLiteral("4 bytes a sample"), QStringLiteral("MiB")},
                     {peak / mebibyte}, {longSampleBytes / mebibyte}, bounds::imageMemory);
        }
    }

    Plan plan;
    QString folder;
    QString output;
};

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("minutes", "Minutes of audio in the image.", plan.minutes);
    options.number("short-minutes", "Minutes for the formats that take long.", plan.shortMinutes);
    options.number("tracks", "Tracks in the image.", plan.tracks);
    options.number("pairs", "Runs of each side, in turn.", plan.pairs);
    options.rows("flac wav mp3 aac alac window memory", plan.rows);
    options.read(application);
    return plan;
}

int measure(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const Plan plan = readPlan(application);
    const QTemporaryDir folder;
    keepSurroundingsQuiet(folder.path());
    return runToEnd([&] { Benchmark(plan, folder.path()).run(); });
}

} // namespace

int main(int argc, char** argv)
{
    const QByteArray command(argc > 4 ? argv[1] : "");
    if (!command.startsWith("run-"))
        return measure(argc, argv);
    if (command == passesCommand)
        return passOverMemory(QByteArray(argv[2]).toInt(), QByteArray(argv[3]).toLongLong());
    const QString cue = QString::fromLocal8Bit(argv[2]);
    const QString folder = QString::fromLocal8Bit(argv[3]);
    const auto format = static_cast<OutputFormat>(QByteArray(argv[4]).toInt());
    if (command == workerCommand)
        return ripWithWorker(argc, argv, cue, format, folder);
    return ripThroughWindow(argc, argv, cue, format, folder, command == stallCommand);
}

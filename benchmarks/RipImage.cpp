// Rips images in fresh processes and sets what that costs against tools that do
// the same work.

#include "ChildRun.h"
#include "Measure.h"
#include "MusicImage.h"
#include "Options.h"
#include "QuietSurroundings.h"
#include "RipCommands.h"
#include "rip/RipTypes.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr char workerCommand[] = "run-worker";
constexpr char windowCommand[] = "run-window";
constexpr char stallCommand[] = "run-stalls";
constexpr int longMinutes = 79;
constexpr double longSampleBytes = longMinutes * 60.0 * 44100 * 2 * 4;
constexpr double toolAim = 1.05;
constexpr double copyAim = 1.5;
constexpr double memoryAim = 1.6;
constexpr double stallAim = 0.1;

double processorOf(const RunCost& cost)
{
    return cost.processor;
}
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
    int tracks = 12;
    int pairs = 5;
    int mp3Minutes = 2;
    QStringList rows;

    bool has(const char* row) const { return rows.isEmpty() || rows.contains(QLatin1String(row)); }
};

class Benchmark {
public:
    Benchmark(const Plan& chosen, const QString& workFolder)
        : plan(chosen), folder(workFolder), output(workFolder + QStringLiteral("/out"))
    {
    }

    void run()
    {
        printHead();
        if (plan.has("flac") || plan.has("wav") || plan.has("window"))
            image = makeMusicImage(folder + QStringLiteral("/image"), plan.minutes, plan.tracks);
        if (plan.has("flac"))
            flacRow();
        if (plan.has("wav"))
            wavRow();
        if (plan.has("window"))
            windowRows();
        if (plan.has("mp3"))
            mp3Row();
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

    RunCost rip(const MusicImage& source, OutputFormat format)
    {
        return inEmptyFolder({{QCoreApplication::applicationFilePath(), QLatin1String(workerCommand),
                               source.cue, output, QString::number(format)}});
    }

    RunCost window(const char* command)
    {
        return inEmptyFolder(
            {{QCoreApplication::applicationFilePath(), QLatin1String(command), image.cue, output}});
    }

    void toolRow(const QString& what, const PairedCosts& costs, double aim)
    {
        printRow(what, QStringLiteral("s"), medianOf(costs.ours, processorOf),
                 medianOf(costs.other, processorOf), costs.ratio(processorOf), aim);
        std::printf("%-40s %-5s %10.3f\n", "  of that the rip, without the start", "s",
                    medianOf(costs.ours, ripProcessorOf));
    }

    QStringList waves(const MusicImage& source)
    {
        const QString target = folder + QStringLiteral("/waves");
        QDir().mkpath(target);
        return writeTrackWaves(source, target);
    }

    void dropWaves() { QDir(folder + QStringLiteral("/waves")).removeRecursively(); }

    void flacRow()
    {
        QStringList command{QStringLiteral("flac"), QStringLiteral("-5"), QStringLiteral("-s"),
                            QStringLiteral("-f"),
                            QStringLiteral("--output-prefix=") + output + QLatin1Char('/')};
        command += waves(image);
        toolRow(
            QStringLiteral("FLAC: worker / flac -5"),
            runPairs(
                plan.pairs, [&] { return rip(image, OutputFlac); }, [&] { return inEmptyFolder({command}); }),
            toolAim);
        dropWaves();
    }

    void wavRow()
    {
        QList<QStringList> copies;
        for (int track = 0; track < image.tracks; ++track)
            copies.append({QStringLiteral("dd"), QStringLiteral("if=") + image.bin,
                           QStringLiteral("of=%1/%2").arg(output).arg(track), QStringLiteral("bs=1M"),
                           QStringLiteral("iflag=skip_bytes,count_bytes"), QStringLiteral("status=none"),
                           QStringLiteral("skip=%1").arg(track * image.trackBytes()),
                           QStringLiteral("count=%1").arg(image.trackBytes())});
        toolRow(QStringLiteral("WAV: worker / dd"),
                runPairs(
                    plan.pairs, [&] { return rip(image, OutputWav); }, [&] { return inEmptyFolder(copies); }),
                copyAim);
    }

    void mp3Row()
    {
        const MusicImage shorter = makeMusicImage(folder + QStringLiteral("/short"), plan.mp3Minutes,
                                                  std::min(plan.tracks, plan.mp3Minutes));
        QList<QStringList> commands;
        for (const QString& wave : waves(shorter))
            commands.append({QStringLiteral("lame"), QStringLiteral("--cbr"), QStringLiteral("-b"),
                             QStringLiteral("320"), QStringLiteral("-q"), QStringLiteral("2"),
                             QStringLiteral("--quiet"), wave,
                             QStringLiteral("%1/%2.mp3").arg(output).arg(commands.size())});
        toolRow(
            QStringLiteral("MP3: worker / lame -b 320 -q 2"),
            runPairs(
                plan.pairs, [&] { return rip(shorter, OutputMp3); }, [&] { return inEmptyFolder(commands); }),
            toolAim);
        dropWaves();
    }

    void windowRows()
    {
        const PairedCosts costs = runPairs(
            plan.pairs, [&] { return window(windowCommand); }, [&] { return rip(image, OutputFlac); });
        printRow(QStringLiteral("FLAC: window / worker, processor"), QStringLiteral("s"),
                 medianOf(costs.ours, ripProcessorOf), medianOf(costs.other, ripProcessorOf),
                 costs.ratio(ripProcessorOf), toolAim);
        printRow(QStringLiteral("FLAC: window / worker, wall"), QStringLiteral("s"),
                 medianOf(costs.ours, ripWallOf), medianOf(costs.other, ripWallOf), costs.ratio(ripWallOf),
                 toolAim);
        double longest = 0;
        for (int i = 0; i < (plan.pairs + 1) / 2; ++i)
            longest = std::max(longest, stallOf(window(stallCommand)));
        printRow(QStringLiteral("FLAC: longest stall of the window"), QStringLiteral("s"), longest, 0,
                 longest, stallAim);
    }

    void memoryRows()
    {
        const MusicImage whole = makeMusicImage(folder + QStringLiteral("/long"), longMinutes, 1);
        constexpr double mebibyte = 1024 * 1024;
        for (const auto& [format, name] : {std::pair{OutputFlac, "FLAC"}, std::pair{OutputWav, "WAV"}}) {
            const auto peak = static_cast<double>(rip(whole, format).peakBytes);
            printRow(QStringLiteral("%1: peak memory / 4 bytes a sample").arg(QLatin1String(name)),
                     QStringLiteral("MiB"), peak / mebibyte, longSampleBytes / mebibyte,
                     peak / longSampleBytes, memoryAim);
        }
    }

    Plan plan;
    QString folder;
    QString output;
    MusicImage image;
};

Plan readPlan(const QCoreApplication& application)
{
    Plan plan;
    Options options;
    options.number("minutes", "Minutes of audio in the image.", plan.minutes);
    options.number("tracks", "Tracks in the image.", plan.tracks);
    options.number("pairs", "Paired runs of each row.", plan.pairs);
    options.number("mp3-minutes", "Minutes of audio for the MP3 row.", plan.mp3Minutes);
    options.rows("flac wav window mp3 memory", plan.rows);
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
    const QByteArray command(argc > 3 ? argv[1] : "");
    if (command.isEmpty() || !command.startsWith("run-"))
        return measure(argc, argv);
    const QString cue = QString::fromLocal8Bit(argv[2]);
    const QString folder = QString::fromLocal8Bit(argv[3]);
    if (command == workerCommand)
        return ripWithWorker(argc, argv, cue, argc > 4 ? QByteArray(argv[4]).toInt() : 0, folder);
    return ripThroughWindow(argc, argv, cue, folder, command == stallCommand);
}

#include "RipCommands.h"

#include "ChildRun.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/OfflineServices.h"
#include "ui/WindowDriver.h"

#include <QApplication>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int ripStep = 3;
constexpr int lookupPatienceMilliseconds = 120000;
constexpr int exitFailed = 1;

class Stopwatch {
public:
    Stopwatch() { clock.start(); }
    void report(qint64 stallNanoseconds) const
    {
        std::printf("%.6f %.6f %.6f\n", ownProcessorSeconds() - before,
                    static_cast<double>(clock.nsecsElapsed()) / 1e9,
                    static_cast<double>(stallNanoseconds) / 1e9);
    }

private:
    double before = ownProcessorSeconds();
    QElapsedTimer clock;
};

// The longest time between two ticks of a timer in the event loop.
class StallWatch {
public:
    void start()
    {
        QObject::connect(&timer, &QTimer::timeout, [this] { note(); });
        timer.setTimerType(Qt::PreciseTimer);
        sinceTick.start();
        timer.start(1);
    }
    qint64 longest = 0; ///< nanoseconds

private:
    void note()
    {
        longest = std::max(longest, sinceTick.nsecsElapsed());
        sinceTick.start();
    }

    QTimer timer;
    QElapsedTimer sinceTick;
};

qsizetype filesBelow(const QString& folder, const QString& pattern)
{
    qsizetype count = 0;
    for (QDirIterator files(folder, {pattern}, QDir::Files, QDirIterator::Subdirectories); files.hasNext();) {
        files.next();
        ++count;
    }
    return count;
}

} // namespace

int ripWithWorker(int argc, char** argv, const QString& cue, OutputFormat format, const QString& folder)
{
    const QGuiApplication application(argc, argv);
    const Stopwatch watch;
    CdDrive drive;
    if (!drive.openCue(cue))
        return exitFailed;
    RipWorker worker;
    qsizetype whole = 0;
    QObject::connect(&worker, &RipWorker::trackDone, [&whole](const RipResult& result) {
        if (result.ok && result.errorSectors == 0)
            ++whole;
    });
    const DiscToc disc = drive.readToc();
    worker.configure(&drive, disc, folder, QStringLiteral("Artist"), QStringLiteral("Album"),
                     QStringLiteral("1998"), QPixmap(), QString(), 1, 1, 300, format, QString(), 20);
    worker.run();
    watch.report(0);
    return whole == disc.tracks.size() ? 0 : exitFailed;
}

int ripThroughWindow(int argc, char** argv, const QString& cue, OutputFormat format, const QString& folder,
                     bool watchStalls)
{
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("TarvelBenchmarks"));
    QApplication::setApplicationName(QStringLiteral("TarvelBenchmarks"));
    const OfflineServices offline;
    WindowDriver driver;
    driver.pickCue(cue);
    while (driver.step() < ripStep) {
        if (!QTest::qWaitFor([&driver] { return driver.next()->isEnabled(); }, lookupPatienceMilliseconds))
            return exitFailed;
        driver.outputPath()->setText(folder);
        driver.find<QRadioButton>("fmtRadio", format)->click();
        WindowDriver::click(driver.next());
    }

    // Not WindowDriver::runRip, which sleeps between its looks at the event queue.
    StallWatch stalls;
    if (watchStalls)
        stalls.start();
    const Stopwatch watch;
    const DialogWatcher atEnd([&](QDialog* dialog) {
        watch.report(stalls.longest);
        dialog->accept();
        QTimer::singleShot(0, qApp, &QApplication::quit);
    });
    WindowDriver::click(driver.rip());
    QApplication::exec();
    constexpr const char* patterns[] = {"*.flac", "*.wav", "*.mp3"}; // by the number of the format
    const bool whole =
        filesBelow(folder, QLatin1String(patterns[format])) == CdDrive::parseCue(cue).tracks.size();
    return whole ? 0 : exitFailed;
}

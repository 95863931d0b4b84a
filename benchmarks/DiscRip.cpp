#include "DiscRip.h"

#include "ChildRun.h"
#include "FileJudge.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/OfflineServices.h"

#include <QHash>
#include <QPixmap>

#include <utility>

namespace {

Verdict verdictOf(const SectorResult& record)
{
    if (record.bad || record.mismatch)
        return Verdict::Unconfirmed;
    return record.clean ? Verdict::Good : Verdict::Recovered;
}

} // namespace

DiscRipOutcome& DiscRipOutcome::operator+=(const DiscRipOutcome& other)
{
    wrong += other.wrong;
    wrongGood += other.wrongGood;
    wrongRecovered += other.wrongRecovered;
    wrongBorrowed += other.wrongBorrowed;
    wrongUnconfirmed += other.wrongUnconfirmed;
    falselyBad += other.falselyBad;
    recoveredRight += other.recoveredRight;
    commands += other.commands;
    sectors += other.sectors;
    driveSeconds += other.driveSeconds;
    processorSeconds += other.processorSeconds;
    c2Mode = other.c2Mode;
    filesWhole = filesWhole && other.filesWhole;
    return *this;
}

DiscRipOutcome ripSimulatedDisc(SimulatedDrive& simulated, const DiscRipOptions& options)
{
    const DrivePlatformOverride platform(simulated);
    DiscRipOutcome outcome;
    CdDrive drive;
    if (!drive.open(simulated.letter)) {
        outcome.filesWhole = false;
        return outcome;
    }
    const DiscToc disc = drive.readToc();
    drive.setReadOffset(simulated.readOffset);
    const OfflineServices offline;
    RipWorker worker;
    worker.configure(&drive, disc, options.folder, QStringLiteral("Artist"), QStringLiteral("Album"),
                     QStringLiteral("1998"), QPixmap(), QString(), 1, 1, 300, OutputWav, QString(),
                     options.maxRereads);
    QHash<quint32, SectorResult> records;
    if (options.judge)
        QObject::connect(&worker, &RipWorker::sectorDone,
                         [&records](const SectorResult& record) { records.insert(record.lba, record); });
    bool whole = true;
    QObject::connect(&worker, &RipWorker::trackDone,
                     [&whole](const RipResult& track) { whole = whole && track.ok; });
    const double before = ownProcessorSeconds();
    worker.run();
    const double processor = ownProcessorSeconds() - before;

    if (options.judge) {
        QHash<quint32, Verdict> verdicts;
        for (const SectorResult& record : std::as_const(records))
            verdicts.insert(record.lba, verdictOf(record));
        FileJudge judge(simulated, verdicts);
        for (const TrackInfo& track : disc.tracks) {
            const QString name = QStringLiteral("Track %1").arg(track.number);
            const QString path = worker.outputBasePath(track.number, name) + QStringLiteral(".wav");
            const bool judged =
                track.isData || judge.judge(track.startLba, track.endLba, samplesOfWave(path));
            whole = whole && judged;
        }
        outcome = judge.result();
    }
    outcome.processorSeconds = processor;
    outcome.filesWhole = outcome.filesWhole && whole;
    outcome.c2Mode = drive.c2Enabled();
    outcome.commands = simulated.commandsSent;
    outcome.sectors = simulated.sectorsTransferred;
    outcome.driveSeconds = static_cast<double>(simulated.nowNanoseconds()) / 1e9;
    return outcome;
}

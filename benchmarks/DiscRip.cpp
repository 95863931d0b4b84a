#include "DiscRip.h"

#include "ChildRun.h"
#include "base/ByteOrder.h"
#include "disc/CdDrive.h"
#include "rip/RipWorker.h"
#include "support/OfflineServices.h"

#include <QFile>
#include <QHash>
#include <QPixmap>

#include <algorithm>
#include <cstring>

namespace {

constexpr qint64 frameBytes = 4;
constexpr qint64 sectorFrames = RAW_SECTOR_BYTES / frameBytes;

// Ordered: of several reads in one sector of a file the highest one counts.
enum class Verdict { Unconfirmed, Recovered, Borrowed, Good };

Verdict verdictOf(const SectorResult& record)
{
    if (record.bad || record.mismatch)
        return Verdict::Unconfirmed;
    return record.clean ? Verdict::Good : Verdict::Recovered;
}

// The samples of a WAVE file; empty when there are none.
QByteArray samplesOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    for (qsizetype place = 12; place + 8 <= bytes.size();) {
        const auto size = qsizetype{byteorder::readLittle<quint32>(bytes.constData() + place + 4)};
        if (bytes.mid(place, 4) == "data")
            return bytes.mid(place + 8, size);
        place += 8 + size + (size & 1);
    }
    return {};
}

class Judge {
public:
    Judge(const SimulatedDrive& judgedDrive, const QHash<quint32, SectorResult>& reported)
        : drive(judgedDrive), records(reported)
    {
    }

    void judgeTrack(const TrackInfo& track, const QString& path)
    {
        const QByteArray samples = samplesOf(path);
        const qint64 count = qint64{track.endLba} - track.startLba + 1;
        if (samples.size() != count * RAW_SECTOR_BYTES) {
            outcome.filesWhole = false;
            return;
        }
        for (qint64 i = 0; i < count; ++i)
            judgeSector(track, track.startLba + static_cast<quint32>(i),
                        samples.constData() + i * RAW_SECTOR_BYTES);
    }

    DiscRipOutcome result()
    {
        for (auto record = records.cbegin(); record != records.cend(); ++record) {
            if (wrongReads.contains(record.key()))
                continue;
            outcome.falselyBad += verdictOf(*record) == Verdict::Unconfirmed ? 1 : 0;
            outcome.recoveredRight += verdictOf(*record) == Verdict::Recovered ? 1 : 0;
        }
        return outcome;
    }

private:
    void judgeSector(const TrackInfo& track, quint32 lba, const char* held)
    {
        const QByteArray truth = drive.truth(lba);
        if (std::memcmp(truth.constData(), held, RAW_SECTOR_BYTES) == 0)
            return;
        Verdict highest = Verdict::Unconfirmed;
        for (qint64 frame = 0; frame < sectorFrames; ++frame) {
            if (std::memcmp(truth.constData() + frame * frameBytes, held + frame * frameBytes, frameBytes)
                != 0)
                highest = std::max(highest, verdictOfFrame(track, qint64{lba} * sectorFrames + frame));
        }
        ++outcome.wrong;
        ++(highest == Verdict::Good        ? outcome.wrongGood
           : highest == Verdict::Borrowed  ? outcome.wrongBorrowed
           : highest == Verdict::Recovered ? outcome.wrongRecovered
                                           : outcome.wrongUnconfirmed);
    }

    // Of the read that a wrong frame of a file came from.
    Verdict verdictOfFrame(const TrackInfo& track, qint64 frame)
    {
        const qint64 read = (frame + drive.readOffset) / sectorFrames;
        if (frame + drive.readOffset < qint64{track.startLba} * sectorFrames || read > track.endLba)
            return Verdict::Borrowed;
        const auto lba = static_cast<quint32>(read);
        wrongReads.insert(lba, true);
        // A sector that was never reported passes for good.
        return records.contains(lba) ? verdictOf(records[lba]) : Verdict::Good;
    }

    const SimulatedDrive& drive;
    const QHash<quint32, SectorResult>& records;
    QHash<quint32, bool> wrongReads;
    DiscRipOutcome outcome;
};

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
        Judge judge(simulated, records);
        for (const TrackInfo& track : disc.tracks) {
            const QString name = QStringLiteral("Track %1").arg(track.number);
            if (!track.isData)
                judge.judgeTrack(track, worker.outputBasePath(track.number, name) + QStringLiteral(".wav"));
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

#include "PeerRip.h"

#include "FileJudge.h"
#include "disc/DiscModel.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <stdexcept>

namespace {

// Values of 16 bits: how cdparanoia counts in the progress that it prints for scripts.
constexpr qint64 sectorValues = RAW_SECTOR_BYTES / 2;

struct Reported {
    bool finished = false;
    bool inTime = true;
    QByteArray progress;
};

Reported runPeer(const DriveDescription& description, const QString& library, const QString& folder,
                 int patience)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QMap<QString, QString> values = description.toEnvironment();
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        environment.insert(value.key(), value.value());
    environment.insert(QStringLiteral("TARVEL_DRIVE_FOLDER"), folder);
    environment.insert(QStringLiteral("LD_PRELOAD"), library);
    QProcess peer;
    peer.setProcessEnvironment(environment);
    peer.setWorkingDirectory(folder);
    peer.setStandardInputFile(QProcess::nullDevice());
    peer.setStandardErrorFile(folder + QStringLiteral("/progress"));
    peer.start(QStringLiteral("cdparanoia"),
               {QStringLiteral("--stderr-progress"), QStringLiteral("--force-cdrom-device"),
                QStringLiteral("/dev/sr0"), QStringLiteral("--batch")});
    if (!peer.waitForStarted())
        throw std::runtime_error("cdparanoia cannot be started");
    Reported reported;
    reported.inTime = peer.waitForFinished(patience * 1000);
    if (!reported.inTime) {
        peer.kill();
        peer.waitForFinished();
    }
    reported.finished = reported.inTime && peer.exitStatus() == QProcess::NormalExit && peer.exitCode() == 0;
    QFile progress(folder + QStringLiteral("/progress"));
    if (progress.open(QIODevice::ReadOnly))
        reported.progress = progress.readAll();
    return reported;
}

// A line names what happened and where. Skips are uncorrected; what else is trouble was
// corrected in the program's own view. The rest is its everyday work.
QHash<quint32, Verdict> verdictsIn(const QByteArray& progress)
{
    static const QRegularExpression event(QStringLiteral("^##: -?\\d+ \\[(.+)\\] @ (-?\\d+)$"));
    static const QStringList everyday{QStringLiteral("read"), QStringLiteral("verify"),
                                      QStringLiteral("overlap"), QStringLiteral("wrote"),
                                      QStringLiteral("finished")};
    QHash<quint32, Verdict> verdicts;
    for (const QByteArray& line : progress.split('\n')) {
        const auto match = event.match(QString::fromLatin1(line));
        if (!match.hasMatch() || everyday.contains(match.captured(1)) || match.captured(2).startsWith(u'-'))
            continue;
        const auto sector = static_cast<quint32>(match.captured(2).toLongLong() / sectorValues);
        const Verdict said =
            match.captured(1) == QLatin1String("skip") ? Verdict::Unconfirmed : Verdict::Recovered;
        verdicts[sector] = std::min(verdicts.value(sector, Verdict::Good), said);
    }
    return verdicts;
}

QByteArray ripped(const QString& folder)
{
    QByteArray samples;
    const QStringList files =
        QDir(folder).entryList({QStringLiteral("track*.cdda.wav")}, QDir::Files, QDir::Name);
    for (const QString& file : files)
        samples += samplesOfWave(folder + u'/' + file);
    return samples;
}

// Whether a sector came out otherwise than the drive would have it.
bool isWrong(const SimulatedDrive& drive, const QByteArray& samples, quint32 lba)
{
    QByteArray held(RAW_SECTOR_BYTES, '\0');
    drive.copyFrames(qint64{lba} * (RAW_SECTOR_BYTES / 4) - drive.readOffset,
                     reinterpret_cast<quint8*>(held.data()));
    const qsizetype place = qsizetype{lba} * RAW_SECTOR_BYTES;
    return place + RAW_SECTOR_BYTES <= samples.size() && samples.mid(place, RAW_SECTOR_BYTES) != held;
}

// A skip is reported once, however many sectors are skipped: it stands for the whole
// unbroken run of wrong sectors behind it.
void spreadSkips(QHash<quint32, Verdict>& verdicts, const SimulatedDrive& drive, const QByteArray& samples)
{
    const QHash<quint32, Verdict> reported = verdicts;
    for (auto said = reported.cbegin(); said != reported.cend(); ++said) {
        for (quint32 lba = said.key(); *said == Verdict::Unconfirmed && isWrong(drive, samples, lba); ++lba)
            verdicts[lba] = Verdict::Unconfirmed;
    }
}

// Moves all samples ahead, or back where negative, and fills up with silence.
QByteArray shifted(const QByteArray& samples, int frames)
{
    const qsizetype bytes = qsizetype{frames} * 4;
    QByteArray moved = bytes >= 0 ? samples.mid(bytes) : QByteArray(-bytes, '\0') + samples;
    moved.resize(samples.size(), '\0');
    return moved;
}

void readReport(const QString& folder, DiscRipOutcome& outcome)
{
    QFile report(folder + QStringLiteral("/report"));
    if (!report.open(QIODevice::ReadOnly))
        throw std::runtime_error("the played drive left no report");
    for (const QByteArray& line : report.readAll().split('\n')) {
        const QList<QByteArray> words = line.split(' ');
        if (words.size() != 2)
            continue;
        const quint64 number = words[1].toULongLong();
        if (words[0] == "commands")
            outcome.commands = number;
        else if (words[0] == "sectors")
            outcome.sectors = number;
        else if (words[0] == "nanoseconds")
            outcome.driveSeconds = static_cast<double>(number) / 1e9;
    }
}

} // namespace

PeerRip::Outcome PeerRip::rip(const DriveDescription& description) const
{
    const QTemporaryDir folder;
    const Reported reported = runPeer(description, library, folder.path(), patience);
    SimulatedDrive drive;
    setUpDrive(drive, description);
    QHash<quint32, Verdict> verdicts = verdictsIn(reported.progress);
    const QByteArray samples = ripped(folder.path());
    spreadSkips(verdicts, drive, samples);
    FileJudge judge(drive, verdicts);
    Outcome outcome;
    outcome.gaveUp = !reported.inTime;
    bool whole = false;
    if (reported.finished) {
        const auto sectors = static_cast<quint32>(description.seconds) * SECTORS_PER_SECOND;
        whole = judge.judge(0, sectors - 1, shifted(samples, description.readOffset));
        static_cast<DiscRipOutcome&>(outcome) = judge.result();
    }
    outcome.filesWhole = whole;
    readReport(folder.path(), outcome);
    return outcome;
}

#include "DiscPeer.h"

#include "DiscRip.h"
#include "Measure.h"
#include "MusicImage.h"
#include "playeddrive/DriveDescription.h"

#include <QCoreApplication>
#include <QDir>
#include <QGuiApplication>

namespace {

QStringList inEnvironment(const QString& folder, const DriveDescription& description, const QString& library)
{
    QStringList command{QStringLiteral("env"), QStringLiteral("-C"), folder,
                        QStringLiteral("TARVEL_DRIVE_FOLDER=") + folder};
    const QMap<QString, QString> values = description.toEnvironment();
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        command.append(value.key() + u'=' + value.value());
    if (!library.isEmpty())
        command.append(QStringLiteral("LD_PRELOAD=") + library);
    return command;
}

RunCost runInEmpty(const QString& folder, const QStringList& command)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    const RunCost cost = runChild(command);
    QDir(folder).removeRecursively();
    return cost;
}

} // namespace

void DiscPeer::printRows(const QString& folder) const
{
    const MusicImage music = makeMusicImage(folder + QStringLiteral("/image"), minutes, tracks);
    DriveDescription drive;
    drive.audioFile = music.bin;
    for (int track = 0; track < tracks; ++track)
        drive.trackStarts.append(static_cast<quint32>(track * music.trackSectors));
    const QString out = folder + QStringLiteral("/peer");
    const auto ours = [&](bool c2) {
        DriveDescription chosen = drive;
        chosen.c2 = c2;
        return runInEmpty(out, inEnvironment(out, chosen, {})
                                   + QStringList{QCoreApplication::applicationFilePath(),
                                                 QLatin1String(ripDescribedCommand), out});
    };
    const auto costs = runInTurn(
        pairs,
        {[&] { return ours(true); }, [&] { return ours(false); },
         [&] {
             return runInEmpty(out, inEnvironment(out, drive, library)
                                        + QStringList{QStringLiteral("cdparanoia"), QStringLiteral("--quiet"),
                                                      QStringLiteral("--force-cdrom-device"),
                                                      QStringLiteral("/dev/sr0"), QStringLiteral("--batch")});
         }});
    for (const bool c2 : {true, false})
        printRow({QStringLiteral("disc to WAV, no latency, ")
                      + (c2 ? QLatin1String("C2") : QLatin1String("compare")),
                  QStringLiteral("cdparanoia"), QStringLiteral("s")},
                 processorOf(costs[c2 ? 0 : 1]), processorOf(costs[2]), bounds::discPeer);
}

int ripDescribedDisc(int argc, char** argv, const QString& folder)
{
    const QGuiApplication application(argc, argv);
    SimulatedDrive drive;
    setUpDrive(drive, DriveDescription::fromEnvironment());
    DiscRipOptions options;
    options.folder = folder;
    options.judge = false;
    return ripSimulatedDisc(drive, options).filesWhole ? 0 : 1;
}

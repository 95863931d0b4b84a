// Converts a folder by the real dialog in fresh processes, beside a shell that
// runs flac file by file; and looks at what one long file takes of the memory.

#include "ChildRun.h"
#include "Measure.h"
#include "MusicImage.h"
#include "Options.h"
#include "base/ByteOrder.h"
#include "convert/ConvertDialog.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <stdexcept>

namespace {

constexpr char convertCommand[] = "run-dialog";
constexpr double memoryMegabytes = 150;
constexpr int longSeconds = 2 * 60 * 60;

double wallOf(const RunCost& cost)
{
    return cost.wall;
}

double megabytesOf(const RunCost& cost)
{
    return static_cast<double>(cost.peakBytes) / 1e6;
}

/// One run of the dialog, FLAC being its first choice.
int convertByDialog(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    ConvertDialog dialog;
    dialog.show();
    const auto edits = dialog.findChildren<QLineEdit*>();
    edits.at(0)->setText(QFile::decodeName(argv[2]));
    edits.at(1)->setText(QFile::decodeName(argv[3]));
    dialog.findChildren<QPushButton*>().constLast()->click();
    return 0;
}

QStringList dialogRun(const QString& source, const QString& target)
{
    return {QCoreApplication::applicationFilePath(), QLatin1String(convertCommand), source, target};
}

/// Silence of a length as a WAV file whose samples take no room on the disk.
void writeLongWave(const QString& path, int seconds)
{
    const quint32 bytes = static_cast<quint32>(seconds) * 44100 * 4;
    QByteArray header("RIFF....WAVEfmt ....................data....");
    const auto place = [&header](qsizetype at, auto value) {
        byteorder::writeLittle(header.data() + at, value);
    };
    place(4, quint32{36 + bytes});
    place(16, quint32{16});
    place(20, quint16{1});
    place(22, quint16{2});
    place(24, quint32{44100});
    place(28, quint32{44100 * 4});
    place(32, quint16{4});
    place(34, quint16{16});
    place(40, bytes);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(header) != header.size()
        || !file.resize(header.size() + qint64{bytes}))
        throw std::runtime_error("can't write the long file");
}

void folderRow(const QString& folder, int minutes, int pairs)
{
    const QString sources = folder + QStringLiteral("/album");
    QDir().mkpath(sources);
    const MusicImage music = makeMusicImage(folder + QStringLiteral("/image"), minutes, 12);
    const QStringList waves = writeTrackWaves(music, sources);
    const QString target = folder + QStringLiteral("/out");
    const QString loop = QStringLiteral("mkdir -p '%2' && for f in '%1'/*.wav; do flac -s -f -5 -o "
                                        "\"%2/$(basename \"$f\" .wav).flac\" \"$f\" || exit 1; done")
                             .arg(sources, folder + QStringLiteral("/shell"));
    const auto costs = runInTurn(
        pairs, {[&] {
                    QDir(target).removeRecursively();
                    const RunCost cost = runChild(dialogRun(sources, target));
                    const auto made =
                        QDir(target + QStringLiteral("/album")).entryList({QStringLiteral("*.flac")});
                    if (made.size() != waves.size())
                        throw std::runtime_error("the dialog did not convert every file");
                    return cost;
                },
                [&] {
                    return runChild({QStringLiteral("sh"), QStringLiteral("-c"), loop});
                }});
    printRow({QStringLiteral("folder of 12 WAV to FLAC, on the wall"),
              QStringLiteral("shell loop of flac -5"), QStringLiteral("s")},
             figures(costs[0], wallOf), figures(costs[1], wallOf), bounds::folder);
    QDir(sources).removeRecursively();
}

void memoryRows(const QString& folder)
{
    for (const int seconds : {longSeconds / 60, longSeconds}) {
        const QString sources = folder + QStringLiteral("/long");
        QDir().mkpath(sources);
        writeLongWave(sources + QStringLiteral("/long.wav"), seconds);
        const RunCost cost = runChild(dialogRun(sources, folder + QStringLiteral("/out")));
        printRow({QStringLiteral("peak memory, %1 minutes converted").arg(seconds / 60),
                  QStringLiteral("150 MB"), QStringLiteral("MB")},
                 {megabytesOf(cost)}, {memoryMegabytes}, bounds::conversionMemory);
        QDir(sources).removeRecursively();
    }
}

int measure(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    int minutes = 48;
    int pairs = 5;
    Options options;
    options.number("minutes", "Minutes of audio.", minutes);
    options.number("pairs", "Paired runs.", pairs);
    options.read(application);
    const QTemporaryDir folder;
    return runToEnd([&] {
        printHead();
        folderRow(folder.path(), minutes, pairs);
        memoryRows(folder.path());
    });
}

} // namespace

int main(int argc, char** argv)
{
    return argc == 4 && QByteArray(argv[1]) == convertCommand ? convertByDialog(argc, argv)
                                                              : measure(argc, argv);
}

// Long runs in one process: what was taken for one rip, disc or file is given back.

#include "convert/ConvertDialogView.h"
#include "convert/FolderOfAudio.h"
#include "endurance/LongRunStage.h"
#include "endurance/WholeFile.h"

#include <QApplication>

namespace {

class LongRuns : public LongRunStage {
protected:
    /// What Qt keeps of each file dialog that has been: where a style sheet sets the
    /// size of the letters, some 2 KB of what it knows of the dialog's widgets.
    qint64 bytesOfFileDialog(WindowDriver& app)
    {
        constexpr qint64 most = 4096;
        const Repetitions dialogs("DIALOG", 12);
        const qint64 growth = repeat({"file dialogs", dialogs, 12, 1, most}, [&](quint32) {
            app.pickCue(QString()); // is cancelled
        });
        return growth / std::max(1, dialogs.count());
    }
};

constexpr int formats = 3;

} // namespace

TEST_F(LongRuns, RipsOfAllKindsGiveBackWhatTheyTook)
{
    constexpr int trackCount = 2;
    constexpr int sources = 4;
    WindowDriver app(2, drive());
    loadDisc(app, trackCount);
    answerLookups(trackCount);
    const QByteArray audio = app.shelf().audio;
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("Alpha")}, {trackSectors, QStringLiteral("Beta")}};
    const QString sheet = writeImage(folder.path(), description, audio);
    const QString song =
        writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(audio.left(trackBytes)));
    constexpr int kinds = sources * formats;
    // Every second source is picked from a file dialog.
    const qint64 keptByQt = bytesOfFileDialog(app) / 2;
    repeat({"rips", Repetitions("RIP", kinds), kinds, 1, keptByQt}, [&](quint32 seed) {
        const quint32 source = seed % sources;
        const bool isSong = source == 3;
        app.shelf().c2Available = source == 0;
        if (isSong)
            app.pickAudio(song);
        else if (source == 2)
            app.pickCue(sheet);
        else
            WindowDriver::click(app.onPage<QPushButton>(0, "browseBtn", 0));
        const int tracks = isSong ? 1 : trackCount;
        ripAndReset(app, static_cast<int>(seed % formats), tracks, !isSong);
        expectTracks(audio, tracks);
    });
}

TEST_F(LongRuns, DiscsOf99TracksAreWholeEachTime)
{
    constexpr int trackCount = 99;
    constexpr int modes = 2;
    WindowDriver app(2, drive());
    loadDisc(app, trackCount);
    answerLookups(trackCount);
    repeat({"99-track discs", Repetitions("DISC", 1), formats}, [&](quint32 seed) {
        app.shelf().c2Available = seed % modes == 0;
        WindowDriver::click(app.onPage<QPushButton>(0, "browseBtn", 0));
        ripAndReset(app, static_cast<int>(seed % formats), trackCount, true);
        expectTracks(app.shelf().audio, trackCount);
    });
}

TEST_F(LongRuns, ThousandsOfFilesAreConverted)
{
    constexpr int files = 250;
    constexpr int sectors = 10;
    const FolderOfAudio place;
    for (int file = 0; file < files; ++file)
        place.addWave(QStringLiteral("%1.wav").arg(file), static_cast<quint32>(file), sectors);
    WindowDriver app;
    WindowDriver::click(app.find<QPushButton>("convertBtn"));
    const ConvertDialogView dialog(qobject_cast<QDialog*>(QApplication::activeModalWidget()));
    repeat({"converted files", Repetitions("CONVERSION", 2), 2, files}, [&](quint32 seed) {
        const bool isFlac = seed % 2 == 0;
        dialog.fill(place.source(), place.output());
        dialog.format()->setCurrentIndex(isFlac ? 1 : 2);
        dialog.click();
        EXPECT_EQ(dialog.status(), QStringLiteral("Done: %1 of %1 files converted").arg(files));
        dialog.click(); // and begins anew
        const QString name =
            place.runFolder() + QStringLiteral("/%1.") + QLatin1String(isFlac ? "flac" : "mp3");
        for (int file = 0; file < files; ++file)
            EXPECT_EQ(faultOf(name.arg(file), makeAudio(sectors, static_cast<quint32>(file))).toStdString(),
                      "")
                << file;
        QDir(place.output()).removeRecursively();
    });
}

TEST_F(LongRuns, WindowsTakeTheirDialogsAlong)
{
    repeat({"windows", Repetitions("WINDOW", 8), 8}, [&](quint32) {
        WindowDriver app;
        const DialogWatcher watcher([](QDialog* dialog) { dialog->reject(); });
        WindowDriver::click(app.find<QPushButton>("settingsBtn"));
        WindowDriver::click(app.find<QPushButton>("convertBtn"));
        EXPECT_EQ(app.window().findChildren<QDialog*>().size(), 2);
    });
}

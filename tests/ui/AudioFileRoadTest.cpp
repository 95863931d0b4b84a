// One audio file, from the first click to the closed window.

#include "ui/WindowDriver.h"

#include "support/DiscMaker.h"
#include "support/Tool.h"

#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class AudioFileRoad : public ::testing::Test {
protected:
    void SetUp() override
    {
        QSettings().clear();
        QDir(folder.path()).mkpath(QStringLiteral("Sources"));
        QDir(folder.path()).mkpath(QStringLiteral("Music"));
    }

    /// An audio file of the kind that its name ends in.
    QString makeSong(const QString& name, int sectors = 100)
    {
        const QString sources = folder.filePath(QStringLiteral("Sources"));
        const QString wave =
            writeFile(sources, QStringLiteral("made.wav"), wrapInWave(makeAudio(sectors, 3)));
        const QString song = sources + QLatin1Char('/') + name;
        EXPECT_TRUE(
            runTool(QStringLiteral("ffmpeg"), {QStringLiteral("-v"), QStringLiteral("error"),
                                               QStringLiteral("-y"), QStringLiteral("-i"), wave, song})
                .ok());
        return song;
    }

    /// To the RIP step, with the given format of the Output page.
    void prepare(WindowDriver& app, const QString& song, int formatPlace)
    {
        app.outputPath()->setText(folder.filePath(QStringLiteral("Music")));
        app.pickAudio(song);
        app.advanceTo(1);
        app.onPage<QRadioButton>(1, "fmtRadio", formatPlace)->click();
        app.advanceTo(3);
    }

    QString written(const QString& name) const
    {
        return folder.filePath(QStringLiteral("Music/Unknown - Unknown/Sources/") + name);
    }

    QTemporaryDir folder;
};

} // namespace

TEST_F(AudioFileRoad, AnyKindOfFileBecomesAnyFormatOffered)
{
    const char* endings[] = {"flac", "wav", "mp3"};
    const char* sources[] = {"One.ogg", "Two.m4a", "Three.aiff"};
    for (int place = 0; place < 3; ++place) {
        SCOPED_TRACE(endings[place]);
        WindowDriver app(2);
        const QString song = makeSong(QLatin1String(sources[place]));
        prepare(app, song, place);
        EXPECT_FALSE(app.runRip().isEmpty());
        const QString name = QFileInfo(song).completeBaseName();
        const QStringList log = app.logLines();
        EXPECT_TRUE(log.contains(QStringLiteral("  Track 01: ") + name)) << log.join('\n').toStdString();
        EXPECT_TRUE(log.contains(QStringLiteral("  Track 01: ✦ saved  (errors:0)")))
            << log.join('\n').toStdString();
        // Each run has a folder of its own: this is the first in a new music folder.
        const QString file = QStringLiteral("01. %1.%2").arg(name, QLatin1String(endings[place]));
        const QString where =
            place == 0 ? written(file)
                       : folder.filePath(QStringLiteral("Music/Unknown - Unknown/Sources - Copy%1/")
                                             .arg(place == 1 ? QString() : QStringLiteral(" (2)")))
                             + file;
        const ToolResult probe =
            runTool(QStringLiteral("ffprobe"),
                    {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-show_entries"),
                     QStringLiteral("format=duration:format_tags=title"), QStringLiteral("-of"),
                     QStringLiteral("default=nk=1:nw=1"), where});
        ASSERT_TRUE(probe.ok()) << probe.errors.toStdString();
        const QList<QByteArray> lines = probe.output.trimmed().split('\n');
        EXPECT_NEAR(lines.value(0).toDouble(), 100.0 / 75, 0.06) << "an MP3 file has up to two frames more";
        EXPECT_EQ(QString::fromUtf8(lines.value(1)), name);
        WindowDriver::click(app.next());
        EXPECT_FALSE(app.window().isVisible());
    }
}

TEST_F(AudioFileRoad, WhatIsTypedOnTheMetadataPageGoesIntoTheFile)
{
    WindowDriver app(2);
    app.outputPath()->setText(folder.filePath(QStringLiteral("Music")));
    app.pickAudio(makeSong(QStringLiteral("Song.flac")));
    app.advanceTo(2);
    app.artist()->setText(QStringLiteral("Ada"));
    app.album()->setText(QStringLiteral("Blue"));
    app.year()->setText(QStringLiteral("1998"));
    app.advanceTo(3);
    app.runRip();
    const QString file = folder.filePath(QStringLiteral("Music/Ada - Blue/Sources/01. Song.flac"));
    const QString tags = QString::fromUtf8(
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--export-tags-to=-"), file}).output);
    for (const char* tag : {"TITLE=Song", "ARTIST=Ada", "ALBUM=Blue", "DATE=1998"})
        EXPECT_TRUE(tags.contains(QLatin1String(tag))) << tag << " in " << tags.toStdString();
}

TEST_F(AudioFileRoad, AFileThatIsNoAudioEndsInTheSameResultBlockWithNothingSaved)
{
    for (const int language : {2, 1}) {
        WindowDriver app(language);
        const QString junk =
            writeFile(folder.filePath(QStringLiteral("Sources")), QStringLiteral("junk.flac"), "junk");
        prepare(app, junk, 0);
        EXPECT_FALSE(app.runRip().isEmpty());
        EXPECT_FALSE(app.logLines().join(QLatin1Char('\n')).contains(QStringLiteral("saved")));
        EXPECT_TRUE(app.next()->isEnabled());
        EXPECT_FALSE(app.rip()->isEnabled());
    }
    EXPECT_FALSE(QFileInfo::exists(folder.filePath(QStringLiteral("Music/Unknown - Unknown/Sources"))));
}

TEST_F(AudioFileRoad, AResetLeadsToASecondFile)
{
    WindowDriver app(2);
    prepare(app, makeSong(QStringLiteral("One.flac")), 1);
    app.runRip();
    while (app.step() > 0)
        WindowDriver::click(app.back());
    WindowDriver::click(app.reset());
    EXPECT_TRUE(app.audioPath()->text().isEmpty());
    prepare(app, makeSong(QStringLiteral("Two.flac")), 1);
    app.runRip();
    EXPECT_TRUE(QFileInfo(written(QStringLiteral("01. One.wav"))).isFile());
    EXPECT_TRUE(
        QFileInfo(folder.filePath(QStringLiteral("Music/Unknown - Unknown/Sources - Copy/01. Two.wav")))
            .isFile());
}

TEST_F(AudioFileRoad, TheWindowMayGoAtAnyMomentOfTheRun)
{
    const QString song = makeSong(QStringLiteral("Long.flac"), 6000);
    // Before the run's thread has had a turn; at its start; in the encoder; at its end.
    for (const char* moment : {"", "RIP START", "Track 01: Long", "Track 01: ✦ saved"}) {
        SCOPED_TRACE(moment);
        WindowDriver app(2);
        prepare(app, song, 0);
        const DialogWatcher watcher([](QDialog* dialog) { dialog->accept(); });
        WindowDriver::click(app.rip());
        const QString awaited = QString::fromUtf8(moment);
        ASSERT_TRUE(
            QTest::qWaitFor([&] { return app.logLines().join(QLatin1Char('\n')).contains(awaited); }, 60000));
        EXPECT_LT(app.destroyWindow(), 5000);
    }
}

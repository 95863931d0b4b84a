#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"
#include "support/FileSizeLimit.h"
#include "support/Language.h"
#include "support/Tool.h"

#include <QDir>

namespace {

class RipFailure : public ::testing::TestWithParam<OutputFormat> {
protected:
    QString out() const { return folder.filePath(QStringLiteral("out")); }

    QString image(const QString& title, int sectors = 60)
    {
        ImageDescription description;
        description.tracks = {{0, title}};
        return writeImage(folder.path(), description, makeAudio(sectors, 2));
    }

    void expectOneFailedTrack() const
    {
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_FALSE(run.results[0].ok);
        EXPECT_EQ(run.finishedCount, 1);
    }

    QTemporaryDir folder;
    RunRecorder run;
};

} // namespace

TEST_P(RipFailure, AnOutputFolderThatIsAFileFailsTheTrack)
{
    const QString cue = image(QStringLiteral("One"));
    writeFile(folder.path(), QStringLiteral("out"), "a file");
    run.rip(cue, GetParam(), out());
    expectOneFailedTrack();
    EXPECT_EQ(contentOf(out()), "a file");
}

TEST_P(RipFailure, AFolderThatCannotBeMadeIsToldBeforeASectorIsRead)
{
    speak(2);
    writeFile(folder.path(), QStringLiteral("out"), "a file");
    const QString below = out() + QStringLiteral("/Album");
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("One")}, {30, QString()}};
    run.rip(writeImage(folder.path(), description, makeAudio(60, 2)), GetParam(), below);
    EXPECT_EQ(run.errors, QStringList{QStringLiteral("Cannot create the output folder: ") + below});
    EXPECT_EQ(run.logLines, QStringList{QStringLiteral("  ⚠ Cannot create the output folder: ") + below});
    EXPECT_EQ(run.sectors.size(), 0);
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("1/2 One"), QStringLiteral("2/2 Track 2")}));
    ASSERT_EQ(run.results.size(), 2);
    for (const RipResult& result : run.results) {
        EXPECT_FALSE(result.ok);
        EXPECT_EQ(result.errorSectors, noSamplesRead);
    }
    EXPECT_EQ(run.results[1].trackNumber, 2);
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_FALSE(run.drive.isBorrowed());
}

TEST_P(RipFailure, AFullDiskFailsTheTrackAndLeavesNoFile)
{
    const QString cue = image(QStringLiteral("One"));
    {
        const FileSizeLimit limit(10000);
        run.rip(cue, GetParam(), out());
    }
    expectOneFailedTrack();
    EXPECT_TRUE(QDir(out()).entryList(QDir::Files).isEmpty());
}

TEST_P(RipFailure, ATrackPathThatIsAFolderFailsAndKeepsTheFolder)
{
    const QString cue = image(QStringLiteral("One"));
    const char* extensions[] = {".flac", ".wav", ".mp3", ".m4a", ".m4a"};
    const QString taken = out() + QStringLiteral("/01. One") + QLatin1String(extensions[GetParam()])
                          + QStringLiteral("/inside");
    ASSERT_TRUE(QDir().mkpath(taken));
    run.rip(cue, GetParam(), out());
    expectOneFailedTrack();
    EXPECT_TRUE(QFileInfo(taken).isDir());
}

TEST_P(RipFailure, TitlesOfAnyKindGiveAFile)
{
    const QString titles[] = {
        QStringLiteral("a/b\\c"),    QStringLiteral("..."),           QStringLiteral("???"),
        QString(300, u'x'),          QStringLiteral("漢字かな"),      QStringLiteral("👩‍🎤 🎸"),
        QStringLiteral("שלום עולם"), QStringLiteral("tab\there\x01"), QStringLiteral("zero\0byte")};
    for (const QString& title : titles) {
        SCOPED_TRACE(title.toStdString());
        RunRecorder once;
        QTemporaryDir target;
        ASSERT_TRUE(once.drive.openCue(image(QStringLiteral("x"), 5)));
        DiscToc disc = once.drive.readToc();
        disc.tracks[0].title = title;
        once.worker.configure(&once.drive, disc, target.path(), title, title, QString(), QPixmap(), QString(),
                              1, 1, 300, GetParam(), QString(), 20);
        once.worker.run();
        ASSERT_EQ(once.results.size(), 1);
        EXPECT_TRUE(once.results[0].ok);
        EXPECT_EQ(QDir(target.path()).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
}

TEST_P(RipFailure, AnImageThatShrinksMidwayIsSilentFromThereOn)
{
    const QString cue = image(QStringLiteral("One"), 200);
    QObject::connect(&run.worker, &RipWorker::sectorDone, [this](const SectorResult& sector) {
        if (sector.lba == 50)
            QFile::resize(folder.filePath(QStringLiteral("disc.bin")), 60 * RAW_SECTOR_BYTES);
    });
    run.rip(cue, GetParam(), out());
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_GE(run.results[0].errorSectors, 130U);
    EXPECT_EQ(run.sectors.size(), 200);
}

INSTANTIATE_TEST_SUITE_P(Formats, RipFailure,
                         ::testing::Values(OutputFlac, OutputWav, OutputMp3, OutputAac, OutputAlac));

TEST(RipFolder, ADiscWithoutOneIsNotRead)
{
    speak(1);
    QTemporaryDir folder;
    ScriptedDrive disc(0);
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(400, 11);
    disc.tracks = {{0, true}, {100}, {250}};
    const QString below =
        writeFile(folder.path(), QStringLiteral("out"), "a file") + QStringLiteral("/Album");
    RunRecorder run;
    run.ripDisc(below);
    EXPECT_EQ(run.errors, QStringList{QStringLiteral("出力フォルダを作成できません: ") + below});
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("2/2 Track 2"), QStringLiteral("3/2 Track 3")}));
    EXPECT_EQ(run.results.size(), 2);
    EXPECT_EQ(disc.count(SimulatedDrive::Command::Raw) + disc.count(SimulatedDrive::Command::RawWithC2), 0);
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_FALSE(run.drive.isBorrowed());
    speak(2);
}

TEST(RipFormat, AnUnknownNumberCountsAsWav)
{
    QTemporaryDir folder;
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("One")}};
    RunRecorder run;
    run.rip(writeImage(folder.path(), description, makeAudio(5, 2)), static_cast<OutputFormat>(9),
            folder.path());
    EXPECT_TRUE(QFileInfo::exists(folder.filePath(QStringLiteral("01. One.wav"))));
}

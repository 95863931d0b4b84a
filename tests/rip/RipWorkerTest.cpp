#include "rip/RunGuard.h"

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "base/FreeSpace.h"
#include "support/Language.h"
#include "support/SimulatedDrive.h"

#include <QDir>

namespace {

class RecordingGuard : public RunGuard {
public:
    void begin() override { calls += "begin "; }
    void end() override { calls += "end "; }
    std::string calls;
};

} // namespace

TEST(RipWorker, RereadsAreAtLeastOne)
{
    RipWorker worker;
    for (const auto& [given, stored] : {std::pair{0, 1}, {-5, 1}, {1, 1}, {500, 500}}) {
        worker.configure(nullptr, DiscToc(), QString(), QString(), QString(), QString(), QPixmap(), QString(),
                         0, 0, 300, OutputFlac, QString(), given);
        EXPECT_EQ(worker.maxRereads(), stored);
    }
}

TEST(RipWorker, WithoutDriveOrTracksItEndsWithAnErrorAndNothingRaised)
{
    RecordingGuard guard;
    const RunGuardOverride override(guard);
    RunRecorder run;
    run.worker.run();
    EXPECT_EQ(run.errors, QStringList{QStringLiteral("No drive or tracks")});
    EXPECT_EQ(run.finishedCount, 1);
    run.worker.configure(&run.drive, DiscToc(), QString(), QString(), QString(), QString(), QPixmap(),
                         QString(), 0, 0, 300, OutputFlac, QString(), 20);
    ASSERT_TRUE(run.drive.borrow());
    run.worker.adoptBorrowedDrive();
    run.worker.run();
    EXPECT_EQ(run.errors.size(), 2);
    EXPECT_EQ(run.finishedCount, 2);
    EXPECT_EQ(guard.calls, "");
    EXPECT_FALSE(run.drive.isBorrowed());
}

TEST(RipWorker, ADriveInAnotherRipsHandsIsLeftToIt)
{
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    RecordingGuard guard;
    const RunGuardOverride override(guard);
    for (const int language : {1, 2}) {
        speak(language);
        RunRecorder run;
        ASSERT_TRUE(run.drive.openCue(writeImage(folder.path(), image, makeAudio(5, 1))));
        ASSERT_TRUE(run.drive.borrow());
        const QString output = folder.filePath(QStringLiteral("out"));
        run.worker.configure(&run.drive, run.drive.readToc(), output, QString(), QString(), QString(),
                             QPixmap(), QString(), 1, 1, 300, OutputWav, QString(), 20);
        run.worker.run();
        EXPECT_EQ(run.errors,
                  QStringList{language == 1 ? QStringLiteral("ドライブは別のリッピングで使用中です。")
                                            : QStringLiteral("The drive is in use by another rip.")});
        EXPECT_EQ(run.finishedCount, 1);
        EXPECT_TRUE(run.sectors.isEmpty());
        EXPECT_EQ(guard.calls, "");
        EXPECT_FALSE(QFileInfo::exists(output));
        EXPECT_TRUE(run.drive.isBorrowed()) << "it is not this run's to give back";
        EXPECT_FALSE(run.drive.readSector(0).isEmpty());
    }
    speak(2);
}

TEST(RipWorker, ADriveBorrowedForTheRunIsGivenBackByIt)
{
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(5, 1));
    CdDrive drive;
    ASSERT_TRUE(drive.openCue(cue));
    for (const bool started : {true, false}) {
        RipWorker worker;
        ASSERT_TRUE(drive.borrow());
        worker.configure(&drive, drive.readToc(), folder.filePath(QStringLiteral("out")), QString(),
                         QString(), QString(), QPixmap(), QString(), 1, 1, 300, OutputWav, QString(), 20);
        worker.adoptBorrowedDrive();
        if (started) {
            worker.run();
            EXPECT_FALSE(drive.isBorrowed());
        }
    }
    EXPECT_FALSE(drive.isBorrowed()) << "by a worker that went without a run, too";
    EXPECT_EQ(QDir(folder.filePath(QStringLiteral("out"))).entryList(QDir::Files),
              QStringList{QStringLiteral("01. One.wav")});
}

TEST(RipWorker, AnImageRunIsGuardedAndGivesTheDriveBack)
{
    RecordingGuard guard;
    const RunGuardOverride override(guard);
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    RunRecorder run;
    run.rip(writeImage(folder.path(), image, makeAudio(5, 1)), OutputWav,
            folder.filePath(QStringLiteral("out/deep")));
    EXPECT_EQ(guard.calls, "begin end ");
    EXPECT_FALSE(run.drive.isBorrowed());
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_TRUE(run.results[0].ok) << "the output folder is made";
}

TEST(RipWorker, ADiscRunIsGuardedFromItsFirstWordToTheLastTrack)
{
    RecordingGuard guard;
    const RunGuardOverride override(guard);
    SimulatedDrive disc;
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(60, 1);
    disc.tracks = {{0}, {30}};
    QTemporaryDir folder;
    RunRecorder run;
    const auto expectGuarded = [&guard] { EXPECT_EQ(guard.calls, "begin "); };
    QObject::connect(&run.worker, &RipWorker::trackStarted, expectGuarded);
    QObject::connect(&run.worker, &RipWorker::metadataReady, expectGuarded);
    QObject::connect(&run.worker, &RipWorker::sectorDone, expectGuarded);
    QObject::connect(&run.worker, &RipWorker::trackDone, expectGuarded);
    QObject::connect(&run.worker, &RipWorker::finished, [&guard] { EXPECT_EQ(guard.calls, "begin end "); });
    run.ripDisc(folder.path());
    EXPECT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_EQ(guard.calls, "begin end ");
}

TEST(RipWorker, AFileRunIsNotGuarded)
{
    RecordingGuard guard;
    const RunGuardOverride override(guard);
    QTemporaryDir folder;
    const QString song = writeFile(folder.path(), QStringLiteral("song.wav"), wrapInWave(makeAudio(5, 1)));
    RunRecorder run;
    run.worker.configure(nullptr, DiscToc(), folder.filePath(QStringLiteral("out")), QString(), QString(),
                         QString(), QPixmap(), QString(), 1, 1, 300, OutputWav, song, 20);
    run.worker.run();
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_EQ(guard.calls, "");
}

TEST(RipWorker, WhileItRunsTheDriveCannotBeOpenedByOthers)
{
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    const QString cue = writeImage(folder.path(), image, makeAudio(5, 1));
    RunRecorder run;
    bool reopened = true;
    QObject::connect(&run.worker, &RipWorker::trackStarted, [&] {
        reopened = run.drive.openCue(cue);
        run.drive.close();
    });
    run.rip(cue, OutputWav, folder.filePath(QStringLiteral("out")));
    EXPECT_FALSE(reopened);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_EQ(run.results[0].errorSectors, 0U);
    EXPECT_TRUE(run.drive.readSector(0).isEmpty()) << "closed once it was given back";
}

TEST(RipWorker, ARequestToStopEndsTheRunWithoutReportingTheTrack)
{
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}, {10, QStringLiteral("Two")}, {20, QStringLiteral("Three")}};
    RunRecorder run;
    QObject::connect(&run.worker, &RipWorker::sectorDone, [&run](const SectorResult& sector) {
        if (sector.lba == 15)
            run.worker.requestStop();
    });
    run.rip(writeImage(folder.path(), image, makeAudio(30, 1)), OutputWav,
            folder.filePath(QStringLiteral("out")));
    ASSERT_EQ(run.results.size(), 1);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_EQ(run.finishedCount, 1);
    EXPECT_EQ(QDir(folder.filePath(QStringLiteral("out"))).entryList(QDir::Files),
              QStringList{QStringLiteral("01. One.wav")});
    EXPECT_EQ(run.worker.unfinishedFile(), QString());
}

TEST(RipWorker, AnAudioFileWithoutADecoderIsRefused)
{
    QTemporaryDir folder;
    RunRecorder run;
    const QString output = folder.filePath(QStringLiteral("out/deep"));
    run.worker.configure(nullptr, DiscToc(), output, QString(), QString(), QString(), QPixmap(), QString(), 1,
                         1, 300, OutputFlac, QStringLiteral("/music/a.xyz"), 20);
    run.worker.run();
    EXPECT_TRUE(QFileInfo(output).isDir()) << "made before the file is looked at";
    ASSERT_EQ(run.errors.size(), 1);
    EXPECT_TRUE(run.errors[0].endsWith(QStringLiteral(": /music/a.xyz")));
    EXPECT_TRUE(run.started.isEmpty());
    EXPECT_EQ(run.finishedCount, 1);
}

TEST(RipWorker, WhatADiscRunSaysComesAsSignalsInItsOrder)
{
    QTemporaryDir folder;
    SimulatedDrive disc;
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(60, 1);
    disc.tracks = {{0}, {30}};
    disc.c2Available = false;
    RunRecorder run;
    run.ripDisc(folder.path());
    EXPECT_EQ(run.said,
              (QStringList{
                  QStringLiteral("begins 0/2 Fetching metadata..."), QStringLiteral("metadata Test Album"),
                  QStringLiteral("Read mode   : secure - double read & compare (max 20 re-reads / sector)"),
                  QStringLiteral("begins 1/2 Track 1"), QStringLiteral("Track 1/2: Track 1  —  1st read"),
                  QStringLiteral("Track 1/2: Track 1  —  2nd read (compare)"), QStringLiteral("ends 1"),
                  QStringLiteral("begins 2/2 Track 2"), QStringLiteral("Track 2/2: Track 2  —  1st read"),
                  QStringLiteral("Track 2/2: Track 2  —  2nd read (compare)"), QStringLiteral("ends 2"),
                  QStringLiteral("finished")}));
    EXPECT_EQ(run.sectors.size(), 60);
}

TEST(RipWorker, ADiscCannotBeTakenAwayDuringItsRun)
{
    QTemporaryDir folder;
    SimulatedDrive disc;
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(60, 1);
    disc.tracks = {{0}};
    RunRecorder run;
    run.onSector = [&](const SectorResult& record) {
        if (record.lba != 0)
            return;
        EXPECT_FALSE(run.drive.open(disc.letter));
        EXPECT_FALSE(run.drive.openCue(QStringLiteral("none.cue")));
        run.drive.close();
    };
    run.ripDisc(folder.path());
    EXPECT_EQ(run.sectors.size(), 60);
    EXPECT_TRUE(audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav"))) == disc.audio)
        << "the close waits for the end of the run";
    EXPECT_TRUE(run.drive.readSector(0).isEmpty()) << "then it takes effect";
}

// With no room for tags a line is said while the file is still in work.
TEST(RipWorker, TheUnfinishedFileIsThatOfTheTrackInWork)
{
    QTemporaryDir folder;
    ImageDescription image;
    image.tracks = {{0, QStringLiteral("One")}};
    RunRecorder run;
    QString inWork;
    run.onLog = [&](const QString&) { inWork = run.worker.unfinishedFile(); };
    pretendFreeSpace(1);
    run.rip(writeImage(folder.path(), image, makeAudio(5, 1)), OutputWav, folder.path());
    pretendFreeSpace(std::nullopt);
    EXPECT_EQ(inWork, folder.filePath(QStringLiteral("01. One.wav")));
    EXPECT_EQ(run.worker.unfinishedFile(), QString());
}

// The line of the tags that have no room is said in the middle of the writing.
TEST(RipWorker, ARequestToStopLetsATrackThatIsBeingWrittenEnd)
{
    SimulatedDrive disc;
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(30, 1);
    disc.tracks = {{0}, {15}};
    for (const bool isImage : {true, false}) {
        QTemporaryDir folder;
        ImageDescription image;
        image.tracks = {{0, QString()}, {15, QString()}};
        RunRecorder run;
        run.onLog = [&run](const QString& line) {
            if (line.startsWith(QStringLiteral("  ⚠")))
                run.worker.requestStop();
        };
        pretendFreeSpace(1);
        if (isImage)
            run.rip(writeImage(folder.path(), image, disc.audio), OutputWav, folder.path());
        else
            run.ripDisc(folder.path());
        pretendFreeSpace(std::nullopt);
        ASSERT_EQ(run.results.size(), 1) << isImage;
        EXPECT_TRUE(run.results[0].ok);
        EXPECT_EQ(run.sectors.size(), 15);
        EXPECT_TRUE(audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav")))
                    == disc.audio.first(15 * RAW_SECTOR_BYTES));
    }
}

TEST(RipWorkerOffset, WithoutADriveNothingMoves)
{
    RipWorker worker;
    QList<int> samples{1, 2, 3, 4};
    worker.applyReadOffset(samples, 0, 0);
    EXPECT_EQ(samples, (QList<int>{1, 2, 3, 4}));
}

// The disc goes on behind the end that its table gives.
TEST(RipWorkerOffset, TheAudioEndsWhereTheTableSaysOnceARunHasBegun)
{
    QTemporaryDir folder;
    SimulatedDrive disc;
    const DrivePlatformOverride platform(disc);
    disc.audio = makeAudio(60, 1);
    disc.tracks = {{0}};
    CdDrive drive;
    ASSERT_TRUE(drive.open(disc.letter));
    DiscToc table = drive.readToc();
    table.tracks[0].endLba = 29;
    drive.setReadOffset(1);
    RipWorker worker;
    worker.configure(&drive, table, folder.path(), QString(), QString(), QString(), QPixmap(), QString(), 1,
                     1, 300, OutputWav, QString(), 20);
    const char* behind = disc.audio.constData() + 30 * RAW_SECTOR_BYTES;
    QList<int> before{1, 2, 3, 4};
    worker.applyReadOffset(before, 29, 29);
    EXPECT_EQ(before, (QList<int>{3, 4, qFromLittleEndian<qint16>(behind) * 65536,
                                  qFromLittleEndian<qint16>(behind + 2) * 65536}));
    worker.run();
    QList<int> after{1, 2, 3, 4};
    worker.applyReadOffset(after, 29, 29);
    EXPECT_EQ(after, (QList<int>{3, 4, 0, 0}));
}

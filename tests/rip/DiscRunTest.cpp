#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"

namespace {

using Command = SimulatedDrive::Command;

class DiscRun : public ::testing::Test {
protected:
    void load(int sectors, const QList<SimulatedTrack>& tracks)
    {
        disc.audio = makeAudio(sectors, 11);
        disc.tracks = tracks;
    }

    void rip(int rereads = 20)
    {
        run.ripDisc(folder.path(), rereads);
        EXPECT_EQ(run.finishedCount, 1);
        EXPECT_FALSE(run.drive.isBorrowed());
    }

    /// The audio bytes of a track's WAV file.
    QByteArray rippedTrack(int number) const
    {
        return audioOfWave(folder.filePath(
            QStringLiteral("%1. Track %2.wav").arg(number, 2, 10, QLatin1Char('0')).arg(number)));
    }

    QTemporaryDir folder;
    ScriptedDrive disc{0};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
};

} // namespace

TEST_F(DiscRun, TracksEqualTheDiscAndAreNamedByNumber)
{
    load(300, {{0}, {100}, {250}});
    rip();
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 100));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 150));
    EXPECT_TRUE(rippedTrack(3) == disc.truth(250, 50));
    EXPECT_EQ(run.started,
              (QStringList{QStringLiteral("0/3 Fetching metadata..."), QStringLiteral("1/3 Track 1"),
                           QStringLiteral("2/3 Track 2"), QStringLiteral("3/3 Track 3")}));
    EXPECT_EQ(run.logLines, QStringList{QStringLiteral(
                                "Read mode   : secure - C2 error pointers (max 20 re-reads / sector)")});
    EXPECT_TRUE(run.statusTexts.isEmpty());
}

// 4100 sectors: batches of 27 from 0 on. The cross-checks at 0, 2000 and 4000
// read two batches each, the second of which the pass goes on from: from 2000
// the next batch is 2027, from 4000 it is 4027.
TEST_F(DiscRun, ACleanDiscInC2ModeCostsBatchesTheProbeAndTheCrossChecks)
{
    load(4100, {{0}, {3000}});
    rip();
    constexpr int batches = 75 /* 0 to 1998 */ + 74 /* 2027 to 3998 */ + 3 /* 4027 to 4081 */;
    constexpr int crossChecks = 3 * 2;
    EXPECT_EQ(disc.count(Command::RawWithC2), 1 + batches + crossChecks);
    EXPECT_EQ(disc.count(Command::Raw), 3) << "one far read for each cross-check";
    EXPECT_EQ(disc.count(Command::SeekRead), 0);
    EXPECT_EQ(disc.count(Command::Toc), 1);
    EXPECT_EQ(disc.count(Command::Sleep), 1) << "half a second before the second track";
    EXPECT_TRUE(disc.commands.contains({Command::Sleep, 500}));
    EXPECT_TRUE(disc.commands.contains({Command::RawWithC2, 150, 27})) << "the probe";
}

TEST_F(DiscRun, ACleanDiscInCompareModeCostsTwiceTheBatchesAndOneFlushATrack)
{
    load(5400, {{0}, {2700}});
    disc.c2Available = false;
    rip();
    EXPECT_EQ(disc.count(Command::RawWithC2), 3) << "the probe's attempts";
    EXPECT_EQ(disc.count(Command::Raw), 2 * 200 + 2 + 2) << "the flushes, and a far read with each";
    EXPECT_TRUE(disc.commands.contains({Command::Raw, 2000, 27})) << "flush of the track at 0";
    EXPECT_TRUE(disc.commands.contains({Command::Raw, 700, 27})) << "flush of the track at 2700";
    EXPECT_EQ(run.logLines.value(0),
              QStringLiteral("Read mode   : secure - double read & compare (max 20 re-reads / sector)"));
    EXPECT_EQ(run.statusTexts, (QStringList{QStringLiteral("Track 1/2: Track 1  —  1st read"),
                                            QStringLiteral("Track 1/2: Track 1  —  2nd read (compare)"),
                                            QStringLiteral("Track 2/2: Track 2  —  1st read"),
                                            QStringLiteral("Track 2/2: Track 2  —  2nd read (compare)")}));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(2700, 2700));
}

TEST_F(DiscRun, ADataTrackBehindTheAudioIsSkippedWithOneLine)
{
    load(20000, {{0}, {100}, {15000, true}});
    rip();
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("0/3 Fetching metadata..."),
                                        QStringLiteral("1/2 Track 1"), QStringLiteral("2/2 Track 2")}));
    EXPECT_EQ(run.logLines.value(1), QStringLiteral("  Track 03: data track (not audio) - skipped"));
    EXPECT_EQ(run.results.size(), 2);
    // The gap between two sessions, 11400 sectors, belongs to no track.
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 15000 - 11400 - 100));
    EXPECT_EQ(run.sectors.size(), 15000 - 11400);
}

TEST_F(DiscRun, TheLastSectorsInFrontOfASecondSessionAreRead)
{
    load(20000, {{0}, {3000}, {18000, true, 2}});
    for (const bool c2 : {true, false}) {
        disc.c2Available = c2;
        RunRecorder once;
        once.ripDisc(folder.filePath(QString::number(c2)), 1);
        ASSERT_EQ(once.results.size(), 2);
        EXPECT_EQ(once.results[1].errorSectors + once.results[1].suspectSectors, 0u);
        EXPECT_TRUE(audioOfWave(folder.filePath(QStringLiteral("%1/02. Track 2.wav").arg(int{c2})))
                    == disc.truth(3000, 18000 - 11400 - 3000));
    }
}

TEST_F(DiscRun, ADataTrackInFrontMovesTheNumbersBeyondTheAudioCount)
{
    load(400, {{0, true}, {100}, {250}});
    rip();
    EXPECT_EQ(run.started, (QStringList{QStringLiteral("0/3 Fetching metadata..."),
                                        QStringLiteral("2/2 Track 2"), QStringLiteral("3/2 Track 3")}));
    EXPECT_EQ(run.logLines.value(1), QStringLiteral("  Track 01: data track (not audio) - skipped"));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 150));
    EXPECT_TRUE(disc.commands.contains({Command::RawWithC2, 250, 27}))
        << "the probe, 150 behind the first audio";
}

TEST_F(DiscRun, ADiscOfDataAloneEndsWithItsLines)
{
    load(100, {{0, true}});
    rip();
    EXPECT_TRUE(run.results.isEmpty());
    EXPECT_EQ(run.logLines.size(), 2);
}

TEST_F(DiscRun, TheFrameWindowNeeds462Sectors)
{
    load(461 + 462, {{0}, {461}});
    rip();
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_TRUE(run.results[0].frameWindow.isEmpty());
    ASSERT_EQ(run.results[1].frameWindow.size(), 12936);
    const auto* bytes =
        reinterpret_cast<const quint8*>(disc.audio.constData()) + (461 + 440) * RAW_SECTOR_BYTES;
    for (qsizetype frame : {qsizetype{0}, qsizetype{1}, qsizetype{12935}}) {
        const quint8* at = bytes + frame * 4;
        EXPECT_EQ(run.results[1].frameWindow[frame],
                  static_cast<quint32>(at[0] | at[1] << 8 | at[2] << 16) | quint32{at[3]} << 24);
    }
}

TEST_F(DiscRun, TheFrameWindowIsTakenBeforeTheOffset)
{
    load(462, {{0}});
    rip();
    const QList<quint32> plain = run.results[0].frameWindow;
    RunRecorder shifted;
    shifted.drive.setReadOffset(30);
    shifted.ripDisc(folder.filePath(QStringLiteral("shifted")));
    EXPECT_EQ(shifted.results.at(0).frameWindow, plain);
}

TEST_F(DiscRun, AUsbDriveIsKeptAwakeEvery100SectorsInC2Mode)
{
    load(350, {{0}, {200}});
    disc.usb = true;
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1 + 3) << "at 100, 200 and 300";
}

TEST_F(DiscRun, AUsbDriveIsKeptAwakeInBothPassesOfCompareMode)
{
    load(350, {{50, false}});
    disc.usb = true;
    disc.c2Available = false;
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1 + 2 * 2) << "at 150 and 250, counted from the first audio sector";
}

TEST_F(DiscRun, AnInternalDriveIsNotKeptAwake)
{
    load(350, {{0}});
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1);
}

TEST_F(DiscRun, AProbeThatFailsOnADriveThatReadsFineGoesOnInCompareMode)
{
    load(200, {{0}});
    disc.script(150, QList<SectorAnswer>(3, {true}));
    rip();
    EXPECT_EQ(disc.count(Command::RawWithC2), 3);
    EXPECT_TRUE(run.logLines.value(0).contains(QStringLiteral("double read & compare")));
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 200));
}

TEST_F(DiscRun, PointersSetWholesaleAreNotBelieved)
{
    load(200, {{0}});
    QList<SectorAnswer> all{{false, 0, 2352}};
    for (quint32 lba = 150; lba < 177; ++lba)
        disc.script(lba, all);
    rip();
    EXPECT_TRUE(run.logLines.value(0).contains(QStringLiteral("double read & compare")));
}

TEST_F(DiscRun, ATrackWithoutSectorsFailsAloneAndNothingIsWritten)
{
    load(300, {{0}, {100}, {100}});
    rip();
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_FALSE(run.results[1].ok);
    EXPECT_EQ(run.results[1].errorSectors, noSamplesRead);
    EXPECT_TRUE(run.results[2].ok);
    EXPECT_TRUE(rippedTrack(3) == disc.truth(100, 200));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("02. Track 2.wav"))));
}

TEST_F(DiscRun, ATrackBehindTheLeadOutFailsWithoutReading)
{
    load(300, {{0}, {200}, {900}});
    rip();
    ASSERT_EQ(run.results.size(), 3);
    EXPECT_TRUE(run.results[0].ok);
    EXPECT_FALSE(run.results[2].ok);
}

TEST_F(DiscRun, TheDriveCannotBeTakenAwayDuringTheRun)
{
    load(200, {{0}});
    bool tried = false;
    QObject::connect(&run.worker, &RipWorker::sectorDone, [&] {
        if (std::exchange(tried, true))
            return;
        EXPECT_FALSE(run.drive.open(disc.letter));
        EXPECT_FALSE(run.drive.openCue(QStringLiteral("none.cue")));
        run.drive.close();
    });
    rip();
    EXPECT_TRUE(tried);
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 200)) << "the close waits for the end of the run";
    EXPECT_TRUE(run.drive.readSector(0).isEmpty()) << "then it takes effect";
}

TEST_F(DiscRun, AStopEndsTheRunBeforeTheNextSector)
{
    load(200, {{0}, {150}});
    QObject::connect(&run.worker, &RipWorker::sectorDone, [&](const SectorResult& record) {
        if (record.lba == 60)
            run.worker.requestStop();
    });
    rip();
    EXPECT_EQ(run.sectors.size(), 61);
    EXPECT_TRUE(run.results.isEmpty());
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("01. Track 1.wav"))));
}

TEST_F(DiscRun, TheWorkersCoverIsSavedWithoutAMessage)
{
    load(50, {{0}});
    ASSERT_TRUE(run.drive.open(disc.letter));
    QPixmap cover(20, 20);
    cover.fill(Qt::red);
    run.worker.configure(&run.drive, run.drive.readToc(), folder.path(), QString(), QString(), QString(),
                         cover, QString(), 1, 1, 300, OutputFlac, QString(), 20);
    run.worker.run();
    EXPECT_EQ(run.started,
              (QStringList{QStringLiteral("0/1 Fetching metadata..."), QStringLiteral("1/1 Track 1")}));
    EXPECT_EQ(QPixmap(folder.filePath(QStringLiteral("cover.jpg"))).size(), QSize(20, 20));
}

// The sums are written out over the samples as they must stand in the file.
TEST_F(DiscRun, ChecksumsAreThoseOfTheSamplesInTheFile)
{
    load(300, {{0}, {100}, {280, true}});
    disc.refusesData = false;
    run.drive.setReadOffset(6);
    rip();
    ASSERT_EQ(run.results.size(), 2);
    for (const RipResult& result : std::as_const(run.results)) {
        const QByteArray track = rippedTrack(result.trackNumber);
        const qsizetype frames = track.size() / 4;
        const qsizetype first = result.trackNumber == 1 ? 2940 : 1;
        const qsizetype last = result.trackNumber == 2 ? frames - 2940 : frames;
        expectChecksums(result, track, first, last);
        EXPECT_NE(result.crcV1, result.crcV2);
    }
}

#include "rip/DiscRun.h"

#include "RunParts.h"
#include "ScriptedDrive.h"
#include "TrackFiles.h"
#include "support/Tool.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <new>

namespace {

using Command = SimulatedDrive::Command;

class DiscRunTest : public ::testing::Test {
protected:
    void load(int sectors, const QList<SimulatedTrack>& tracks)
    {
        disc.audio = makeAudio(sectors, 11);
        disc.tracks = tracks;
    }

    void rip()
    {
        ASSERT_TRUE(run.loadDisc());
        run.order.outputFolder = folder.path();
        DiscRun(run.order, run.writer, run.report).run();
        EXPECT_EQ(run.writer.unfinishedFile(), QString());
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
    RunParts run;
    const RecordingReport& said = run.report;
};

} // namespace

TEST_F(DiscRunTest, TracksEqualTheDiscAndAreNamedByNumber)
{
    load(300, {{0}, {100}, {250}});
    rip();
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 100));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 150));
    EXPECT_TRUE(rippedTrack(3) == disc.truth(250, 50));
    EXPECT_EQ(said.started, (QStringList{QStringLiteral("1/3 Track 1"), QStringLiteral("2/3 Track 2"),
                                         QStringLiteral("3/3 Track 3")}));
    EXPECT_EQ(said.logLines, QStringList{QStringLiteral(
                                 "Read mode   : secure - C2 error pointers (max 20 re-reads / sector)")});
    EXPECT_TRUE(said.statusTexts.isEmpty());
}

// 4100 sectors: batches of 27 from 0 on. The cross-checks at 0, 2000 and 4000
// read two batches each, the second of which the pass goes on from: from 2000
// the next batch is 2027, from 4000 it is 4027.
TEST_F(DiscRunTest, ACleanDiscInC2ModeCostsBatchesTheProbeAndTheCrossChecks)
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

TEST_F(DiscRunTest, ACleanDiscInCompareModeCostsTwiceTheBatchesAndOneFlushATrack)
{
    load(5400, {{0}, {2700}});
    disc.c2Available = false;
    rip();
    EXPECT_EQ(disc.count(Command::RawWithC2), 3) << "the probe's attempts";
    EXPECT_EQ(disc.count(Command::Raw), 2 * 200 + 2 + 2) << "the flushes, and a far read with each";
    EXPECT_TRUE(disc.commands.contains({Command::Raw, 2000, 27})) << "flush of the track at 0";
    EXPECT_TRUE(disc.commands.contains({Command::Raw, 700, 27})) << "flush of the track at 2700";
    EXPECT_EQ(said.logLines.value(0),
              QStringLiteral("Read mode   : secure - double read & compare (max 20 re-reads / sector)"));
    EXPECT_EQ(said.statusTexts, (QStringList{QStringLiteral("Track 1/2: Track 1  —  1st read"),
                                             QStringLiteral("Track 1/2: Track 1  —  2nd read (compare)"),
                                             QStringLiteral("Track 2/2: Track 2  —  1st read"),
                                             QStringLiteral("Track 2/2: Track 2  —  2nd read (compare)")}));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(2700, 2700));
}

TEST_F(DiscRunTest, ADataTrackBehindTheAudioIsSkippedWithOneLine)
{
    load(20000, {{0}, {100}, {15000, true}});
    rip();
    EXPECT_EQ(said.started, (QStringList{QStringLiteral("1/2 Track 1"), QStringLiteral("2/2 Track 2")}));
    EXPECT_EQ(said.logLines.value(1), QStringLiteral("  Track 03: data track (not audio) - skipped"));
    EXPECT_EQ(said.results.size(), 2);
    // The gap between two sessions, 11400 sectors, belongs to no track.
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 15000 - 11400 - 100));
    EXPECT_EQ(said.sectors.size(), 15000 - 11400);
}

TEST_F(DiscRunTest, ADataTrackInFrontMovesTheNumbersBeyondTheAudioCount)
{
    load(400, {{0, true}, {100}, {250}});
    rip();
    EXPECT_EQ(said.started, (QStringList{QStringLiteral("2/2 Track 2"), QStringLiteral("3/2 Track 3")}));
    EXPECT_EQ(said.logLines.value(1), QStringLiteral("  Track 01: data track (not audio) - skipped"));
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 150));
    EXPECT_TRUE(disc.commands.contains({Command::RawWithC2, 250, 27}))
        << "the probe, 150 behind the first audio";
}

// Track 5 holds data; the two behind it have the places 2 and 3.
TEST_F(DiscRunTest, NamesTagsAndResultsHaveTheNumbersOfTheTable)
{
    load(400, {{0, true}, {100}, {250}});
    disc.firstTrackNumber = 5;
    run.order.outputFormat = OutputFlac;
    rip();
    EXPECT_EQ(said.logLines.value(1), QStringLiteral("  Track 05: data track (not audio) - skipped"));
    EXPECT_EQ(said.started, (QStringList{QStringLiteral("2/2 Track 6"), QStringLiteral("3/2 Track 7")}));
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_EQ(said.results[0].trackNumber, 6);
    EXPECT_EQ(said.results[1].trackNumber, 7);
    const ToolResult tags =
        runTool(QStringLiteral("metaflac"),
                {QStringLiteral("--export-tags-to=-"), folder.filePath(QStringLiteral("06. Track 6.flac"))});
    ASSERT_TRUE(tags.ok()) << tags.errors.toStdString();
    const QList<QByteArray> lines = tags.output.split('\n');
    EXPECT_TRUE(lines.contains("TRACKNUMBER=6") && lines.contains("TRACKTOTAL=2"))
        << tags.output.toStdString();
}

TEST_F(DiscRunTest, ADiscOfDataAloneEndsWithItsLines)
{
    load(100, {{0, true}});
    rip();
    EXPECT_TRUE(said.results.isEmpty());
    EXPECT_EQ(said.logLines.size(), 2);
}

TEST_F(DiscRunTest, TheFrameWindowNeeds462Sectors)
{
    load(461 + 462, {{0}, {461}});
    rip();
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_TRUE(said.results[0].frameWindow.isEmpty());
    ASSERT_EQ(said.results[1].frameWindow.size(), 12936);
    const auto* bytes =
        reinterpret_cast<const quint8*>(disc.audio.constData()) + (461 + 440) * RAW_SECTOR_BYTES;
    for (qsizetype frame : {qsizetype{0}, qsizetype{1}, qsizetype{12935}}) {
        const quint8* at = bytes + frame * 4;
        EXPECT_EQ(said.results[1].frameWindow[frame],
                  static_cast<quint32>(at[0] | at[1] << 8 | at[2] << 16) | quint32{at[3]} << 24);
    }
}

TEST_F(DiscRunTest, AUsbDriveIsKeptAwakeEvery100SectorsInC2Mode)
{
    load(350, {{0}, {200}});
    disc.usb = true;
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1 + 3) << "at 100, 200 and 300";
}

TEST_F(DiscRunTest, AUsbDriveIsKeptAwakeInBothPassesOfCompareMode)
{
    load(350, {{50, false}});
    disc.usb = true;
    disc.c2Available = false;
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1 + 2 * 2) << "at 150 and 250, counted from the first audio sector";
}

TEST_F(DiscRunTest, AnInternalDriveIsNotKeptAwake)
{
    load(350, {{0}});
    rip();
    EXPECT_EQ(disc.count(Command::Toc), 1);
}

TEST_F(DiscRunTest, AProbeThatFailsOnADriveThatReadsFineGoesOnInCompareMode)
{
    load(200, {{0}});
    disc.script(150, QList<SectorAnswer>(3, {true}));
    rip();
    EXPECT_EQ(disc.count(Command::RawWithC2), 3);
    EXPECT_TRUE(said.logLines.value(0).contains(QStringLiteral("double read & compare")));
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 200));
}

TEST_F(DiscRunTest, PointersSetWholesaleAreNotBelieved)
{
    load(200, {{0}});
    QList<SectorAnswer> all{{false, 0, 2352}};
    for (quint32 lba = 150; lba < 177; ++lba)
        disc.script(lba, all);
    rip();
    EXPECT_TRUE(said.logLines.value(0).contains(QStringLiteral("double read & compare")));
}

TEST_F(DiscRunTest, ATrackWithoutSectorsFailsAloneAndNothingIsWritten)
{
    load(300, {{0}, {100}, {100}});
    rip();
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_TRUE(said.results[0].ok);
    EXPECT_FALSE(said.results[1].ok);
    EXPECT_EQ(said.results[1].errorSectors, noSamplesRead);
    EXPECT_TRUE(said.results[2].ok);
    EXPECT_TRUE(rippedTrack(3) == disc.truth(100, 200));
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("02. Track 2.wav"))));
    EXPECT_EQ(disc.count(Command::Sleep), 2) << "the pause is made in front of any track but the first";
}

TEST_F(DiscRunTest, ATrackBehindTheLeadOutFailsWithoutReading)
{
    load(300, {{0}, {200}, {900}});
    rip();
    ASSERT_EQ(said.results.size(), 3);
    EXPECT_TRUE(said.results[0].ok);
    EXPECT_FALSE(said.results[2].ok);
}

// The sums are written out over the samples as they must stand in the file.
TEST_F(DiscRunTest, ChecksumsAreThoseOfTheSamplesInTheFile)
{
    load(300, {{0}, {100}, {280, true}});
    disc.refusesData = false;
    run.drive.setReadOffset(6);
    rip();
    ASSERT_EQ(said.results.size(), 2);
    for (const RipResult& result : std::as_const(said.results)) {
        const QByteArray track = rippedTrack(result.trackNumber);
        const qsizetype frames = track.size() / 4;
        const qsizetype first = result.trackNumber == 1 ? 2940 : 1;
        const qsizetype last = result.trackNumber == 2 ? frames - 2940 : frames;
        expectChecksums(result, track, first, last);
        EXPECT_NE(result.crcV1, result.crcV2);
    }
}

// Neither of the two is track 1, and the second has the last number.
TEST_F(DiscRunTest, ChecksumsGoByTheNumbersAndNotByTheCountOfTracks)
{
    load(400, {{0, true}, {100}, {250}});
    rip();
    ASSERT_EQ(said.results.size(), 2);
    expectChecksums(said.results[0], rippedTrack(2), 1, 150 * 588);
    expectChecksums(said.results[1], rippedTrack(3), 1, 145 * 588);
}

TEST_F(DiscRunTest, TheLastSectorsInFrontOfASecondSessionAreRead)
{
    load(20000, {{0}, {3000}, {18000, true, 2}});
    run.order.rereadLimit = 1;
    for (const bool c2 : {true, false}) {
        disc.c2Available = c2;
        run.report.results.clear();
        rip();
        ASSERT_EQ(said.results.size(), 2);
        EXPECT_EQ(said.results[1].errorSectors + said.results[1].suspectSectors, 0u);
        EXPECT_TRUE(rippedTrack(2) == disc.truth(3000, 18000 - 11400 - 3000));
    }
}

TEST_F(DiscRunTest, TheFrameWindowIsTakenBeforeTheOffset)
{
    load(462, {{0}});
    rip();
    run.drive.setReadOffset(30);
    rip();
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_EQ(said.results[1].frameWindow, said.results[0].frameWindow);
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 462).mid(30 * 4) + QByteArray(30 * 4, '\0'));
}

// Sector 100 belongs to the data track in front, sector 200 to the one behind.
TEST_F(DiscRunTest, TheOffsetBorrowsFromTheNeighbourAndFromNoDataTrack)
{
    for (const int frames : {-30, 30}) {
        load(20000, {{0, true}, {101}, {150}, {11600, true}});
        disc.refusesData = false;
        run.drive.setReadOffset(frames);
        rip();
        const QByteArray silence(30 * 4, '\0');
        const QByteArray audio = disc.truth(101, 99);
        const QByteArray whole = frames < 0 ? silence + audio : audio.mid(30 * 4) + silence;
        EXPECT_TRUE(rippedTrack(2) + rippedTrack(3) == whole.left(audio.size())) << frames;
        for (const Command& command : std::as_const(disc.commands))
            EXPECT_TRUE(command.lba != 100 && command.lba != 200);
    }
}

TEST_F(DiscRunTest, AStopEndsTheRunBeforeTheNextSector)
{
    load(200, {{0}, {150}});
    run.report.onSector = [this](const SectorResult& record) { run.report.stop = record.lba == 60; };
    rip();
    EXPECT_EQ(said.sectors.size(), 61);
    EXPECT_TRUE(said.results.isEmpty());
    EXPECT_EQ(said.started, QStringList{QStringLiteral("1/2 Track 1")});
    EXPECT_FALSE(QFile::exists(folder.filePath(QStringLiteral("01. Track 1.wav"))));
}

TEST_F(DiscRunTest, AStopEndsTheFirstPassToo)
{
    load(200, {{0}});
    disc.c2Available = false;
    run.report.stop = true;
    rip();
    EXPECT_TRUE(said.started.isEmpty()) << "no track is begun";
    run.report.stop = false;
    run.report.onStatus = [this](const QString&) { run.report.stop = true; };
    rip();
    EXPECT_TRUE(said.sectors.isEmpty());
    EXPECT_FALSE(disc.commands.contains({Command::Raw, 27, 27}));
}

TEST_F(DiscRunTest, TheOrdersCoverIsSavedWithoutAMessageAndEmbedded)
{
    load(50, {{0}});
    run.order.outputFormat = OutputFlac;
    run.order.cover = QPixmap(20, 10);
    run.order.cover.fill(Qt::red);
    rip();
    EXPECT_EQ(said.started, QStringList{QStringLiteral("1/1 Track 1")});
    EXPECT_EQ(QPixmap(folder.filePath(QStringLiteral("cover.jpg"))).size(), QSize(20, 10));
    const QByteArray pictures =
        runTool(QStringLiteral("metaflac"), {QStringLiteral("--list"), QStringLiteral("--block-type=PICTURE"),
                                             folder.filePath(QStringLiteral("01. Track 1.flac"))})
            .output;
    EXPECT_TRUE(pictures.contains("MIME type: image/jpeg")) << pictures.toStdString();
}

TEST_F(DiscRunTest, WithoutACoverTheOneInTheFolderStays)
{
    load(50, {{0}});
    const QString cover = writeFile(folder.path(), QStringLiteral("cover.jpg"), "the user's own");
    rip();
    EXPECT_EQ(contentOf(cover), "the user's own");
}

// A mismatch of the cross-check at 0, a sector that a re-read recovers, two that
// are never read.
TEST_F(DiscRunTest, DoubtfulSectorsAreCountedByTheirVerdicts)
{
    load(200, {{0}, {100}});
    run.order.rereadLimit = 2;
    disc.script(0, {{false, 6, 0}});
    disc.script(27, {{false, 3, 7}});
    disc.failReads(108, 1000);
    disc.failReads(135, 1000);
    rip();
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_EQ(said.results[0].errorSectors, 1U);
    EXPECT_EQ(said.results[0].suspectSectors, 1U);
    EXPECT_EQ(said.results[1].errorSectors, 2U);
    EXPECT_EQ(said.results[1].suspectSectors, 0U);
    EXPECT_EQ(said.sectors[27].c2Errors, 7U);
    EXPECT_TRUE(rippedTrack(1) == disc.truth(0, 100));
    QByteArray second = disc.truth(100, 100);
    for (const int hole : {8, 35})
        second.replace(hole * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES, QByteArray(RAW_SECTOR_BYTES, '\0'));
    EXPECT_TRUE(rippedTrack(2) == second) << "silence, and its neighbours are read";
}

TEST_F(DiscRunTest, WantOfMemoryFailsItsTrackAlone)
{
    load(200, {{0}, {100}});
    run.report.onSector = [](const SectorResult& record) {
        if (record.lba == 50)
            throw std::bad_alloc();
    };
    rip();
    ASSERT_EQ(said.results.size(), 2);
    EXPECT_FALSE(said.results[0].ok);
    EXPECT_EQ(said.results[0].title, QStringLiteral("Track 1"));
    EXPECT_EQ(said.results[0].errorSectors, noSamplesRead);
    EXPECT_TRUE(rippedTrack(2) == disc.truth(100, 100));
}

// Re-reads through CdDrive on drives whose buffers remember: each answer is a
// reading of its own.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <QSet>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Command = SimulatedDrive::Command;
constexpr double sectorsPerMegabyte = 1024.0 * 1024 / RAW_SECTOR_BYTES;
constexpr quint32 doubtful = 6000;

struct Buffer {
    double megabytes;
    int segments;
    bool c2;
};

class Reread : public ::testing::TestWithParam<Buffer> {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(1000, 6);
        simulated.leadOutLba = 30'000;
        simulated.mechanism.cacheSectors = static_cast<quint32>(GetParam().megabytes * sectorsPerMegabyte);
        simulated.mechanism.cacheSegments = GetParam().segments;
        simulated.mechanism.readAhead =
            simulated.mechanism.cacheSectors / static_cast<quint32>(GetParam().segments) / 2;
        simulated.mechanism.faults = {SectorFault::flaky(doubtful, doubtful, 1)};
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_FALSE(drive.readToc().tracks.isEmpty());
        if (GetParam().c2) {
            ASSERT_TRUE(drive.probeC2(150));
            drive.setC2Enabled(true);
        }
        simulated.commands.clear();
    }

    SimulatedDrive simulated;
    DrivePlatformOverride override{simulated};
    CdDrive drive;
};

} // namespace

// Each reading of the sector is wrong in its own way, so an answer that comes
// twice came from the drive's memory.
TEST_P(Reread, NoReadingIsHandedOutTwice)
{
    QSet<QByteArray> readings;
    for (quint32 lba = doubtful - 1000; lba < doubtful; ++lba)
        drive.readSector(lba);
    readings.insert(drive.readSector(doubtful));
    for (int turn = 0; turn < 20; ++turn)
        readings.insert(drive.readSectorFresh(doubtful));
    // With C2 the first re-read is made after one far read, and several segments can still hold the pass
    // then. No vote is over it: what C2 has flagged has none.
    const int remembered = GetParam().segments > 1 && GetParam().c2 ? 1 : 0;
    EXPECT_GE(readings.size(), 21 - remembered);
}

TEST_P(Reread, ASecondWayOverATrackIsReadFromTheDisc)
{
    constexpr quint32 first = doubtful - 1500;
    QByteArray before;
    for (quint32 lba = first; lba < doubtful + 2500; ++lba) {
        const QByteArray sector = drive.readSector(lba);
        if (lba == doubtful)
            before = sector;
    }
    drive.flushDriveCache(first);
    for (quint32 lba = first; lba < doubtful; ++lba)
        drive.readSector(lba);
    EXPECT_NE(drive.readSector(doubtful), before);
}

INSTANTIATE_TEST_SUITE_P(Buffers, Reread, ::testing::ValuesIn([] {
                             std::vector<Buffer> all;
                             for (const double megabytes : {0.125, 0.25, 0.5, 1.0, 2.0, 4.0, 8.0}) {
                                 for (const int segments : {1, 2, 3}) {
                                     for (const bool c2 : {false, true})
                                         all.push_back({megabytes, segments, c2});
                                 }
                             }
                             return all;
                         }()),
                         [](const auto& buffer) {
                             return std::to_string(static_cast<int>(buffer.param.megabytes * 1024)) + "KiB"
                                    + std::to_string(buffer.param.segments)
                                    + (buffer.param.c2 ? "C2" : "Compare");
                         });

namespace {

class FarReads : public ::testing::Test {
protected:
    FarReads()
    {
        simulated.audio = makeAudio(1000, 6);
        simulated.leadOutLba = 30'000;
        drive.open(simulated.letter);
        drive.readToc();
        simulated.commands.clear();
    }

    /// Reads since the list was cleared.
    QList<Command> reads() const
    {
        QList<Command> found = simulated.commands;
        found.removeIf([](const Command& command) { return command.kind == Command::ModeSense; });
        return found;
    }

    SimulatedDrive simulated;
    DrivePlatformOverride override{simulated};
    CdDrive drive;
};

} // namespace

TEST_F(FarReads, ComeInFrontOfThePrescribedPair)
{
    simulated.mechanism.faults = {SectorFault::flaky(5000, 5000, 1)};
    drive.readSector(5000);
    simulated.commands.clear();
    drive.readSectorFresh(5000);
    ASSERT_EQ(reads().size(), 3 + 2);
    EXPECT_EQ(reads().mid(3), (QList<Command>{{Command::Raw, 4800, 27}, {Command::Raw, 5000, 27}}));
}

TEST_F(FarReads, ComeInFrontOfThePairForAnotherSectorOfTheBatchToo)
{
    drive.readSector(5005);
    simulated.commands.clear();
    drive.readSectorFresh(5000);
    ASSERT_EQ(reads().size(), 3 + 2);
    EXPECT_EQ(reads().mid(3), (QList<Command>{{Command::Raw, 4800, 27}, {Command::Raw, 5000, 27}}));
}

TEST_F(FarReads, AreThreeForAReadingThatVotes)
{
    simulated.mechanism.faults = {SectorFault::flaky(5000, 5000, 1)};
    drive.readSector(5000);
    for (int turn = 0; turn < 5; ++turn) {
        simulated.commands.clear();
        drive.readSectorFresh(5000);
        ASSERT_EQ(reads().size(), 3 + 2);
        EXPECT_EQ(reads().mid(3), (QList<Command>{{Command::Raw, 4800, 27}, {Command::Raw, 5000, 27}}));
    }
}

TEST_F(FarReads, AreOneForASampleCheckWithC2)
{
    ASSERT_TRUE(drive.probeC2(150));
    drive.setC2Enabled(true);
    drive.readSector(5000);
    simulated.commands.clear();
    drive.readSectorFresh(5000);
    EXPECT_EQ(reads().size(), 1 + 2);
    simulated.commands.clear();
    drive.readSectorFresh(5000);
    EXPECT_EQ(reads().size(), 3 + 2) << "the third reading, which decides";
}

// The way that makes it forget a pass need not make it forget the same way made before.
TEST_F(FarReads, AreNotSavedForARereadBecauseTheDriveForgotAPass)
{
    simulated.mechanism.cacheSectors = 900;
    simulated.mechanism.cacheSegments = 2;
    simulated.mechanism.readAhead = 225;
    simulated.mechanism.faults = {SectorFault::flaky(5000, 9000, 1)};
    for (const quint32 lba : {5000U, 7000U, 9000U}) {
        const QByteArray pass = drive.readSector(lba);
        EXPECT_NE(drive.readSectorFresh(lba), pass);
    }
    QSet<QByteArray> readings;
    for (int turn = 0; turn < 8; ++turn)
        readings.insert(drive.readSectorFresh(9000));
    EXPECT_EQ(readings.size(), 8);
}

TEST_F(FarReads, AreNotMadeForASectorOfABatchThatNobodyWasGiven)
{
    drive.readSectorFresh(5000);
    drive.readSectorFresh(5001);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 4800, 27},
                                                  {Command::Raw, 5000, 27},
                                                  {Command::Raw, 4801, 27},
                                                  {Command::Raw, 5001, 27}}));
}

TEST_F(FarReads, AreNotMadeOnTheWayOverASectorThatWasHandedOut)
{
    drive.readSector(4800);
    simulated.commands.clear();
    drive.readSectorFresh(5000);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 4800, 27}, {Command::Raw, 5000, 27}}));
}

TEST_F(FarReads, AreOneForASecondWayOverATrack)
{
    for (quint32 lba = 5000; lba < 6000; ++lba)
        drive.readSector(lba);
    simulated.commands.clear();
    drive.flushDriveCache(5000);
    ASSERT_EQ(reads().size(), 2);
    EXPECT_EQ(simulated.commands.constLast(), (Command{Command::Raw, 3000, 27}));
    for (quint32 lba = 5000; lba < 6000; ++lba)
        drive.readSector(lba);
    EXPECT_EQ(reads().size(), 2 + 38) << "1000 sectors in batches of 27";
}

TEST_F(FarReads, AreNotMadeForSamplesThatNobodyJudges)
{
    for (quint32 lba = 5000; lba < 6000; ++lba)
        drive.readSector(lba);
    simulated.commands.clear();
    drive.readSectorUnjudged(5990);
    drive.readSectorUnjudged(5500);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 5990, 27}, {Command::Raw, 5500, 27}}));
    simulated.commands.clear();
    drive.readSectorUnjudged(7000);
    drive.readSectorUnjudged(5500);
    drive.readSector(7000);
    EXPECT_EQ(reads().size(), 3) << "nor has it been handed out by them";
}

TEST_F(FarReads, AreMadeWhereThePrescribedReadsGoForward)
{
    drive.readSector(10);
    simulated.commands.clear();
    drive.readSectorFresh(10);
    ASSERT_EQ(reads().size(), 3 + 2);
    EXPECT_EQ(reads().mid(3), (QList<Command>{{Command::Raw, 210, 27}, {Command::Raw, 10, 27}}));
}

TEST_F(FarReads, StayInTheAudioOfTheDisc)
{
    simulated.tracks = {{0, true}, {9000}, {12'000}, {29'000, true, 2}};
    drive.open(simulated.letter);
    drive.readToc();
    drive.readSector(9310);
    simulated.commands.clear();
    drive.readSectorFresh(9310);
    drive.readSectorFresh(9310);
    ASSERT_EQ(reads().size(), 2 * (3 + 2));
    for (const Command& command : reads()) {
        EXPECT_GE(command.lba, 9000U);
        EXPECT_LE(command.lba + command.count, 29'000U - 11'400);
    }
}

// The drive that the other tests trust: commands, offset, cache, C2 and time.

#include "disc/DiscModel.h"
#include "support/DiscMaker.h"
#include "support/DriveProbe.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>

namespace {

constexpr qint64 second = 1'000'000'000;

class SimulatedDriveTest : public ::testing::Test {
protected:
    SimulatedDriveTest()
    {
        drive.audio = makeAudio(1000, 7);
        drive.commandNanoseconds = 0;
    }

    QByteArray onDisc(quint32 lba) const
    {
        return drive.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }
    qint64 timeOf(quint32 lba, quint32 count)
    {
        const qint64 before = drive.nowNanoseconds();
        probe.read(lba, count);
        return drive.nowNanoseconds() - before;
    }

    SimulatedDrive drive;
    DriveProbe probe{drive};
};

} // namespace

TEST_F(SimulatedDriveTest, TheTableTellsWhatTheDiscHolds)
{
    drive.tracks = {{0, false}, {400, true}};
    drive.firstTrackNumber = 5;
    std::array<quint8, 804> table{};
    ASSERT_TRUE(probe.device->readToc(table).ok);
    EXPECT_EQ(table[1], 2 + 3 * 8) << "the length counts all behind itself: two numbers, three entries";
    EXPECT_EQ(table[2], 5);
    EXPECT_EQ(table[3], 6);
    EXPECT_EQ(table[4 + 8 + 1], 0x14) << "data";
    // 400 + 150 = 550 sectors = 7 seconds and 25 sectors.
    EXPECT_EQ(table[4 + 8 + 5], 0);
    EXPECT_EQ(table[4 + 8 + 6], 7);
    EXPECT_EQ(table[4 + 8 + 7], 25);
    EXPECT_EQ(table[4 + 16 + 2], 0xAA);
    // 1000 + 150 = 1150 = 15 seconds and 25 sectors.
    EXPECT_EQ(table[4 + 16 + 6], 15);
}

TEST_F(SimulatedDriveTest, GarbageTakesThePlaceOfTheTable)
{
    drive.tocBytes = QByteArray::fromHex("0102630a");
    std::array<quint8, 804> table{};
    ASSERT_TRUE(probe.device->readToc(table).ok);
    EXPECT_EQ(table[2], 0x63);
    EXPECT_EQ(table[3], 0x0A);
    EXPECT_EQ(table[4], 0);
}

TEST_F(SimulatedDriveTest, DataAndWhatLiesBetweenSessionsRefuseAudioReads)
{
    drive.tracks = {{0, true}, {100, false}, {300 + simulatedSessionGap, true, 2}};
    drive.leadOutLba = 300 + simulatedSessionGap + 50;
    EXPECT_FALSE(probe.read(99).ok);
    EXPECT_TRUE(probe.read(100).ok);
    EXPECT_TRUE(probe.read(299).ok);
    EXPECT_FALSE(probe.read(300).ok) << "11400 sectors before the second session";
    EXPECT_FALSE(probe.read(280, 21).ok) << "its last sector is 300";
    EXPECT_FALSE(probe.read(300 + simulatedSessionGap).ok);

    drive.refusesData = false;
    EXPECT_EQ(probe.read(299, 2).audio, onDisc(299) + QByteArray(RAW_SECTOR_BYTES, '\0'));
    EXPECT_FALSE(probe.read(drive.leadOut()).ok);
}

TEST_F(SimulatedDriveTest, ReadsEndAtTheLeadOut)
{
    EXPECT_TRUE(probe.read(973, 27).ok);
    const DriveProbe::Answer beyond = probe.read(974, 27);
    EXPECT_FALSE(beyond.ok);
    EXPECT_EQ(beyond.error, EIO);
}

TEST_F(SimulatedDriveTest, APositiveOffsetBringsSamplesLate)
{
    drive.readOffset = 30;
    // Frame 30 of sector 10 as delivered is frame 0 of sector 10 on the disc.
    EXPECT_EQ(probe.read(10).audio, onDisc(9).last(30 * 4) + onDisc(10).first(558 * 4));
    EXPECT_EQ(probe.read(0).audio, QByteArray(30 * 4, '\0') + onDisc(0).first(558 * 4))
        << "lead-in is silence";
}

TEST_F(SimulatedDriveTest, ANegativeOffsetBringsSamplesEarly)
{
    drive.readOffset = -600; // one sector and 12 frames
    EXPECT_EQ(probe.read(10).audio, onDisc(11).mid(12 * 4) + onDisc(12).first(12 * 4));
    EXPECT_EQ(probe.read(998).audio, onDisc(999).mid(12 * 4) + QByteArray(12 * 4, '\0'))
        << "lead-out is silence";
    EXPECT_EQ(probe.read(999).audio, QByteArray(RAW_SECTOR_BYTES, '\0'));
}

TEST_F(SimulatedDriveTest, TruthIsTheDiscWithoutWhatNoAddressShows)
{
    EXPECT_EQ(drive.truth(999), onDisc(999));
    drive.readOffset = 6;
    EXPECT_EQ(drive.truth(0), onDisc(0));
    EXPECT_EQ(drive.truth(999), onDisc(999).first(582 * 4) + QByteArray(6 * 4, '\0'));
    drive.readOffset = -30;
    EXPECT_EQ(drive.truth(0), QByteArray(30 * 4, '\0') + onDisc(0).mid(30 * 4));
    EXPECT_EQ(drive.truth(999), onDisc(999));
}

TEST_F(SimulatedDriveTest, ADiscLongerThanItsAudioRepeatsIt)
{
    drive.leadOutLba = 2500;
    EXPECT_EQ(probe.read(2345).audio, onDisc(345));
}

TEST_F(SimulatedDriveTest, ACachedSectorComesAgainAsItWas)
{
    drive.mechanism.cacheSectors = 100;
    drive.mechanism.faults = {SectorFault::flaky(50, 50, 1)};
    const QByteArray wrong = probe.read(50).audio;
    EXPECT_NE(wrong, onDisc(50));
    EXPECT_EQ(probe.read(50).audio, wrong);
    EXPECT_EQ(drive.mechanism.sectorsFromDisc, 1U);
    probe.read(800); // elsewhere: the run of sectors is dropped
    EXPECT_NE(probe.read(50).audio, wrong);
    EXPECT_EQ(drive.mechanism.sectorsFromDisc, 3U);
}

TEST_F(SimulatedDriveTest, ReadingOnPushesTheOldestOut)
{
    drive.mechanism.cacheSectors = 100;
    for (quint32 lba = 0; lba < 120; lba += 20)
        probe.read(lba, 20);
    EXPECT_EQ(drive.mechanism.sectorsFromDisc, 120U);
    probe.read(20, 100); // 20 to 119 are the last hundred
    EXPECT_EQ(drive.mechanism.sectorsFromDisc, 120U);
    probe.read(19);
    EXPECT_EQ(drive.mechanism.sectorsFromDisc, 121U);
}

TEST_F(SimulatedDriveTest, WithoutACacheEachReadIsTheHeads)
{
    drive.mechanism.faults = {SectorFault::flaky(50, 50, 1)};
    const QByteArray wrong = probe.read(50).audio;
    EXPECT_NE(probe.read(50).audio, wrong);
}

TEST_F(SimulatedDriveTest, AStubbornCacheRepeatsUntilTheHeadWasFarAway)
{
    drive.mechanism.staleWithin = 200;
    drive.mechanism.faults = {SectorFault::flaky(500, 500, 1)};
    const QByteArray wrong = probe.read(500).audio;
    probe.read(301, 27); // 199 away at most
    EXPECT_EQ(probe.read(500).audio, wrong);
    probe.read(300); // 200 away
    EXPECT_NE(probe.read(500).audio, wrong);
}

TEST_F(SimulatedDriveTest, ARightAnswerIsRepeatedToo)
{
    drive.mechanism.cacheSectors = 10;
    drive.mechanism.faults = {SectorFault::flaky(0, 999, 0.5)};
    int right = 0;
    for (quint32 lba = 0; lba < 1000; ++lba) {
        const QByteArray first = probe.read(lba).audio;
        EXPECT_EQ(probe.read(lba).audio, first);
        right += first == onDisc(lba) ? 1 : 0;
    }
    // 1000 draws at one half: 500, with a standard deviation of 15.8.
    EXPECT_NEAR(right, 500, 80);
}

TEST_F(SimulatedDriveTest, TimePassesAsTheHeadMoves)
{
    drive.mechanism.speed = 40; // 3000 sectors a second
    drive.mechanism.spinUpNanoseconds = 2 * second;
    drive.mechanism.seekNanoseconds = second / 10;
    drive.mechanism.strokeNanoseconds = 360 * second; // a millisecond for each sector of the way
    constexpr qint64 sector = second / 3000;
    EXPECT_EQ(timeOf(0, 27), 2 * second + 27 * sector);
    EXPECT_EQ(timeOf(27, 1), sector) << "the head is there already";
    EXPECT_EQ(timeOf(528, 1), second / 10 + 500 * second / 1000 + sector) << "500 sectors on from 28";
    EXPECT_EQ(timeOf(528, 1), second / 10 + second / 1000 + sector) << "one back from 529, without a cache";
}

TEST_F(SimulatedDriveTest, DamageSlowsTheDriveDown)
{
    drive.mechanism.speed = 40;
    drive.mechanism.speedOnDamage = 4; // 300 sectors a second
    drive.mechanism.faults = {SectorFault::slow(10, 14)};
    EXPECT_EQ(timeOf(0, 20), 15 * (second / 3000) + 5 * (second / 300));
    EXPECT_EQ(probe.read(12).audio, onDisc(12));
}

TEST_F(SimulatedDriveTest, TheDiscStopsTurningWhenNobodyReads)
{
    drive.mechanism.spinUpNanoseconds = 2 * second;
    drive.mechanism.spinDownAfter = 60 * second;
    probe.read(0);
    drive.sleepMilliseconds(59'000);
    EXPECT_EQ(timeOf(1, 1), 0);
    drive.sleepMilliseconds(61'000);
    EXPECT_EQ(timeOf(2, 1), 2 * second);
}

TEST_F(SimulatedDriveTest, APauseLetsTheDriveReadAheadIntoItsCache)
{
    drive.mechanism.speed = 40;
    drive.mechanism.cacheSectors = 100;
    constexpr qint64 sector = second / 3000;
    probe.read(0, 20);
    EXPECT_EQ(timeOf(0, 20), 0) << "cached";
    drive.sleepMilliseconds(10); // 30 sectors at 3000 a second, and a third of a nanosecond each
    EXPECT_NEAR(static_cast<double>(timeOf(20, 40)), 10.0 * sector, 30);
    drive.sleepMilliseconds(1000); // no more than the cache holds
    EXPECT_EQ(timeOf(60, 110), 10 * sector);
}

TEST_F(SimulatedDriveTest, CommandsTakeTheirTimeAndAreCounted)
{
    drive.commandNanoseconds = 1000;
    probe.read(0, 27);
    probe.readWithC2(100, 5);
    probe.device->checkVerify();
    drive.sleepMilliseconds(1);
    EXPECT_EQ(drive.nowNanoseconds(), 3 * 1000 + 1'000'000);
    EXPECT_EQ(drive.commandsSent, 3U);
    EXPECT_EQ(drive.sectorsTransferred, 32U);
    EXPECT_EQ(drive.count(SimulatedDrive::Command::Raw), 1);
    EXPECT_EQ(drive.count(SimulatedDrive::Command::RawWithC2), 1);
    EXPECT_EQ(drive.count(SimulatedDrive::Command::Sleep), 1);
}

TEST_F(SimulatedDriveTest, TheDriveDisappears)
{
    drive.commandsUntilGone = 2;
    EXPECT_TRUE(probe.read(0).ok);
    EXPECT_EQ(drive.enumerateDrives().size(), 1);
    EXPECT_TRUE(probe.readWithC2(0).ok);
    EXPECT_EQ(probe.read(0).error, ENODEV);
    EXPECT_EQ(probe.readWithC2(0).error, ENODEV);
    EXPECT_FALSE(probe.device->checkVerify().ok);
    EXPECT_FALSE(probe.device->descriptor());
    EXPECT_FALSE(drive.open(drive.letter));
    EXPECT_TRUE(drive.enumerateDrives().isEmpty());
}

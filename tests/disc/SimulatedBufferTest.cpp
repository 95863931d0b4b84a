// The simulated drive's buffer: rings, segments, reading ahead.

#include "disc/DiscModel.h"
#include "support/DiscMaker.h"
#include "support/DriveProbe.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

constexpr qint64 second = 1'000'000'000;

class SimulatedBuffer : public ::testing::Test {
protected:
    SimulatedBuffer()
    {
        drive.audio = makeAudio(1000, 7);
        drive.leadOutLba = 20'000;
        drive.commandNanoseconds = 0;
    }

    /// Sectors that the head reads for this command.
    quint64 fromDisc(quint32 lba, quint32 count)
    {
        const quint64 before = drive.mechanism.sectorsFromDisc;
        EXPECT_TRUE(probe.read(lba, count).ok);
        return drive.mechanism.sectorsFromDisc - before;
    }

    SimulatedDrive drive;
    DriveProbe probe{drive};
};

} // namespace

TEST_F(SimulatedBuffer, ARingKeepsWhatLiesBehindAndIsReachedFromAhead)
{
    drive.mechanism.cacheSectors = 400;
    drive.mechanism.readAhead = 200;
    EXPECT_EQ(fromDisc(1000, 27), 27U);
    EXPECT_EQ(fromDisc(1200, 27), 200U) << "1027 to 1226, read on over what lies between";
    EXPECT_EQ(fromDisc(1000, 227), 0U);
    EXPECT_EQ(fromDisc(1428, 1), 1U) << "201 behind the run's end: a jump";
    EXPECT_EQ(fromDisc(1226, 1), 1U) << "which has dropped the ring";
}

// A re-read that moves 200 sectors away and back, twice: the whole way lies in the ring.
TEST_F(SimulatedBuffer, AShortWayAndBackIsAnsweredFromTheRing)
{
    drive.mechanism.cacheSectors = 400;
    drive.mechanism.readAhead = 200;
    drive.mechanism.faults = {SectorFault::flaky(1000, 1000, 1)};
    const auto reread = [this] {
        probe.read(800, 27);
        return probe.read(1000, 27).audio.left(RAW_SECTOR_BYTES);
    };
    const QByteArray first = reread();
    EXPECT_EQ(reread(), first);
    EXPECT_EQ(reread(), first);
    probe.read(5000, 27);
    EXPECT_NE(reread(), first);
}

TEST_F(SimulatedBuffer, TheSegmentUsedLeastRecentlyGoes)
{
    drive.mechanism.cacheSectors = 300;
    drive.mechanism.cacheSegments = 3;
    for (const quint32 lba : {1000U, 4000U, 8000U})
        EXPECT_EQ(fromDisc(lba, 27), 27U);
    EXPECT_EQ(fromDisc(1000, 27), 0U) << "used again";
    EXPECT_EQ(fromDisc(12'000, 27), 27U);
    EXPECT_EQ(fromDisc(1000, 27), 0U);
    EXPECT_EQ(fromDisc(8000, 27), 0U);
    EXPECT_EQ(fromDisc(4000, 27), 27U) << "the one that went";
}

TEST_F(SimulatedBuffer, ASegmentHoldsItsShareOfTheBuffer)
{
    drive.mechanism.cacheSectors = 300;
    drive.mechanism.cacheSegments = 3;
    EXPECT_EQ(fromDisc(1000, 100), 100U);
    EXPECT_EQ(fromDisc(1000, 100), 0U);
    EXPECT_EQ(fromDisc(1100, 1), 1U);
    EXPECT_EQ(fromDisc(1000, 1), 1U) << "101 sectors do not fit";
}

TEST_F(SimulatedBuffer, ASectorLiesInOneSegmentAlone)
{
    drive.mechanism.cacheSectors = 300;
    drive.mechanism.cacheSegments = 3;
    drive.mechanism.faults = {SectorFault::flaky(1010, 1010, 1)};
    const QByteArray old = probe.read(1010, 10).audio;
    probe.read(1000, 10);
    EXPECT_EQ(probe.read(1010, 10).audio, old) << "the other segment holds it";
    drive.mechanism.readAhead = 100;
    probe.read(1050, 1);
    EXPECT_NE(probe.read(1010, 10).audio, old) << "the head has passed over it";
}

TEST_F(SimulatedBuffer, WhatCannotBeReadOnTheWayEndsTheReadingOn)
{
    drive.mechanism.cacheSectors = 400;
    drive.mechanism.readAhead = 200;
    drive.mechanism.faults = {SectorFault::unreadable(1050, 1050)};
    probe.read(1000, 27);
    EXPECT_EQ(fromDisc(1100, 27), 23U + 27U) << "1027 to 1049, and a jump";
    EXPECT_EQ(fromDisc(1027, 1), 1U);
}

TEST_F(SimulatedBuffer, SectorsInFrontOfAnUnreadableOneCanComeWithTheFailure)
{
    drive.mechanism.faults = {SectorFault::unreadable(20, 20)};
    drive.partialTransfers = true;
    const DriveProbe::Answer answer = probe.read(18, 4);
    EXPECT_FALSE(answer.ok);
    EXPECT_EQ(answer.audio.left(2 * RAW_SECTOR_BYTES),
              drive.audio.mid(18 * RAW_SECTOR_BYTES, 2 * RAW_SECTOR_BYTES));
    EXPECT_EQ(answer.audio.mid(2 * RAW_SECTOR_BYTES), QByteArray(2 * RAW_SECTOR_BYTES, '\0'));
}

TEST_F(SimulatedBuffer, AHangLastsAsLongAsTheFloorAtLeast)
{
    drive.mechanism.faults = {SectorFault::hanging(20, 20)};
    drive.timeFloor = 7 * second;
    EXPECT_EQ(probe.read(20).error, ECANCELED);
    EXPECT_EQ(drive.nowNanoseconds(), 7 * second);
    EXPECT_EQ(probe.readWithC2(20).error, ETIMEDOUT);
    EXPECT_EQ(drive.nowNanoseconds(), 14 * second);
}

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

namespace {

using Command = SimulatedDrive::Command;

class BatchCache : public ::testing::Test {
protected:
    void SetUp() override
    {
        platform.audio = makeAudio(5000, 1);
        ASSERT_TRUE(drive.open(platform.letter));
    }

    void readToc()
    {
        ASSERT_EQ(drive.readToc().tracks.size(), 1);
        platform.commands.clear();
    }

    QByteArray truth(quint32 lba) const
    {
        return platform.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    SimulatedDrive platform;
    DrivePlatformOverride override{platform};
    CdDrive drive;
};

} // namespace

TEST_F(BatchCache, TwentySevenSectorsCostOneCommand)
{
    readToc();
    for (quint32 lba = 0; lba < 54; ++lba)
        ASSERT_EQ(drive.readSector(lba), truth(lba));
    EXPECT_EQ(platform.commands, (QList<Command>{{Command::Raw, 0, 27}, {Command::Raw, 27, 27}}));
}

TEST_F(BatchCache, BatchShrinksAtTheLeadOut)
{
    readToc();
    EXPECT_EQ(drive.readSector(4997), truth(4997));
    EXPECT_EQ(platform.commands, (QList<Command>{{Command::Raw, 4997, 3}}));
}

TEST_F(BatchCache, AtTheLeadOutNothingIsSent)
{
    readToc();
    EXPECT_TRUE(drive.readSector(5000).isEmpty());
    EXPECT_EQ(drive.lastRetries(), 0U);
    EXPECT_TRUE(platform.commands.isEmpty());
}

TEST_F(BatchCache, FreshReadTravelsTwoHundredSectors)
{
    readToc();
    EXPECT_EQ(drive.readSectorFresh(200), truth(200));
    EXPECT_EQ(drive.readSectorFresh(201), truth(201));
    EXPECT_EQ(platform.commands, (QList<Command>{{Command::Raw, 400, 27},
                                                 {Command::Raw, 200, 27},
                                                 {Command::Raw, 1, 27},
                                                 {Command::Raw, 201, 27}}));
}

TEST_F(BatchCache, FreshReadLeavesItsBatchInTheCache)
{
    readToc();
    drive.readSectorFresh(1000);
    platform.commands.clear();
    EXPECT_EQ(drive.readSector(1026), truth(1026));
    EXPECT_TRUE(platform.commands.isEmpty());
}

TEST_F(BatchCache, FlushTravelsTwoThousandSectorsAndEmptiesTheCache)
{
    readToc();
    drive.flushDriveCache(2000);
    drive.flushDriveCache(2001);
    drive.readSector(1);
    EXPECT_EQ(platform.commands,
              (QList<Command>{{Command::Raw, 4000, 27}, {Command::Raw, 1, 27}, {Command::Raw, 1, 27}}));
}

TEST_F(BatchCache, CacheHitClearsTheRetriesOfTheBatch)
{
    readToc();
    platform.failingReads = 2;
    drive.readSector(0);
    EXPECT_EQ(drive.lastRetries(), 2U);
    drive.readSector(1);
    EXPECT_EQ(drive.lastRetries(), 0U);
}

TEST_F(BatchCache, C2CannotBeEnabledBeforeItIsProbed)
{
    readToc();
    drive.setC2Enabled(true);
    EXPECT_FALSE(drive.c2Enabled());
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    EXPECT_TRUE(drive.c2Enabled());
}

TEST_F(BatchCache, OnlyAChangeOfC2EmptiesTheCache)
{
    readToc();
    ASSERT_TRUE(drive.probeC2(0));
    drive.readSector(0);
    platform.commands.clear();
    drive.setC2Enabled(false);
    drive.readSector(1);
    EXPECT_TRUE(platform.commands.isEmpty());
    drive.setC2Enabled(true);
    EXPECT_EQ(drive.readSector(2), truth(2));
    EXPECT_EQ(platform.commands, (QList<Command>{{Command::RawWithC2, 2, 27}}));
}

TEST_F(BatchCache, AClosedDriveReadsNothing)
{
    readToc();
    drive.close();
    EXPECT_TRUE(drive.readSector(0).isEmpty());
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_TRUE(platform.commands.isEmpty());
}

TEST_F(BatchCache, TheLimitReturnsWithTheNextTableOfContents)
{
    readToc();
    drive.close();
    ASSERT_TRUE(drive.open(platform.letter));
    platform.commands.clear();
    drive.readSector(4990);
    EXPECT_EQ(platform.commands.constFirst(), (Command{Command::Raw, 4990, 27}));
}

TEST_F(BatchCache, ABorrowedDriveRefusesToOpenAndClosesWhenGivenBack)
{
    readToc();
    ASSERT_TRUE(drive.borrow());
    EXPECT_FALSE(drive.open(platform.letter));
    EXPECT_FALSE(drive.openCue(QStringLiteral("/nowhere.cue")));
    drive.close();
    EXPECT_EQ(drive.readSector(3), truth(3));
    EXPECT_FALSE(drive.borrow()) << "to be closed, but still in somebody's hands";
    drive.giveBack();
    EXPECT_TRUE(drive.readSector(3).isEmpty());
    EXPECT_TRUE(drive.open(platform.letter));
}

TEST_F(BatchCache, ADriveIsLentToOneAtATime)
{
    readToc();
    ASSERT_TRUE(drive.borrow());
    EXPECT_FALSE(drive.borrow());
    EXPECT_TRUE(drive.isBorrowed());
    drive.giveBack();
    EXPECT_TRUE(drive.borrow());
    drive.giveBack();
}

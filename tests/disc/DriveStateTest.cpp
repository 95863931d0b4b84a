// What is left of a drive's state when it is closed, opened again, read afresh
// or left for an image.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Command = SimulatedDrive::Command;

class DriveState : public ::testing::Test {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(1000, 9);
        shim.onRaw = [this](quint32, std::span<quint8>, bool, DriveReply& reply) { failWhereDue(reply); };
        shim.onPassThrough = [this](std::span<const quint8> command, std::span<quint8> data,
                                    DriveReply& reply) {
            if (command[0] != 0xBE) // READ CD
                return;
            data[RAW_SECTOR_BYTES] = flagged;
            failWhereDue(reply);
        };
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_EQ(drive.readToc().tracks.size(), 1);
    }

    void failWhereDue(DriveReply& reply)
    {
        if (failures > 0) {
            --failures;
            reply = {false, 5};
        }
    }

    void turnC2On()
    {
        ASSERT_TRUE(drive.probeC2(0));
        drive.setC2Enabled(true);
        ASSERT_TRUE(drive.c2Enabled());
    }

    /// Whether C2 can be switched on without another probe.
    bool c2CanBeSwitchedOn()
    {
        drive.setC2Enabled(true);
        return drive.c2Enabled();
    }

    QString imageOfTenSectors()
    {
        ImageDescription description;
        description.tracks = {{0, QStringLiteral("One")}};
        return writeImage(folder.path(), description, image);
    }

    QByteArray truth(quint32 lba) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    static constexpr int forEver = 1'000'000;

    QTemporaryDir folder;
    QByteArray image = makeAudio(10, 4);
    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    CdDrive drive;
    quint8 flagged = 0; ///< the first byte of the C2 block of each batch
    int failures = 0;   ///< reads to come that fail
};

} // namespace

TEST_F(DriveState, CloseTurnsC2OffAndForgetsThatItWasSupported)
{
    turnC2On();
    drive.close();
    EXPECT_FALSE(drive.c2Enabled());
    EXPECT_FALSE(c2CanBeSwitchedOn());
}

TEST_F(DriveState, ItIsOpenUntilItIsClosedOrSomethingElseCannotBeOpened)
{
    EXPECT_TRUE(drive.isOpen());
    EXPECT_FALSE(drive.open(QStringLiteral("/dev/sr7")));
    EXPECT_FALSE(drive.isOpen());
    ASSERT_TRUE(drive.openCue(imageOfTenSectors()));
    EXPECT_TRUE(drive.isOpen());
    EXPECT_FALSE(drive.openCue(folder.filePath(QStringLiteral("missing.cue"))));
    EXPECT_FALSE(drive.isOpen());
    ASSERT_TRUE(drive.open(simulated.letter));
    drive.close();
    EXPECT_FALSE(drive.isOpen());
}

TEST_F(DriveState, AClosedDriveIsNotProbed)
{
    drive.close();
    simulated.commands.clear();
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_TRUE(simulated.commands.isEmpty());
}

TEST_F(DriveState, TimingRestartsWhenTheDriveIsOpenedAgain)
{
    simulated.commandNanoseconds = 100'000'000;
    drive.readSector(0);
    simulated.sleepMilliseconds(10'000);
    ASSERT_TRUE(drive.open(simulated.letter));
    drive.readSector(0);
    EXPECT_EQ(drive.speedKBs(), 620U) << "27 * 2352 / 1024 KiB in 0.1 s";
}

TEST_F(DriveState, OpenOverAnOpenDriveTurnsC2Off)
{
    turnC2On();
    ASSERT_TRUE(drive.open(simulated.letter));
    EXPECT_FALSE(drive.c2Enabled());
    EXPECT_FALSE(c2CanBeSwitchedOn()) << "another drive has not been probed";
    simulated.commands.clear();
    EXPECT_EQ(drive.readSector(0), truth(0));
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 0, 27}}));
}

TEST_F(DriveState, AnImageTurnsC2OffUntilTheNextProbe)
{
    turnC2On();
    ASSERT_TRUE(drive.openCue(imageOfTenSectors()));
    EXPECT_FALSE(drive.c2Enabled());
    EXPECT_FALSE(c2CanBeSwitchedOn());
    ASSERT_TRUE(drive.open(simulated.letter));
    EXPECT_FALSE(c2CanBeSwitchedOn());
    turnC2On();
}

TEST_F(DriveState, TheMarkOfAnImageOutlivesCloseAndEndsWithOpen)
{
    EXPECT_FALSE(drive.isImage());
    ASSERT_TRUE(drive.openCue(imageOfTenSectors()));
    EXPECT_TRUE(drive.isImage());
    drive.close();
    EXPECT_TRUE(drive.isImage());
    EXPECT_EQ(drive.name(), QStringLiteral("disc.cue"));
    EXPECT_TRUE(drive.readSector(0).isEmpty());
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());

    ASSERT_TRUE(drive.open(simulated.letter));
    EXPECT_FALSE(drive.isImage());
    EXPECT_EQ(drive.name(), simulated.letter);
    const DiscToc disc = drive.readToc();
    EXPECT_FALSE(disc.isImage);
    EXPECT_EQ(disc.totalSectors, 1000U);
    EXPECT_EQ(drive.readSector(3), truth(3));
    drive.close();
    EXPECT_FALSE(drive.isImage());
    EXPECT_EQ(drive.name(), simulated.letter);
}

TEST_F(DriveState, ASheetThatFailsLeavesTheDriveForAnImageAllTheSame)
{
    EXPECT_FALSE(drive.openCue(folder.filePath(QStringLiteral("missing.cue"))));
    EXPECT_TRUE(drive.isImage());
    simulated.commands.clear();
    EXPECT_TRUE(drive.readSector(0).isEmpty());
    EXPECT_TRUE(simulated.commands.isEmpty());
}

// The count belongs to the sector last returned, and where none is returned
// there is none.
TEST_F(DriveState, PointersOfASectorDoNotOutliveItsDrive)
{
    const auto readFlagged = [this] {
        turnC2On();
        flagged = 0x1F;
        ASSERT_EQ(drive.readSector(100), truth(100));
        ASSERT_EQ(drive.lastC2Errors(), 5U);
    };
    readFlagged();
    drive.close();
    EXPECT_TRUE(drive.readSector(100).isEmpty());
    EXPECT_EQ(drive.lastC2Errors(), 0U);

    ASSERT_TRUE(drive.open(simulated.letter));
    readFlagged();
    ASSERT_TRUE(drive.open(simulated.letter));
    EXPECT_EQ(drive.lastC2Errors(), 0U) << "before anything is read";
    EXPECT_EQ(drive.readSector(100), truth(100));
    EXPECT_EQ(drive.lastC2Errors(), 0U);
}

TEST_F(DriveState, PointersOfASectorAreNotThoseOfAFailureBehindIt)
{
    turnC2On();
    flagged = 0x1F;
    drive.readSector(100);
    ASSERT_EQ(drive.lastC2Errors(), 5U);
    EXPECT_TRUE(drive.readSector(1000).isEmpty()) << "the lead-out";
    EXPECT_EQ(drive.lastC2Errors(), 0U);

    drive.readSector(100);
    ASSERT_EQ(drive.lastC2Errors(), 5U);
    failures = forEver;
    EXPECT_TRUE(drive.readSector(200).isEmpty());
    EXPECT_EQ(drive.lastC2Errors(), 0U);
}

TEST_F(DriveState, AFreshReadEmptiesTheCacheAlsoWhenBothOfItsBatchesFail)
{
    EXPECT_EQ(drive.readSector(0), truth(0));
    failures = forEver;
    EXPECT_TRUE(drive.readSectorFresh(5).isEmpty());
    failures = 0;
    simulated.commands.clear();
    EXPECT_EQ(drive.readSector(6), truth(6));
    EXPECT_TRUE(std::ranges::any_of(simulated.commands, [](const Command& command) {
        return command.kind == Command::Raw && command.lba == 6;
    })) << "the batch of the first read would have held it";
}

TEST_F(DriveState, AnImageReadLeavesTheFiguresOfTheDriveAlone)
{
    turnC2On();
    simulated.commandNanoseconds = 100'000'000;
    flagged = 0x1F;
    failures = 2;
    ASSERT_EQ(drive.readSector(100), truth(100));
    const auto expectFigures = [this] {
        EXPECT_EQ(drive.lastRetries(), 2U);
        EXPECT_EQ(drive.lastC2Errors(), 5U);
        EXPECT_EQ(drive.speedKBs(), 206U) << "27 * 2352 / 1024 KiB in 0.3 s";
    };
    expectFigures();
    ASSERT_TRUE(drive.openCue(imageOfTenSectors()));
    EXPECT_EQ(drive.readSector(9), image.last(RAW_SECTOR_BYTES));
    expectFigures();
    EXPECT_EQ(drive.readSectorFresh(0), image.first(RAW_SECTOR_BYTES));
    drive.flushDriveCache(0);
    expectFigures();
    EXPECT_TRUE(drive.readSector(10).isEmpty()) << "the end of the file";
    expectFigures();
}

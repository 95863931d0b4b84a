// Batches with their ladder of retries, C2 pointers, speed: a drive without CdDrive around it.

#include "disc/PhysicalDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/LogCapture.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

namespace {

using Command = SimulatedDrive::Command;

class PhysicalDriveTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(3000, 11);
        shim.onRaw = [this](quint32, std::span<quint8>, bool guarded, DriveReply& reply) {
            if (guarded && failures > 0) {
                --failures;
                reply = {false, 5};
            }
        };
        ASSERT_EQ(readToc().tracks.size(), 1);
        simulated.commands.clear();
    }

    QByteArray truth(quint32 lba) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    /// Sets this many pointer bits in each sector of the batches to come.
    void setPointers(std::function<int(quint32 sectorOfBatch)> bits)
    {
        shim.onPassThrough = [bits](std::span<const quint8> command, std::span<quint8> data, DriveReply&) {
            if (command[0] != 0xBE)
                return;
            for (size_t start = 0; start < data.size(); start += RAW_PLUS_C2_BYTES) {
                const int count = bits(static_cast<quint32>(start / RAW_PLUS_C2_BYTES));
                for (int bit = 0; bit < count; ++bit) {
                    quint8& byte = data[start + RAW_SECTOR_BYTES + static_cast<size_t>(bit / 8)];
                    byte = static_cast<quint8>(byte | 0x80 >> (bit % 8));
                }
            }
        };
    }

    DiscToc readToc() { return drive.readToc(failure); }
    QByteArray read(quint32 lba) { return drive.readSector(lba, ReadPurpose::judged); }
    const ReadFigures& figures() const { return *drive.figures(); }

    void wait(int milliseconds) { simulated.sleepMilliseconds(milliseconds); }

    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    PhysicalDrive drive{shim.open(simulated.letter)};
    DriveFailure failure = DriveFailure::unknown;
    int failures = 0; ///< guarded reads to come that fail
};

/// The commands of a batch whose first attempts fail, up to the one that is left.
QList<Command> ladder(quint32 lba, quint32 seekLba, int attempts, Command::Kind read = Command::Raw)
{
    QList<Command> commands;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (attempt >= 25)
            commands.append({Command::Sleep, 100});
        else if (attempt >= 5)
            commands << Command{Command::SeekRead, seekLba, 27} << Command{Command::Sleep, 10};
        commands.append({read, lba, 27});
    }
    return commands;
}

/// The read of sector 1000 alone.
QList<Command> oneSector(Command::Kind read)
{
    return {{read, 1000, 1}};
}

} // namespace

TEST_F(PhysicalDriveTest, EveryRungOfTheLadderCountsTheFailuresBeforeIt)
{
    for (int failed = 0; failed < 35; ++failed) {
        SCOPED_TRACE(failed);
        const quint32 lba = 1000 + 27 * static_cast<quint32>(failed);
        simulated.commands.clear();
        failures = failed;
        EXPECT_EQ(read(lba), truth(lba));
        EXPECT_EQ(figures().retries, static_cast<quint32>(failed));
        EXPECT_EQ(simulated.commands, ladder(lba, lba - 100, failed + 1));
    }
}

TEST_F(PhysicalDriveTest, ThirtyFiveFailuresAndOneAloneGiveUpAndKeepTheCacheAsItWas)
{
    EXPECT_EQ(read(0), truth(0));
    simulated.commands.clear();
    failures = 36;
    EXPECT_TRUE(read(1000).isEmpty());
    EXPECT_EQ(figures().retries, 35U);
    EXPECT_EQ(figures().c2Errors, 0U);
    EXPECT_EQ(figures().speedKBs, 0U);
    EXPECT_EQ(simulated.commands, ladder(1000, 900, 35) + oneSector(Command::Raw));
    EXPECT_EQ(simulated.count(Command::SeekRead), 20);
    EXPECT_EQ(simulated.count(Command::Sleep), 30);

    simulated.commands.clear();
    EXPECT_EQ(read(26), truth(26));
    EXPECT_TRUE(simulated.commands.isEmpty());
}

TEST_F(PhysicalDriveTest, TheSeekGoesDownAboveSectorHundredAndUpBelow)
{
    for (const auto& [lba, seek] : {std::pair<quint32, quint32>{101, 1}, {100, 200}, {0, 100}}) {
        drive.flushCache(2500);
        simulated.commands.clear();
        failures = 6;
        EXPECT_EQ(drive.readSectorFresh(lba).isEmpty(), false);
        // The failures fall on the far read that comes first; so does the seek.
        EXPECT_EQ(simulated.count(Command::SeekRead), 2);
        drive.flushCache(2500);
        simulated.commands.clear();
        failures = 6;
        EXPECT_EQ(read(lba), truth(lba));
        EXPECT_EQ(simulated.commands, ladder(lba, seek, 7));
    }
}

TEST_F(PhysicalDriveTest, TheOutcomeOfASeekReadDoesNotMatter)
{
    shim.onRaw = [this](quint32, std::span<quint8>, bool guarded, DriveReply& reply) {
        if (!guarded)
            reply = {false, 5};
        else if (failures-- > 0)
            reply = {false, 5};
    };
    failures = 10;
    EXPECT_EQ(read(1000), truth(1000));
    EXPECT_EQ(figures().retries, 10U);
}

TEST_F(PhysicalDriveTest, AReadThatComesShortIsAFailedAttempt)
{
    int shortReads = 2;
    shim.onRaw = [&shortReads](quint32, std::span<quint8> data, bool, DriveReply& reply) {
        if (shortReads-- > 0)
            reply = {true, 5, data.size() - 1};
    };
    EXPECT_EQ(read(1000), truth(1000));
    EXPECT_EQ(figures().retries, 2U);
}

TEST_F(PhysicalDriveTest, AReadThatDoesNotSayHowMuchCameIsAFailedAttempt)
{
    int silentReads = 2;
    shim.onRaw = [&silentReads](quint32, std::span<quint8>, bool, DriveReply& reply) {
        if (silentReads-- > 0)
            reply = {.ok = true};
    };
    EXPECT_EQ(read(1000), truth(1000));
    EXPECT_EQ(figures().retries, 2U);
}

TEST_F(PhysicalDriveTest, ABatchThreeSectorsBeforeTheLeadOutHasThree)
{
    EXPECT_EQ(read(2997), truth(2997));
    EXPECT_EQ(read(2999), truth(2999));
    EXPECT_TRUE(read(3000).isEmpty());
    EXPECT_TRUE(read(0xFFFFFFFF).isEmpty());
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 2997, 3}}));
}

TEST_F(PhysicalDriveTest, NoBatchReachesFromAudioIntoTheGapBeforeData)
{
    simulated.audio = makeAudio(20000, 11);
    simulated.tracks = {{0}, {18000, true, 2}};
    ASSERT_EQ(readToc().tracks.value(0).endLba, 18000u - 11401);
    simulated.commands.clear();
    EXPECT_TRUE(read(6590) == truth(6590));
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 6590, 10}}))
        << "the last audio sector is 6599";
    EXPECT_TRUE(read(6599) == truth(6599));
    EXPECT_EQ(simulated.commands.size(), 1);
    simulated.commands.clear();
    PhysicalDrive unbounded(simulated.open(simulated.letter));
    unbounded.readSector(6590, ReadPurpose::judged);
    EXPECT_EQ(simulated.commands.value(0), (Command{Command::Raw, 6590, 27}))
        << "no bound without a table of contents";
}

TEST_F(PhysicalDriveTest, ABatchGoesOnFromOneAudioTrackIntoTheNext)
{
    simulated.tracks = {{0}, {1500}};
    ASSERT_EQ(readToc().tracks.size(), 2);
    simulated.commands.clear();
    EXPECT_EQ(read(1490), truth(1490));
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 1490, 27}}));
}

TEST_F(PhysicalDriveTest, ProbeAtTheLeadOutSendsNothing)
{
    EXPECT_FALSE(drive.probeC2(3000));
    EXPECT_TRUE(simulated.commands.isEmpty());
    EXPECT_TRUE(drive.probeC2(2997));
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::RawWithC2, 2997, 3}}));
}

TEST_F(PhysicalDriveTest, AProbeThatSucceedsSaysSoInTheLog)
{
    const LogCapture log;
    EXPECT_TRUE(drive.probeC2(0));
    EXPECT_EQ(log.debugLines(), QStringList{QStringLiteral("[CdDrive] C2: supported")});
    EXPECT_TRUE(log.warnings().isEmpty());
    EXPECT_FALSE(drive.c2Enabled()) << "supported is not enabled";
}

TEST_F(PhysicalDriveTest, AProbeIsTriedThreeTimesWithoutPauses)
{
    int failuresLeft = 2;
    shim.onPassThrough = [&failuresLeft](std::span<const quint8>, std::span<quint8>, DriveReply& reply) {
        if (failuresLeft-- > 0)
            reply = {false, 22};
    };
    EXPECT_TRUE(drive.probeC2(500));
    EXPECT_EQ(simulated.commands, QList<Command>(3, {Command::RawWithC2, 500, 27}));
}

TEST_F(PhysicalDriveTest, AProbeThatFailsLogsTheErrorAndTurnsC2Off)
{
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    ASSERT_TRUE(drive.c2Enabled());
    shim.onPassThrough = [](std::span<const quint8>, std::span<quint8>, DriveReply& reply) {
        reply = {false, 22};
    };
    simulated.commands.clear();
    const LogCapture log;
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= 22 )")});
    EXPECT_EQ(simulated.count(Command::RawWithC2), 3);
    EXPECT_FALSE(drive.c2Enabled());
    drive.setC2Enabled(true);
    EXPECT_FALSE(drive.c2Enabled());
}

TEST_F(PhysicalDriveTest, AProbeWithExactlyHalfOfTheBitsSetPasses)
{
    setPointers([](quint32) { return 2352 / 2; });
    EXPECT_TRUE(drive.probeC2(0));
}

TEST_F(PhysicalDriveTest, AProbeWithOneBitMoreThanHalfIsNotBelieved)
{
    setPointers([](quint32 sector) { return 2352 / 2 + (sector == 26 ? 1 : 0); });
    const LogCapture log;
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(log.warnings(), // 27 * 1176 + 1 of 27 * 2352
              QStringList{QStringLiteral("[CdDrive] C2: values look invalid ( 31753 / 63504 bits set)")});
}

TEST_F(PhysicalDriveTest, PointerBitsOfEachSectorGoWithIt)
{
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    setPointers([](quint32 sector) { return static_cast<int>(sector) * 7; });
    simulated.commands.clear();
    for (quint32 sector = 0; sector < 27; ++sector) {
        ASSERT_EQ(read(300 + sector), truth(300 + sector));
        EXPECT_EQ(figures().c2Errors, sector * 7);
    }
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::RawWithC2, 300, 27}}));

    drive.setC2Enabled(false);
    EXPECT_EQ(read(300 + 5), truth(305));
    EXPECT_EQ(figures().c2Errors, 0U);
}

TEST_F(PhysicalDriveTest, ReadCdWithC2GoesOutByteByByteIntoAlignedMemory)
{
    QByteArray block;
    quintptr misalignment = 1;
    size_t length = 0;
    shim.onPassThrough = [&](std::span<const quint8> command, std::span<quint8> data, DriveReply&) {
        block =
            QByteArray(reinterpret_cast<const char*>(command.data()), static_cast<qsizetype>(command.size()));
        misalignment = reinterpret_cast<quintptr>(data.data()) % 64;
        length = data.size();
    };
    ASSERT_TRUE(drive.probeC2(0x0A0B));
    EXPECT_EQ(block.toHex(), QByteArray("be0400000a0b00001b120000"));
    EXPECT_EQ(misalignment, 0U);
    EXPECT_EQ(length, 27U * 2646);
}

TEST_F(PhysicalDriveTest, TheLadderWithC2SeeksWithPlainReads)
{
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    int failuresLeft = 36;
    int shortReads = 0;
    shim.onPassThrough = [&](std::span<const quint8>, std::span<quint8> data, DriveReply& reply) {
        if (failuresLeft-- <= 0)
            return;
        reply = failuresLeft % 2 == 0 ? DriveReply{false, 5} : DriveReply{true, 5, data.size() - 2646};
        shortReads += reply.ok ? 1 : 0;
    };
    simulated.commands.clear();
    EXPECT_TRUE(read(1000).isEmpty());
    EXPECT_EQ(simulated.commands, ladder(1000, 900, 35, Command::RawWithC2) + oneSector(Command::RawWithC2));
    EXPECT_EQ(shortReads, 18);
    EXPECT_EQ(figures().retries, 35U);
}

TEST_F(PhysicalDriveTest, SpeedIsTheAverageSinceTheFirstBatch)
{
    // A batch is 27 * 2352 / 1024 = 62.015625 KiB.
    simulated.commandNanoseconds = 100'000'000;
    read(0);
    EXPECT_EQ(figures().speedKBs, 620U) << "62.0156 KiB in 0.1 s";
    wait(100);
    read(5);
    EXPECT_EQ(figures().speedKBs, 620U) << "a sector from the cache leaves the figure alone";
    read(27);
    EXPECT_EQ(figures().speedKBs, 413U) << "124.03125 KiB in 0.3 s";
    wait(600);
    read(54);
    EXPECT_EQ(figures().speedKBs, 186U) << "186.046875 KiB in 1 s";
}

TEST_F(PhysicalDriveTest, AShortBatchCountsItsOwnSectors)
{
    simulated.commandNanoseconds = 100'000'000;
    read(2997);
    EXPECT_EQ(figures().speedKBs, 68U) << "3 * 2352 / 1024 KiB in 0.1 s";
}

TEST_F(PhysicalDriveTest, FailedAttemptsTakeTimeOfTheSpeed)
{
    simulated.commandNanoseconds = 100'000'000;
    failures = 4;
    read(0);
    EXPECT_EQ(figures().speedKBs, 124U) << "62.0156 KiB in 0.5 s";
}

TEST_F(PhysicalDriveTest, AFailedBatchShowsNoSpeedAndCountsNoBytes)
{
    simulated.commandNanoseconds = 0;
    failures = 36;
    read(0);
    EXPECT_EQ(figures().speedKBs, 0U);
    simulated.commandNanoseconds = 100'000'000;
    read(27);
    EXPECT_EQ(figures().speedKBs, 620U) << "the time of the failure lies before the first batch";
}

TEST_F(PhysicalDriveTest, ABatchInNoTimeHasNoSpeedAndAnInstantOneTheLargest)
{
    simulated.commandNanoseconds = 0;
    read(0);
    EXPECT_EQ(figures().speedKBs, 0U);
    simulated.commandNanoseconds = 1;
    read(27);
    EXPECT_EQ(figures().speedKBs, 0xFFFFFFFFU) << "124 KiB in a nanosecond are more than the figure holds";
}

TEST_F(PhysicalDriveTest, ANewDriveStartsItsTimeAnew)
{
    simulated.commandNanoseconds = 100'000'000;
    read(0);
    wait(10'000);
    PhysicalDrive other(simulated.open(simulated.letter));
    other.readSector(0, ReadPurpose::judged);
    EXPECT_EQ(other.figures()->speedKBs, 620U);
}

TEST_F(PhysicalDriveTest, TellsWhyThereIsNoTableOfContents)
{
    shim.onToc = [](std::span<quint8, 804>, DriveReply& reply) {
        reply = {false, 5, 0, DriveFailure::notReady};
    };
    EXPECT_TRUE(readToc().tracks.isEmpty());
    EXPECT_EQ(failure, DriveFailure::notReady);
    EXPECT_TRUE(read(3000).isEmpty());
    EXPECT_EQ(figures().retries, 0U) << "the bounds of the table before it still hold";
}

// Whole rips of discs and drives with faults: what is reported good is right,
// and every sector is accounted for.

#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "support/SimulatedDrive.h"

namespace {

constexpr int discSectors = 200;

class DamagedDisc : public ::testing::TestWithParam<bool> {
protected:
    DamagedDisc()
    {
        drive.audio = makeAudio(discSectors, 3);
        drive.c2Available = GetParam();
    }

    void rip(int rereads = 20)
    {
        run.ripDisc(folder.path(), rereads);
        ASSERT_EQ(run.finishedCount, 1);
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_TRUE(run.results[0].ok);
        audio = audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav")));
        ASSERT_EQ(audio.size(), drive.audio.size());
        ASSERT_EQ(run.sectors.size(), discSectors);
        quint32 errors = 0;
        quint32 suspects = 0;
        for (qsizetype lba = 0; lba < discSectors; ++lba) {
            const SectorResult& record = run.sectors[lba];
            ASSERT_EQ(record.lba, static_cast<quint32>(lba));
            errors += record.bad || record.mismatch;
            suspects += !record.bad && !record.mismatch && !record.clean;
        }
        EXPECT_EQ(run.results[0].errorSectors, errors);
        EXPECT_EQ(run.results[0].suspectSectors, suspects);
    }

    bool right(quint32 lba) const
    {
        const qsizetype start = qsizetype{lba} * RAW_SECTOR_BYTES;
        return audio.mid(start, RAW_SECTOR_BYTES) == drive.audio.mid(start, RAW_SECTOR_BYTES);
    }

    void expectOnlyTheTruthIsTrusted() const
    {
        for (const SectorResult& record : run.sectors) {
            if (!record.bad && !record.mismatch) {
                EXPECT_TRUE(right(record.lba)) << "sector " << record.lba;
            }
        }
    }

    QTemporaryDir folder;
    SimulatedDrive drive;
    DrivePlatformOverride platform{drive};
    RunRecorder run;
    QByteArray audio;
};

} // namespace

TEST_P(DamagedDisc, FlakySectorsAreRecovered)
{
    drive.mechanism.faults = {SectorFault::flaky(30, 45, 0.5)};
    rip();
    expectOnlyTheTruthIsTrusted();
    EXPECT_EQ(run.results[0].errorSectors, 0u);
    EXPECT_GE(run.results[0].suspectSectors, 5u) << "of 16 sectors, half of which fail at first";
}

TEST_P(DamagedDisc, ADeadSpotStaysUnconfirmedAndItsNeighboursAreRight)
{
    drive.mechanism.faults = {SectorFault::deadSpot(60, 62)};
    rip(4);
    for (quint32 lba = 0; lba < discSectors; ++lba) {
        const bool dead = lba >= 60 && lba <= 62;
        EXPECT_EQ(run.sectors[lba].bad, dead) << lba;
        EXPECT_EQ(right(lba), !dead) << lba;
    }
}

// A batch of 27 sectors fails as a whole, so what it costs of the sectors in
// front is those from which a batch reaches the unreadable ones.
TEST_P(DamagedDisc, UnreadableSectorsAreSilenceAndReported)
{
    drive.mechanism.faults = {SectorFault::unreadable(60, 62)};
    rip(2);
    expectOnlyTheTruthIsTrusted();
    for (quint32 lba = 60; lba <= 62; ++lba) {
        EXPECT_TRUE(run.sectors[lba].bad);
        EXPECT_EQ(audio.mid(lba * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES), QByteArray(RAW_SECTOR_BYTES, '\0'));
    }
    EXPECT_TRUE(run.sectors[63].clean);
    EXPECT_TRUE(run.sectors[53].clean) << "the last sector of the batch in front";
    EXPECT_EQ(run.results[0].errorSectors, 62u - 54 + 1);
}

TEST_P(DamagedDisc, AHangingRangeEndsInTheTimeOfTheLadder)
{
    drive.mechanism.faults = {SectorFault::hanging(57, 58)};
    rip(3);
    expectOnlyTheTruthIsTrusted();
    // Sectors 54 to 58, from which a batch reaches the range. Each is read by
    // the passes and re-read 3 times, with 35 attempts at a time and pauses of
    // 20 * 10 + 10 * 100 ms.
    constexpr int doubtful = 5;
    const int ladders = doubtful * (3 + (GetParam() ? 1 : 2));
    const double attempt = GetParam() ? 5.0 : 3.0;
    const double seconds = ladders * (35 * attempt + 1.2);
    const double taken = static_cast<double>(drive.nowNanoseconds()) / 1e9;
    EXPECT_GE(taken, seconds);
    EXPECT_LE(taken, seconds * 1.05 + 5);
    EXPECT_EQ(run.results[0].errorSectors, static_cast<quint32>(doubtful));
}

TEST_P(DamagedDisc, ShortAnswersAreFailedAttempts)
{
    drive.mechanism.faults = {SectorFault::shortAnswer(90, 92, 0.6)};
    rip();
    expectOnlyTheTruthIsTrusted();
    EXPECT_EQ(run.results[0].errorSectors, 0u);
}

// The pass goes on from the drive's memory, a re-read from afar does not.
TEST_P(DamagedDisc, WrongBytesInTheDrivesCacheAreNotBelieved)
{
    drive.mechanism.cacheSectors = 400;
    drive.mechanism.faults = {SectorFault::stale(100, 103, 0.5, 90)};
    rip();
    if (GetParam()) {
        expectOnlyTheTruthIsTrusted();
    } else {
        EXPECT_EQ(run.sectors.size(), discSectors) << "a disc within the cache is never read twice";
    }
}

TEST_P(DamagedDisc, ADriveThatDisappearsLeavesSilenceAndATrueReport)
{
    drive.commandsUntilGone = 12;
    rip(2);
    expectOnlyTheTruthIsTrusted();
    EXPECT_TRUE(run.sectors.constLast().bad);
    EXPECT_EQ(audio.last(RAW_SECTOR_BYTES), QByteArray(RAW_SECTOR_BYTES, '\0'));
}

INSTANTIATE_TEST_SUITE_P(Modes, DamagedDisc, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "C2" : "Compare"; });

TEST(LyingDrive, PointersThatAreAlwaysSetLeadToCompareMode)
{
    QTemporaryDir folder;
    SimulatedDrive drive;
    const DrivePlatformOverride platform(drive);
    drive.audio = makeAudio(100, 3);
    drive.c2 = SimulatedDrive::C2::AllSet;
    RunRecorder run;
    run.ripDisc(folder.path());
    EXPECT_TRUE(run.logLines.value(0).contains(QStringLiteral("double read & compare")));
    EXPECT_TRUE(audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav"))) == drive.audio);
}

// What C2 hides shows where the cross-check looks: at the first audio sector.
TEST(LyingDrive, PointersThatAreNeverSetAreFoundOutByTheCrossCheck)
{
    QTemporaryDir folder;
    SimulatedDrive drive;
    const DrivePlatformOverride platform(drive);
    drive.audio = makeAudio(100, 3);
    drive.c2 = SimulatedDrive::C2::NeverSet;
    drive.mechanism.faults = {SectorFault::flaky(0, 0, 1)};
    RunRecorder run;
    run.ripDisc(folder.path());
    EXPECT_TRUE(run.sectors.at(0).mismatch);
    EXPECT_EQ(run.results.at(0).errorSectors, 1u);
}

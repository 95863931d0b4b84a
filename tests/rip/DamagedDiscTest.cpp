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

TEST_P(DamagedDisc, UnreadableSectorsAreSilenceAndReportedAndNoOther)
{
    drive.mechanism.faults = {SectorFault::unreadable(60, 62)};
    rip();
    for (quint32 lba = 0; lba < discSectors; ++lba) {
        const bool hole = lba >= 60 && lba <= 62;
        EXPECT_EQ(run.sectors[lba].bad, hole) << lba;
        EXPECT_EQ(run.sectors[lba].clean, !hole) << lba;
        EXPECT_EQ(right(lba), !hole) << lba;
        if (hole) {
            EXPECT_EQ(audio.mid(lba * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES),
                      QByteArray(RAW_SECTOR_BYTES, '\0'));
        }
    }
}

TEST_P(DamagedDisc, HolesWhereTracksBeginAndEndCostThemselves)
{
    drive.tracks = {{0}, {100}};
    drive.mechanism.faults = {SectorFault::unreadable(0, 0), SectorFault::unreadable(99, 100),
                              SectorFault::unreadable(199, 199)};
    run.ripDisc(folder.path());
    ASSERT_EQ(run.results.size(), 2);
    EXPECT_EQ(run.results[0].errorSectors, 2u);
    EXPECT_EQ(run.results[1].errorSectors, 2u);
    audio = audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav")))
            + audioOfWave(folder.filePath(QStringLiteral("02. Track 2.wav")));
    for (quint32 lba = 0; lba < discSectors; ++lba)
        EXPECT_EQ(right(lba), lba != 0 && lba != 99 && lba != 100 && lba != 199) << lba;
}

TEST_P(DamagedDisc, AHoleTakesMinutes)
{
    drive.mechanism.faults = {SectorFault::unreadable(60, 62), SectorFault::unreadable(120, 120)};
    for (SectorFault& fault : drive.mechanism.faults)
        fault.nanoseconds = 2'000'000'000;
    rip();
    EXPECT_EQ(run.results[0].errorSectors, 4u);
    EXPECT_LE(static_cast<double>(drive.nowNanoseconds()) / 1e9, 4 * 120.0);
}

TEST_P(DamagedDisc, AHangingRangeTakesTheTimeOfItsLadders)
{
    drive.mechanism.faults = {SectorFault::hanging(57, 58)};
    rip();
    expectOnlyTheTruthIsTrusted();
    EXPECT_EQ(run.results[0].errorSectors, 2u);
    // The batch at 54 hangs 35 times; then 57 alone 15 times and once more, 58 a ladder and once more.
    const double attempt = GetParam() ? 5.0 : 3.0;
    const double seconds = (35 + 16 + 36) * attempt;
    const double taken = static_cast<double>(drive.nowNanoseconds()) / 1e9;
    EXPECT_GE(taken, seconds);
    EXPECT_LE(taken, seconds + 10);
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
        return;
    }
    // On a disc within the drive's memory both passes are one reading. The fault
    // then goes unseen, but keeps to its sectors.
    for (quint32 lba = 0; lba < discSectors; ++lba) {
        if (lba < 100 || lba > 103) {
            EXPECT_TRUE(right(lba)) << lba;
            EXPECT_TRUE(run.sectors[lba].clean) << lba;
        }
    }
}

TEST_P(DamagedDisc, ADriveThatDisappearsLeavesSilenceAndATrueReport)
{
    drive.commandsUntilGone = 6;
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

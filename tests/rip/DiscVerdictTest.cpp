#include <gtest/gtest.h>

#include "RunRecorder.h"
#include "ScriptedDrive.h"

namespace {

// What the scripts are about. A batch begins here, so that a failure of it does
// not take the sectors in front along.
constexpr quint32 doubtful = 27;

class DiscVerdict : public ::testing::Test {
protected:
    void rip(int rereads = 20) { run.ripDisc(folder.path(), rereads); }

    /// One sector of the only track, out of the WAV file.
    QByteArray ripped(quint32 lba) const
    {
        return audioOfWave(folder.filePath(QStringLiteral("01. Track 1.wav")))
            .mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    void expectVerdict(quint32 lba, bool bad, bool clean, int retries, bool mismatch, quint32 c2Errors)
    {
        const SectorResult& record = run.sectors.at(lba);
        EXPECT_EQ(record.lba, lba);
        EXPECT_EQ(record.bad, bad);
        EXPECT_EQ(record.clean, clean);
        EXPECT_EQ(record.retries, retries);
        EXPECT_EQ(record.mismatch, mismatch);
        EXPECT_EQ(record.c2Errors, c2Errors);
    }

    void expectCounts(quint32 errors, quint32 suspects)
    {
        ASSERT_EQ(run.results.size(), 1);
        EXPECT_TRUE(run.results[0].ok);
        EXPECT_EQ(run.results[0].errorSectors, errors);
        EXPECT_EQ(run.results[0].suspectSectors, suspects);
        EXPECT_EQ(run.sectors.size(), 150);
    }

    QTemporaryDir folder;
    ScriptedDrive disc{150};
    DrivePlatformOverride platform{disc};
    RunRecorder run;
};

class CompareVerdict : public DiscVerdict {
protected:
    CompareVerdict() { disc.c2Available = false; }
};

// The probe reads at sector 149, so the answers belong to the pass.
using C2Verdict = DiscVerdict;

} // namespace

TEST_F(C2Verdict, ASectorWithoutPointersIsGood)
{
    rip();
    expectVerdict(doubtful, false, true, 0, false, 0);
    expectCounts(0, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(C2Verdict, TwoEqualUnflaggedReadsRecoverAFlaggedSector)
{
    disc.script(doubtful, {{false, 3, 7}});
    rip();
    expectVerdict(doubtful, false, false, 2, false, 7);
    expectCounts(0, 1);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(C2Verdict, ReadsThatDifferAreOutvotedByEqualOnes)
{
    disc.script(doubtful, {{false, 3, 7}, {false, 1, 0}, {false, 2, 0}, {false, 3, 0}});
    rip();
    expectVerdict(doubtful, false, false, 5, false, 7);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(C2Verdict, OneRereadCannotConfirm)
{
    disc.script(doubtful, {{false, 3, 7}});
    rip(1);
    expectVerdict(doubtful, true, false, 1, false, 7);
    expectCounts(1, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful)) << "the one re-read is the best candidate";
}

TEST_F(C2Verdict, WithEveryRereadFlaggedTheMostFrequentIsKeptUnconfirmed)
{
    disc.script(doubtful, {{false, 9, 1}, {false, 1, 5}, {false, 4, 5}, {false, 2, 5}, {false, 4, 5}});
    rip(4);
    expectVerdict(doubtful, true, false, 4, false, 1);
    expectCounts(1, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.changed(doubtful, 4));
}

TEST_F(C2Verdict, WithEveryRereadEmptyThePassReadIsKeptUnconfirmed)
{
    disc.script(doubtful, {{false, 9, 2}});
    disc.failReads(doubtful, 3);
    rip(3);
    expectVerdict(doubtful, true, false, 3, false, 2);
    EXPECT_TRUE(ripped(doubtful) == disc.changed(doubtful, 9));
}

TEST_F(C2Verdict, ASectorThatIsNeverReadIsSilenceAndUnconfirmed)
{
    disc.failReads(doubtful, 1000);
    rip(2);
    expectVerdict(doubtful, true, false, 2, false, 0);
    EXPECT_EQ(ripped(doubtful), QByteArray(RAW_SECTOR_BYTES, '\0'));
    EXPECT_TRUE(ripped(doubtful + 1) == disc.truth(doubtful + 1)) << "its neighbours are read behind it";
    EXPECT_TRUE(ripped(doubtful - 1) == disc.truth(doubtful - 1));
}

// The first audio sector is the first that is cross-checked.
TEST_F(C2Verdict, TwoFreshReadsOutvoteAPassThatC2CalledClean)
{
    disc.script(0, {{false, 6, 0}});
    rip();
    expectVerdict(0, false, false, 0, true, 0);
    expectCounts(1, 0);
    EXPECT_TRUE(ripped(0) == disc.truth(0));
}

TEST_F(C2Verdict, AFailedCrossCheckWithoutAMajorityKeepsThePass)
{
    disc.script(0, {{false, 6, 0}, {false, 7, 0}, {false, 8, 0}});
    rip();
    expectVerdict(0, false, false, 0, true, 0);
    expectCounts(1, 0);
    EXPECT_TRUE(ripped(0) == disc.changed(0, 6));
}

TEST_F(C2Verdict, AThirdReadThatFailsKeepsThePass)
{
    disc.script(0, {{false, 6, 0}, {false, 7, 0}});
    disc.failReads(0, 1);
    rip();
    expectVerdict(0, false, false, 0, true, 0);
    EXPECT_TRUE(ripped(0) == disc.changed(0, 6));
}

TEST_F(C2Verdict, ACrossCheckWithoutACopyConcludesNothing)
{
    disc.script(0, {{false, 6, 0}});
    disc.failReads(0, 1);
    rip();
    expectVerdict(0, false, true, 0, false, 0);
    expectCounts(0, 0);
}

TEST_F(C2Verdict, ADoubtfulSectorIsNotCrossChecked)
{
    disc.script(0, {{false, 6, 4}});
    rip();
    expectVerdict(0, false, false, 2, false, 4);
    EXPECT_TRUE(ripped(0) == disc.truth(0));
}

TEST_F(CompareVerdict, EqualReadsAreGood)
{
    rip();
    expectVerdict(doubtful, false, true, 0, false, 0);
    expectCounts(0, 0);
}

// First and second read have one vote each, so the truth needs two more.
TEST_F(CompareVerdict, TwoRereadsThatEqualOneOfThePassesRecover)
{
    disc.script(doubtful, {{false, 5, 0}});
    rip();
    expectVerdict(doubtful, false, false, 2, false, 0);
    expectCounts(0, 1);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(CompareVerdict, ANewValueNeedsThreeReads)
{
    disc.script(doubtful, {{false, 5, 0}, {false, 6, 0}});
    rip();
    expectVerdict(doubtful, false, false, 3, false, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(CompareVerdict, OneRereadThatEqualsAPassIsChosenUnconfirmed)
{
    disc.script(doubtful, {{false, 5, 0}});
    rip(1);
    expectVerdict(doubtful, true, false, 1, false, 0);
    expectCounts(1, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(CompareVerdict, WithBothPassesFailedThreeEqualRereadsAreNeeded)
{
    disc.failReads(doubtful, 2);
    rip();
    expectVerdict(doubtful, false, false, 3, false, 0);
    EXPECT_TRUE(ripped(doubtful) == disc.truth(doubtful));
}

TEST_F(CompareVerdict, WithOnePassFailedTheOtherCounts)
{
    disc.failReads(doubtful, 1);
    rip();
    expectVerdict(doubtful, false, false, 2, false, 0);
    expectCounts(0, 1);
}

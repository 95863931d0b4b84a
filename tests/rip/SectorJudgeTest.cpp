#include "rip/SectorJudge.h"

#include "RecordingReport.h"
#include "ScriptedDrive.h"
#include "disc/CdDrive.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

// What the scripts are about. A batch begins here.
constexpr quint32 doubtful = 27;
// The probe of C2 stays away from what is judged.
constexpr quint32 probed = 120;

class SectorJudgeTest : public ::testing::Test {
protected:
    explicit SectorJudgeTest(bool c2)
    {
        mode.c2 = c2;
        EXPECT_TRUE(drive.open(disc.letter));
        EXPECT_FALSE(drive.readToc().tracks.isEmpty());
        if (c2)
            drive.setC2Enabled(drive.probeC2(probed));
        EXPECT_EQ(drive.c2Enabled(), c2);
    }

    /// Reads a sector by the passes of the mode and has it judged.
    void judge(quint32 lba, int rereads = 20)
    {
        QByteArray first;
        if (!mode.c2) {
            first = drive.readSector(lba);
            drive.flushDriveCache(lba);
        }
        data = drive.readSector(lba);
        record = SectorResult();
        record.lba = lba;
        record.c2Errors = mode.c2 ? drive.lastC2Errors() : 0;
        mode.rereadLimit = rereads;
        SectorJudge(drive, report, mode).judge(record, first, data);
    }

    void expectVerdict(bool bad, bool clean, int retries, bool mismatch) const
    {
        EXPECT_EQ(record.bad, bad);
        EXPECT_EQ(record.clean, clean);
        EXPECT_EQ(record.retries, retries);
        EXPECT_EQ(record.mismatch, mismatch);
    }

    ScriptedDrive disc{150};
    DrivePlatformOverride platform{disc};
    CdDrive drive;
    RecordingReport report;
    ReadMode mode;
    SectorResult record;
    QByteArray data; ///< what was kept
};

class C2Verdict : public SectorJudgeTest {
protected:
    C2Verdict() : SectorJudgeTest(true) {}
};

class CompareVerdict : public SectorJudgeTest {
protected:
    CompareVerdict() : SectorJudgeTest(false) {}
};

} // namespace

TEST_F(C2Verdict, ASectorWithoutPointersIsGood)
{
    judge(doubtful);
    expectVerdict(false, true, 0, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(C2Verdict, TwoEqualUnflaggedReadsRecoverAFlaggedSector)
{
    disc.script(doubtful, {{false, 3, 7}});
    judge(doubtful);
    expectVerdict(false, false, 2, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(C2Verdict, ReadsThatDifferAreOutvotedByEqualOnes)
{
    disc.script(doubtful, {{false, 3, 7}, {false, 1, 0}, {false, 2, 0}, {false, 3, 0}});
    judge(doubtful);
    expectVerdict(false, false, 5, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(C2Verdict, OneRereadCannotConfirm)
{
    disc.script(doubtful, {{false, 3, 7}});
    judge(doubtful, 1);
    expectVerdict(true, false, 1, false);
    EXPECT_TRUE(data == disc.truth(doubtful)) << "the one re-read is the best candidate";
}

TEST_F(C2Verdict, WithEveryRereadFlaggedTheMostFrequentIsKeptUnconfirmed)
{
    disc.script(doubtful, {{false, 9, 1}, {false, 1, 5}, {false, 4, 5}, {false, 2, 5}, {false, 4, 5}});
    judge(doubtful, 4);
    expectVerdict(true, false, 4, false);
    EXPECT_TRUE(data == disc.changed(doubtful, 4));
}

TEST_F(C2Verdict, WithEveryRereadEmptyThePassReadIsKeptUnconfirmed)
{
    disc.script(doubtful, {{false, 9, 2}});
    disc.failReads(doubtful, 3);
    judge(doubtful, 3);
    expectVerdict(true, false, 3, false);
    EXPECT_TRUE(data == disc.changed(doubtful, 9));
}

TEST_F(C2Verdict, ASectorThatIsNeverReadStaysEmptyAndUnconfirmed)
{
    disc.failReads(doubtful, 1000);
    judge(doubtful, 2);
    expectVerdict(true, false, 2, false);
    EXPECT_TRUE(data.isEmpty());
}

// The first audio sector is the first that is cross-checked.
TEST_F(C2Verdict, TwoFreshReadsOutvoteAPassThatC2CalledClean)
{
    disc.script(0, {{false, 6, 0}});
    judge(0);
    expectVerdict(false, false, 0, true);
    EXPECT_TRUE(data == disc.truth(0));
}

TEST_F(C2Verdict, AFailedCrossCheckWithoutAMajorityKeepsThePass)
{
    disc.script(0, {{false, 6, 0}, {false, 7, 0}, {false, 8, 0}});
    judge(0);
    expectVerdict(false, false, 0, true);
    EXPECT_TRUE(data == disc.changed(0, 6));
}

TEST_F(C2Verdict, AThirdReadThatFailsKeepsThePass)
{
    disc.script(0, {{false, 6, 0}, {false, 7, 0}});
    disc.failReads(0, 1);
    judge(0);
    expectVerdict(false, false, 0, true);
    EXPECT_TRUE(data == disc.changed(0, 6));
}

TEST_F(C2Verdict, ACrossCheckWithoutACopyConcludesNothing)
{
    disc.script(0, {{false, 6, 0}});
    disc.failReads(0, 1);
    judge(0);
    expectVerdict(false, true, 0, false);
}

TEST_F(C2Verdict, ADoubtfulSectorIsNotCrossChecked)
{
    disc.script(0, {{false, 6, 4}});
    judge(0);
    expectVerdict(false, false, 2, false);
    EXPECT_TRUE(data == disc.truth(0));
}

TEST_F(CompareVerdict, EqualReadsAreGood)
{
    judge(doubtful);
    expectVerdict(false, true, 0, false);
}

// First and second read have one vote each, so the truth needs two more.
TEST_F(CompareVerdict, TwoRereadsThatEqualOneOfThePassesRecover)
{
    disc.script(doubtful, {{false, 5, 0}});
    judge(doubtful);
    expectVerdict(false, false, 2, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(CompareVerdict, TheFirstPassHasAVoteToo)
{
    disc.script(doubtful, {{false, 0, 0}, {false, 5, 0}});
    judge(doubtful);
    expectVerdict(false, false, 2, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(CompareVerdict, ANewValueNeedsThreeReads)
{
    disc.script(doubtful, {{false, 5, 0}, {false, 6, 0}});
    judge(doubtful);
    expectVerdict(false, false, 3, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(CompareVerdict, OneRereadThatEqualsAPassIsChosenUnconfirmed)
{
    disc.script(doubtful, {{false, 5, 0}});
    judge(doubtful, 1);
    expectVerdict(true, false, 1, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(CompareVerdict, WithBothPassesFailedThreeEqualRereadsAreNeeded)
{
    disc.failReads(doubtful, 2);
    judge(doubtful);
    expectVerdict(false, false, 3, false);
    EXPECT_TRUE(data == disc.truth(doubtful));
}

TEST_F(CompareVerdict, WithOnePassFailedTheOtherCounts)
{
    disc.failReads(doubtful, 1);
    judge(doubtful);
    expectVerdict(false, false, 2, false);
}

TEST_F(C2Verdict, CrossChecksAreCountedFromTheFirstAudioSector)
{
    mode.firstAudioLba = doubtful;
    disc.script(doubtful, {{false, 6, 0}});
    disc.script(doubtful + 27, {{false, 6, 0}});
    const LogCapture log;
    judge(doubtful);
    expectVerdict(false, false, 0, true);
    judge(doubtful + 27);
    expectVerdict(false, true, 0, false);
    EXPECT_TRUE(data == disc.changed(doubtful + 27, 6)) << "nobody looked";
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("[RipWorker] Cross-check mismatch at LBA 27")});
}

TEST_F(CompareVerdict, TheFirstAudioSectorIsNotCrossChecked)
{
    const auto reads = [this] { return disc.count(SimulatedDrive::Command::Raw); };
    judge(0);
    const qsizetype first = reads();
    SectorJudge(drive, report, mode).judge(record, data, data);
    EXPECT_EQ(reads(), first);
}

TEST_F(C2Verdict, AStoppedRunReadsNothingAgain)
{
    disc.script(doubtful, {{false, 3, 7}});
    report.stop = true;
    judge(doubtful);
    EXPECT_EQ(disc.count(SimulatedDrive::Command::RawWithC2), 1 + 1) << "the probe and the pass";
    EXPECT_TRUE(record.bad);
    EXPECT_TRUE(data == disc.changed(doubtful, 3));
}

// What a hole in the disc costs, through CdDrive: commands, time and sectors.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Command = SimulatedDrive::Command;
constexpr qint64 second = 1'000'000'000;

class Hole : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(6000, 9);
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_FALSE(drive.readToc().tracks.isEmpty());
        if (GetParam()) {
            ASSERT_TRUE(drive.probeC2(5000));
            drive.setC2Enabled(true);
        }
        simulated.commands.clear();
    }

    void breakDisc(const SectorFault& fault, double failingReadSeconds = 2)
    {
        simulated.mechanism.faults.append(fault);
        simulated.mechanism.faults.last().nanoseconds = static_cast<qint64>(failingReadSeconds * 1e9);
    }

    bool right(quint32 lba, const QByteArray& sector) const
    {
        return sector == simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    /// Reads a stretch in order; the sectors that came out wrong or not at all.
    QList<quint32> failuresBetween(quint32 first, quint32 last)
    {
        QList<quint32> failed;
        for (quint32 lba = first; lba <= last; ++lba) {
            const QByteArray sector = drive.readSector(lba);
            if (sector.isEmpty())
                failed.append(lba);
            else
                EXPECT_TRUE(right(lba, sector)) << lba;
        }
        return failed;
    }

    QList<Command> readsOf(quint32 lba) const
    {
        QList<Command> found;
        std::copy_if(simulated.commands.cbegin(), simulated.commands.cend(), std::back_inserter(found),
                     [=](const Command& command) {
                         return (command.kind == Command::Raw || command.kind == Command::RawWithC2)
                                && command.lba <= lba && lba < command.lba + command.count;
                     });
        return found;
    }

    SimulatedDrive simulated;
    DrivePlatformOverride override{simulated};
    CdDrive drive;
};

} // namespace

TEST_P(Hole, CostsItselfWhereverItLies)
{
    struct Case {
        const char* name;
        QList<quint32> unreadable;
    };
    for (const Case& one : {Case{"one sector", {560}}, Case{"three in a batch", {560, 561, 562}},
                            Case{"a batch's first", {540}}, Case{"a batch's last", {566}},
                            Case{"across two batches", {565, 566, 567, 568}},
                            Case{"two in one batch", {545, 546, 560}}, Case{"a whole batch and more", [] {
                                                                                QList<quint32> all;
                                                                                for (quint32 lba = 550;
                                                                                     lba < 600; ++lba)
                                                                                    all.append(lba);
                                                                                return all;
                                                                            }()}}) {
        SCOPED_TRACE(one.name);
        simulated.mechanism.faults.clear();
        for (const quint32 lba : one.unreadable)
            breakDisc(SectorFault::unreadable(lba, lba));
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_FALSE(drive.readToc().tracks.isEmpty());
        const qint64 before = simulated.nowNanoseconds();
        EXPECT_EQ(failuresBetween(540, 700), one.unreadable);
        for (int turn = 0; turn < 20; ++turn) {
            for (const quint32 lba : one.unreadable)
                EXPECT_TRUE(drive.readSectorFresh(lba).isEmpty());
        }
        EXPECT_LE(simulated.nowNanoseconds() - before, one.unreadable.size() * 120 * second);
    }
}

TEST_P(Hole, ABatchThatFailsIsFollowedByItsFirstSectorAlone)
{
    breakDisc(SectorFault::unreadable(560, 560));
    EXPECT_TRUE(right(540, drive.readSector(540)));
    EXPECT_EQ(drive.lastRetries(), 35U) << "that is what brought it";
    const Command::Kind kind = GetParam() ? Command::RawWithC2 : Command::Raw;
    EXPECT_EQ(simulated.count(kind), 36);
    EXPECT_EQ(simulated.commands.constLast(), (Command{kind, 540, 1}));
    simulated.commands.clear();
    EXPECT_TRUE(right(541, drive.readSector(541)));
    EXPECT_EQ(drive.lastRetries(), 0U);
    EXPECT_EQ(simulated.commands, (QList<Command>{{kind, 541, 1}})) << "single sectors up to the batch's end";
}

TEST_P(Hole, BehindTheStretchBatchesAreWholeAgain)
{
    breakDisc(SectorFault::unreadable(560, 560));
    failuresBetween(540, 566);
    simulated.commands.clear();
    failuresBetween(567, 600);
    const Command::Kind kind = GetParam() ? Command::RawWithC2 : Command::Raw;
    EXPECT_EQ(simulated.commands, (QList<Command>{{kind, 567, 27}, {kind, 594, 27}}));
}

TEST_P(Hole, ASectorCalledUnreadableThroughALadderAndOnceMoreIsNotAskedForAgain)
{
    breakDisc(SectorFault::unreadable(560, 562));
    failuresBetween(540, 700);
    // The batch failed for 560: 35 attempts, and 15 alone; 561 and 562 had ladders of their own. Each had
    // one attempt more, for which the drive was sent far away.
    EXPECT_EQ(readsOf(560).size(), 35 + 15 + 1);
    EXPECT_EQ(readsOf(561).size(), 35 + 35 + 1);
    EXPECT_EQ(readsOf(562).size(), 35 + 35 + 1);
    for (const quint32 lba : {560U, 561U, 562U}) {
        const Command& far =
            simulated.commands.at(simulated.commands.lastIndexOf(readsOf(lba).constLast()) - 1);
        EXPECT_EQ(far.kind, Command::Raw);
        EXPECT_GE(far.lba > lba ? far.lba - lba : lba - far.lba, 2900U) << "this disc has 6000 sectors";
    }

    simulated.commands.clear();
    for (int turn = 0; turn < 50; ++turn) {
        for (const quint32 lba : {560U, 561U, 562U}) {
            EXPECT_TRUE(drive.readSectorFresh(lba).isEmpty());
            EXPECT_EQ(drive.lastRetries(), 35U);
            EXPECT_EQ(drive.lastC2Errors(), 0U);
        }
    }
    EXPECT_TRUE(simulated.commands.isEmpty()) << "not even a pause";
}

TEST_P(Hole, ASectorThatIsReadNowAndThenIsHad)
{
    for (quint32 lba = 560; lba < 580; ++lba)
        breakDisc(SectorFault::unreadable(lba, lba, 0.7));
    QList<quint32> lost = failuresBetween(540, 600);
    for (int turn = 0; turn < 20 && !lost.isEmpty(); ++turn)
        lost.removeIf([this](quint32 lba) { return right(lba, drive.readSectorFresh(lba)); });
    EXPECT_TRUE(lost.isEmpty());
}

TEST_P(Hole, HangingThroughALadderIsAWordToo)
{
    breakDisc(SectorFault::hanging(560, 560), 0);
    failuresBetween(540, 600);
    drive.readSectorFresh(560);
    simulated.commands.clear();
    const qint64 before = simulated.nowNanoseconds();
    EXPECT_TRUE(drive.readSectorFresh(560).isEmpty());
    EXPECT_TRUE(simulated.commands.isEmpty());
    EXPECT_EQ(simulated.nowNanoseconds(), before);
}

TEST_P(Hole, OpeningTheDriveForgetsWhatWasKnown)
{
    breakDisc(SectorFault::unreadable(560, 560));
    failuresBetween(540, 600);
    EXPECT_TRUE(drive.readSectorFresh(560).isEmpty());
    simulated.mechanism.faults.clear();
    EXPECT_TRUE(drive.readSectorFresh(560).isEmpty());
    ASSERT_TRUE(drive.open(simulated.letter));
    ASSERT_FALSE(drive.readToc().tracks.isEmpty());
    EXPECT_TRUE(right(560, drive.readSector(560)));
}

TEST_P(Hole, ASecondWayOverTheDiscStopsInFrontOfTheHole)
{
    breakDisc(SectorFault::unreadable(560, 560));
    failuresBetween(540, 600);
    drive.readSectorFresh(560);
    drive.flushDriveCache(540);
    simulated.commands.clear();
    EXPECT_EQ(failuresBetween(540, 600), QList<quint32>{560});
    EXPECT_EQ(simulated.commands.constFirst().count, 20U) << "540 to 559";
    for (const Command& command : std::as_const(simulated.commands))
        EXPECT_FALSE(command.lba <= 560 && 560 < command.lba + command.count);
}

// The batch of 27 fails 35 times, its first sector 15 times and then comes.
TEST_P(Hole, ASectorThatIsReadOnTheLastAttemptIsNotLost)
{
    DriveShim shim(simulated);
    const DrivePlatformOverride shimmed(shim);
    int failures = 50;
    const auto fail = [&failures](DriveReply& reply) {
        if (failures > 0 && failures-- > 0)
            reply = {false, 5, 0, DriveFailure::unreadable};
    };
    shim.onRaw = [&](quint32 lba, std::span<quint8>, bool guarded, DriveReply& reply) {
        if (guarded && lba == 560)
            fail(reply);
    };
    shim.onPassThrough = [&](std::span<const quint8> command, std::span<quint8>, DriveReply& reply) {
        if (command[4] == 560 / 256 && command[5] == 560 % 256)
            fail(reply);
    };
    ASSERT_TRUE(drive.open(simulated.letter));
    ASSERT_FALSE(drive.readToc().tracks.isEmpty());
    drive.setC2Enabled(GetParam() && drive.probeC2(5000));
    EXPECT_TRUE(drive.readSector(560).isEmpty());
    EXPECT_TRUE(right(560, drive.readSectorFresh(560)));
    EXPECT_EQ(drive.lastRetries(), 35U);
    EXPECT_EQ(failures, 0);
    EXPECT_TRUE(right(560, drive.readSectorFresh(560)));
    EXPECT_EQ(drive.lastRetries(), 0U);
}

INSTANTIATE_TEST_SUITE_P(Modes, Hole, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "C2" : "Compare"; });

class ProbeOnAHole : public ::testing::Test {
protected:
    ProbeOnAHole()
    {
        simulated.audio = makeAudio(600, 9);
        drive.open(simulated.letter);
        drive.readToc();
        simulated.commands.clear();
    }

    SimulatedDrive simulated;
    DrivePlatformOverride override{simulated};
    CdDrive drive;
};

TEST_F(ProbeOnAHole, TakesASectorBesideIt)
{
    simulated.mechanism.faults = {SectorFault::unreadable(155, 160)};
    EXPECT_TRUE(drive.probeC2(150));
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::RawWithC2, 150, 27},
                                                  {Command::RawWithC2, 150, 27},
                                                  {Command::RawWithC2, 150, 27},
                                                  {Command::RawWithC2, 150, 1}}));
    simulated.mechanism.faults = {SectorFault::hanging(150, 160)};
    EXPECT_TRUE(drive.probeC2(150));
    EXPECT_EQ(simulated.commands.constLast(), (Command{Command::RawWithC2, 163, 1}));
    simulated.mechanism.faults = {SectorFault::unreadable(150, 175)};
    EXPECT_TRUE(drive.probeC2(150));
    EXPECT_EQ(simulated.commands.constLast(), (Command{Command::RawWithC2, 176, 1}));
    simulated.mechanism.faults = {SectorFault::unreadable(150, 176)};
    EXPECT_FALSE(drive.probeC2(150));
}

TEST_F(ProbeOnAHole, JudgesTheOneSectorByItsOwnBits)
{
    simulated.mechanism.faults = {SectorFault::unreadable(155, 160)};
    simulated.c2 = SimulatedDrive::C2::AllSet;
    EXPECT_FALSE(drive.probeC2(150));
}

TEST_F(ProbeOnAHole, ADriveThatRefusesTheCommandIsAskedThreeTimes)
{
    simulated.c2Available = false;
    EXPECT_FALSE(drive.probeC2(150));
    EXPECT_EQ(simulated.commands, QList<Command>(3, {Command::RawWithC2, 150, 27}));
}

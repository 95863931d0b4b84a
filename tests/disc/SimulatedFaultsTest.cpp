// The damage that the simulated drive plays, and what its C2 pointers say of it.

#include "disc/DiscModel.h"
#include "support/DiscMaker.h"
#include "support/DriveProbe.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace {

constexpr qint64 second = 1'000'000'000;
using C2 = SimulatedDrive::C2;

class SimulatedFaults : public ::testing::Test {
protected:
    SimulatedFaults()
    {
        drive.audio = makeAudio(1000, 7);
        drive.commandNanoseconds = 0;
    }

    QByteArray onDisc(quint32 lba) const
    {
        return drive.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }
    QList<SectorFault>& faults() { return drive.mechanism.faults; }

    SimulatedDrive drive;
    DriveProbe probe{drive};
};

} // namespace

TEST_F(SimulatedFaults, AFlakySectorIsWrongNowAndThenAndNeverTwiceTheSame)
{
    faults() = {SectorFault::flaky(5, 5, 0.3)};
    QList<QByteArray> wrong;
    for (int i = 0; i < 1000; ++i) {
        const QByteArray audio = probe.read(5).audio;
        if (audio == onDisc(5))
            continue;
        EXPECT_EQ(differencesBetween(audio, onDisc(5)), 40);
        EXPECT_FALSE(wrong.contains(audio));
        wrong.append(audio);
    }
    // 1000 draws at 0.3: 300, with a standard deviation of 14.5.
    EXPECT_NEAR(static_cast<double>(wrong.size()), 300, 73);
    EXPECT_EQ(probe.read(4).audio, onDisc(4));
    EXPECT_EQ(probe.read(6).audio, onDisc(6));
}

TEST_F(SimulatedFaults, TheSeedSettlesEverything)
{
    faults() = {SectorFault::flaky(0, 99, 0.5)};
    SimulatedDrive twin;
    twin.audio = drive.audio;
    twin.mechanism.faults = faults();
    DriveProbe twinProbe(twin);
    const QByteArray ours = probe.read(0, 100).audio;
    EXPECT_EQ(twinProbe.read(0, 50).audio + twinProbe.read(50, 50).audio, ours);
    SimulatedDrive other;
    other.audio = drive.audio;
    other.mechanism.faults = faults();
    other.mechanism.seed = 2;
    EXPECT_NE(DriveProbe(other).read(0, 100).audio, ours);
}

TEST_F(SimulatedFaults, AStickySectorIsWrongInTheSameWay)
{
    faults() = {SectorFault::sticky(5, 5)};
    const DriveProbe::Answer first = probe.readWithC2(5);
    EXPECT_EQ(differencesBetween(first.audio, onDisc(5)), 40);
    EXPECT_EQ(probe.readWithC2(5).audio, first.audio);
    EXPECT_EQ(bitsIn(first.pointers), 40);
}

TEST_F(SimulatedFaults, VariantsAreTheOnlyWrongAnswers)
{
    faults() = {SectorFault::flaky(5, 5, 1)};
    faults()[0].variants = 2;
    QList<QByteArray> seen;
    for (int i = 0; i < 40; ++i) {
        const QByteArray audio = probe.read(5).audio;
        if (!seen.contains(audio))
            seen.append(audio);
    }
    EXPECT_EQ(seen.size(), 2);
}

TEST_F(SimulatedFaults, SilentErrorsPassAsSuccess)
{
    faults() = {SectorFault::silentlyFlaky(5, 5, 1), SectorFault::silentlySticky(6, 6)};
    for (const quint32 lba : {5U, 6U}) {
        const DriveProbe::Answer answer = probe.readWithC2(lba);
        EXPECT_TRUE(answer.ok);
        EXPECT_EQ(differencesBetween(answer.audio, onDisc(lba)), 40);
        EXPECT_EQ(bitsIn(answer.pointers), 0);
    }
    EXPECT_NE(probe.read(5).audio, probe.read(5).audio);
    EXPECT_EQ(probe.read(6).audio, probe.read(6).audio);
}

TEST_F(SimulatedFaults, AStaleAnswerComesAgainUntilTheHeadWasFarAway)
{
    faults() = {SectorFault::stale(500, 500, 1, 300)};
    const DriveProbe::Answer wrong = probe.readWithC2(500);
    EXPECT_EQ(differencesBetween(wrong.audio, onDisc(500)), 40);
    probe.readWithC2(700); // 200 away
    const DriveProbe::Answer again = probe.readWithC2(500);
    EXPECT_EQ(again.audio, wrong.audio);
    EXPECT_EQ(again.pointers, wrong.pointers);
    probe.readWithC2(800); // 300 away
    EXPECT_NE(probe.readWithC2(500).audio, wrong.audio);
}

TEST_F(SimulatedFaults, AnUnreadableSectorFailsItsWholeCommand)
{
    faults() = {SectorFault::unreadable(20, 20)};
    const DriveProbe::Answer answer = probe.read(0, 27);
    EXPECT_FALSE(answer.ok);
    EXPECT_EQ(answer.error, EIO);
    EXPECT_EQ(drive.nowNanoseconds(), second);
    EXPECT_TRUE(probe.read(0, 20).ok);
    EXPECT_TRUE(probe.read(21, 27).ok);
}

TEST_F(SimulatedFaults, ADeadSpotIsNoiseThatC2KnowsOf)
{
    faults() = {SectorFault::deadSpot(20, 20)};
    const DriveProbe::Answer answer = probe.readWithC2(20);
    EXPECT_TRUE(answer.ok);
    EXPECT_EQ(differencesBetween(answer.audio, onDisc(20)), RAW_SECTOR_BYTES);
    EXPECT_EQ(bitsIn(answer.pointers), RAW_SECTOR_BYTES);
    EXPECT_NE(probe.read(20).audio, answer.audio);
    EXPECT_EQ(drive.nowNanoseconds(), 2 * second);
}

TEST_F(SimulatedFaults, AHangingReadLastsUntilItsTimeLimit)
{
    faults() = {SectorFault::hanging(20, 20)};
    EXPECT_EQ(probe.read(20).error, ECANCELED);
    EXPECT_EQ(drive.nowNanoseconds(), 3 * second);
    EXPECT_EQ(probe.readWithC2(0, 27).error, ETIMEDOUT);
    EXPECT_EQ(drive.nowNanoseconds(), 8 * second);
    EXPECT_EQ(probe.read(20, 1, false).error, EIO);
    EXPECT_EQ(drive.nowNanoseconds(), 38 * second);
}

TEST_F(SimulatedFaults, AShortAnswerIsNoSuccess)
{
    faults() = {SectorFault::shortAnswer(20, 20)};
    const DriveProbe::Answer answer = probe.read(18, 4);
    EXPECT_FALSE(answer.ok);
    EXPECT_EQ(answer.audio, onDisc(18) + onDisc(19) + QByteArray(2 * RAW_SECTOR_BYTES, '\0'));
    EXPECT_EQ(drive.sectorsTransferred, 2U);
}

TEST_F(SimulatedFaults, AFailureThatComesAndGoesLetsSomeReadsPass)
{
    faults() = {SectorFault::unreadable(20, 20, 0.5)};
    int failed = 0;
    for (int i = 0; i < 1000; ++i)
        failed += probe.read(20).ok ? 0 : 1;
    EXPECT_NEAR(failed, 500, 80); // a standard deviation is 15.8
}

TEST_F(SimulatedFaults, HonestPointersNameTheWrongBytes)
{
    faults() = {SectorFault::flaky(5, 5, 1)};
    const DriveProbe::Answer answer = probe.readWithC2(5);
    for (qsizetype i = 0; i < RAW_SECTOR_BYTES; ++i) {
        const bool flagged = (static_cast<quint8>(answer.pointers[i / 8]) & (0x80 >> (i % 8))) != 0;
        EXPECT_EQ(flagged, answer.audio[i] != onDisc(5)[i]) << i;
    }
    EXPECT_EQ(bitsIn(probe.readWithC2(6).pointers), 0);
}

TEST_F(SimulatedFaults, PointersCanBeAbsentWholesaleOrMissing)
{
    faults() = {SectorFault::flaky(5, 5, 1)};
    drive.c2 = C2::AllSet;
    EXPECT_EQ(bitsIn(probe.readWithC2(6).pointers), RAW_SECTOR_BYTES);
    drive.c2 = C2::NeverSet;
    EXPECT_EQ(bitsIn(probe.readWithC2(5).pointers), 0);
    drive.c2Available = false;
    EXPECT_FALSE(probe.readWithC2(6).ok);
    EXPECT_TRUE(probe.read(6).ok);
}

TEST_F(SimulatedFaults, NoisyPointersAlarmAtTheirRate)
{
    drive.c2 = C2::Noisy;
    drive.c2NoiseRate = 0.1;
    int alarms = 0;
    for (quint32 lba = 0; lba < 1000; ++lba) {
        const DriveProbe::Answer answer = probe.readWithC2(lba);
        EXPECT_EQ(answer.audio, onDisc(lba));
        alarms += bitsIn(answer.pointers);
    }
    EXPECT_NEAR(alarms, 100, 48); // a standard deviation is 9.5
}

TEST_F(SimulatedFaults, PartiallyHonestPointersMissSomeWrongBytes)
{
    faults() = {SectorFault::flaky(0, 99, 1)};
    drive.c2 = C2::PartiallyHonest;
    drive.c2MissRate = 0.75;
    // 100 sectors of 40 wrong bytes, a quarter of them flagged: 1000, standard deviation 27.4.
    EXPECT_NEAR(bitsIn(probe.readWithC2(0, 100).pointers), 1000, 137);
}

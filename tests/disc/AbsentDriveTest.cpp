// A drive that is unplugged, or emptied, in the middle of a run: no ladder for each
// of the sectors that are left.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

namespace {

using Command = SimulatedDrive::Command;
constexpr qint64 second = 1'000'000'000;

class AbsentDrive : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(3000, 9);
        const auto answer = [this](DriveReply& reply) {
            if (failure != DriveFailure::unknown)
                reply = {false, 5, 0, failure};
        };
        shim.onRaw = [answer](quint32, std::span<quint8>, bool, DriveReply& reply) { answer(reply); };
        shim.onPassThrough = [answer](std::span<const quint8>, std::span<quint8>, DriveReply& reply) {
            answer(reply);
        };
        ASSERT_TRUE(drive.open(simulated.letter));
        ASSERT_FALSE(drive.readToc().tracks.isEmpty());
        if (GetParam()) {
            ASSERT_TRUE(drive.probeC2(1500));
            drive.setC2Enabled(true);
        }
        simulated.commands.clear();
    }

    QByteArray truth(quint32 lba) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES);
    }

    /// Commands of one read that fails.
    qsizetype commandsOf(quint32 lba)
    {
        simulated.commands.clear();
        EXPECT_TRUE(drive.readSector(lba).isEmpty());
        EXPECT_EQ(drive.lastRetries(), 35U);
        return simulated.commands.size();
    }

    // 35 reads, 20 seeks and 30 pauses, and the sector alone.
    static constexpr qsizetype wholeLadder = 35 + 20 + 30 + 1;

    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    CdDrive drive;
    DriveFailure failure = DriveFailure::unknown; ///< of the reads to come; unknown: they are carried out
};

} // namespace

TEST_P(AbsentDrive, IsAskedOnceForASectorWhenItHasBeenAwayForHalfAMinute)
{
    failure = DriveFailure::notReady;
    EXPECT_EQ(commandsOf(100), wholeLadder);
    EXPECT_EQ(commandsOf(200), wholeLadder) << "a drive that looks for its disc again is waited for";
    simulated.sleepMilliseconds(30'000);
    const qint64 before = simulated.nowNanoseconds();
    for (quint32 lba = 300; lba < 1300; ++lba)
        EXPECT_EQ(commandsOf(lba), 1);
    EXPECT_LT(simulated.nowNanoseconds() - before, 10 * second);
}

TEST_P(AbsentDrive, IsAskedThroughTheWholeFirstLadderHoweverLongThatTakes)
{
    simulated.commandNanoseconds = second;
    failure = DriveFailure::notReady;
    EXPECT_EQ(commandsOf(100), wholeLadder);
    EXPECT_EQ(commandsOf(200), 1);
}

TEST_P(AbsentDrive, IsWaitedForWithWholeLaddersUntilThen)
{
    failure = DriveFailure::notReady;
    const qint64 before = simulated.nowNanoseconds();
    quint32 lba = 100;
    while (commandsOf(lba) > 1)
        lba += 27;
    EXPECT_GE(simulated.nowNanoseconds() - before, 30 * second);
    EXPECT_LE(simulated.nowNanoseconds() - before, 35 * second);
}

TEST_P(AbsentDrive, IsReadAsBeforeWhenItIsBack)
{
    failure = DriveFailure::notReady;
    commandsOf(100);
    simulated.sleepMilliseconds(30'000);
    EXPECT_EQ(commandsOf(200), 1);
    failure = DriveFailure::unknown;
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 0U);
    failure = DriveFailure::notReady;
    EXPECT_EQ(commandsOf(400), wholeLadder);
}

TEST_P(AbsentDrive, IsAskedThroughAWholeLadderOnceItSaysAnythingElse)
{
    quint32 lba = 0;
    for (const DriveFailure other :
         {DriveFailure::unreadable, DriveFailure::timedOut, DriveFailure::becomingReady}) {
        failure = DriveFailure::notReady;
        commandsOf(lba += 300);
        simulated.sleepMilliseconds(30'000);
        EXPECT_EQ(commandsOf(lba += 300), 1);
        failure = other;
        EXPECT_EQ(commandsOf(lba += 300), wholeLadder) << static_cast<int>(other);
    }
}

TEST_P(AbsentDrive, IsForgottenWhenTheDriveIsOpenedAgain)
{
    failure = DriveFailure::notReady;
    commandsOf(100);
    simulated.sleepMilliseconds(30'000);
    EXPECT_EQ(commandsOf(200), 1);
    ASSERT_TRUE(drive.open(simulated.letter));
    EXPECT_EQ(commandsOf(300), wholeLadder);
}

INSTANTIATE_TEST_SUITE_P(Modes, AbsentDrive, ::testing::Bool(),
                         [](const auto& mode) { return mode.param ? "C2" : "Compare"; });

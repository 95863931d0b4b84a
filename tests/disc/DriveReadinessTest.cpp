// A drive that has just been given its disc.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/LoadingDrive.h"
#include "support/LogCapture.h"

#include <gtest/gtest.h>

namespace {

using Command = SimulatedDrive::Command;

class DriveReadiness : public ::testing::Test {
protected:
    void SetUp() override
    {
        simulated.audio = makeAudio(700, 3);
        simulated.commandNanoseconds = 0;
        ASSERT_TRUE(drive.open(simulated.letter));
    }

    /// So many checks with a pause in between.
    static QList<Command> checks(int count)
    {
        QList<Command> commands{{Command::Verify}};
        for (int i = 1; i < count; ++i)
            commands << Command{Command::Sleep, 250} << Command{Command::Verify};
        return commands;
    }

    SimulatedDrive simulated;
    LoadingDrive loading{simulated};
    DrivePlatformOverride override{loading};
    CdDrive drive;
};

} // namespace

TEST_F(DriveReadiness, ADriveThatIsReadyIsAskedOnceAndNotWaitedFor)
{
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Verify}, {Command::Toc}}));
}

TEST_F(DriveReadiness, ADriveThatNeedsThreeSecondsIsWaitedForAndThenRead)
{
    loading.load(3);
    const LogCapture log;
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(simulated.commands, checks(13) << Command{Command::Toc}) << "3000 ms are 12 pauses of 250";
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST_F(DriveReadiness, ADriveThatNeedsTenSecondsIsJustRead)
{
    loading.load(10);
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(simulated.commands, checks(41) << Command{Command::Toc});
}

TEST_F(DriveReadiness, TenSecondsAreTheMostInAllFiveTries)
{
    loading.load(60);
    const LogCapture log;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    QList<Command> expected = checks(41) << Command{Command::Toc};
    for (int attempt = 2; attempt <= 5; ++attempt)
        expected << Command{Command::Sleep, 300} << Command{Command::Verify} << Command{Command::Toc};
    EXPECT_EQ(simulated.commands, expected);
    EXPECT_EQ(simulated.nowNanoseconds(), 11'200'000'000) << "and four pauses of 300 ms";
    EXPECT_EQ(log.warnings().size(), 6);
}

TEST_F(DriveReadiness, TheNextReadWaitsAnew)
{
    loading.load(60);
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    loading.load(3);
    simulated.commands.clear();
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(simulated.commands, checks(13) << Command{Command::Toc});
}

TEST_F(DriveReadiness, CommandsThatTakeTheirTimeCountToo)
{
    simulated.commandNanoseconds = 1'000'000'000;
    loading.load(60);
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    const qsizetype firstToc = simulated.commands.indexOf(Command{Command::Toc});
    // The first answer comes at 1.00 s, the ninth at 11.00 s.
    EXPECT_EQ(simulated.commands.first(firstToc), checks(9));
}

TEST_F(DriveReadiness, OtherRefusalsAreNotWaitedFor)
{
    for (const DriveFailure failure :
         {DriveFailure::notReady, DriveFailure::unknown, DriveFailure::unreadable, DriveFailure::timedOut}) {
        loading.failure = failure;
        loading.load(60);
        simulated.commands.clear();
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(simulated.commands.first(3),
                  (QList<Command>{{Command::Verify}, {Command::Toc}, {Command::Sleep, 300}}));
        EXPECT_EQ(simulated.count(Command::Verify), 5);
    }
}

TEST_F(DriveReadiness, ATableThatDoesNotComeHasItsReason)
{
    for (const DriveFailure failure : {DriveFailure::becomingReady, DriveFailure::notReady,
                                       DriveFailure::unreadable, DriveFailure::unknown}) {
        loading.failure = failure;
        loading.load(60);
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(drive.tocFailure(), failure);
    }
}

TEST_F(DriveReadiness, WhatTheDriveSaysOfItsReadinessIsTheReasonBeforeWhatItSaysOfTheTable)
{
    loading.onVerify = [](DriveReply& reply) { reply = {false, 123, 0, DriveFailure::notReady}; };
    loading.onToc = [](std::span<quint8, 804>, DriveReply& reply) {
        reply = {false, 22, 0, DriveFailure::unreadable};
    };
    const LogCapture log;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_EQ(drive.tocFailure(), DriveFailure::notReady);
    loading.onVerify = nullptr;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_EQ(drive.tocFailure(), DriveFailure::unreadable) << "it is ready";
}

TEST_F(DriveReadiness, ADriveThatRefusesItsTableAndThenBecomesReadyIsWaitedForInALaterTry)
{
    int checksAnswered = 0;
    loading.load(4);
    const auto refuse = loading.onVerify;
    loading.onVerify = [&](DriveReply& reply) {
        if (++checksAnswered == 1)
            reply = {false, 11, 0, DriveFailure::notReady}; // the disc has been changed
        else
            refuse(reply);
    };
    const LogCapture log;
    EXPECT_EQ(drive.readToc().tracks.size(), 1);
    EXPECT_EQ(simulated.commands.first(4),
              (QList<Command>{{Command::Verify}, {Command::Toc}, {Command::Sleep, 300}, {Command::Verify}}));
    EXPECT_EQ(simulated.count(Command::Toc), 2);
}

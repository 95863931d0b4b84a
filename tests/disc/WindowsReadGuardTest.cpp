// Reads that hang: who cancels them, and how. Each lasts the three seconds of the
// watchdog.

#include "disc/CdDrive.h"
#include "support/LogCapture.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class WindowsReadGuard : public WindowsDrive {
protected:
    void SetUp() override
    {
        device = platform.open(letter);
        ASSERT_NE(device, nullptr);
        system.requests.clear();
    }

    DriveReply read(quint32 lba, bool guarded)
    {
        data.assign(RAW_SECTOR_BYTES, 0);
        return device->readRaw(lba, 1, data, guarded);
    }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> data;
};

QStringList lineOf(quint32 lba)
{
    return {QStringLiteral("[CdDrive] Sector %1 unresponsive after 3000 ms, cancelling I/O").arg(lba)};
}

} // namespace

TEST_F(WindowsReadGuard, AReadThatHangsIsSaidAndCancelledOnItsOwnThread)
{
    system.faults = {WindowsFault::hang()};
    const LogCapture log;
    QStringList saidBefore;
    DWORD cancelledFrom = 0;
    system.onCancel = [&] {
        saidBefore = log.lines();
        cancelledFrom = GetCurrentThreadId();
    };
    const DriveReply reply = read(123, true);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, 995);
    EXPECT_EQ(reply.failure, DriveFailure::timedOut);
    EXPECT_EQ(reply.transferred, 0U);
    EXPECT_EQ(saidBefore, lineOf(123)) << "before the cancel";
    EXPECT_EQ(log.lines(), lineOf(123)) << "and never again";

    const DWORD thisThread = GetCurrentThreadId();
    ASSERT_EQ(system.threadsOpened.size(), 1);
    EXPECT_EQ(system.threadsOpened[0].access, 1U) << "THREAD_TERMINATE";
    EXPECT_FALSE(system.threadsOpened[0].inherited);
    EXPECT_EQ(system.threadsOpened[0].thread, thisThread);
    EXPECT_NE(cancelledFrom, thisThread);
    EXPECT_EQ(system.cancels, 1);
    EXPECT_EQ(system.openHandles(), 1) << "the device's alone: the thread's is closed";
}

TEST_F(WindowsReadGuard, AThreadThatCannotBeOpenedIsLeftAloneWithoutAWord)
{
    system.faults = {WindowsFault::hang()};
    system.openThreadError = ERROR_ACCESS_DENIED;
    const LogCapture log;
    const DriveReply reply = read(77, true);
    EXPECT_TRUE(reply.delivered(RAW_SECTOR_BYTES)) << "the read has ended by itself";
    EXPECT_EQ(system.threadsOpened.size(), 1);
    EXPECT_EQ(system.cancels, 0);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(system.openHandles(), 1);
}

TEST_F(WindowsReadGuard, AReadThatHangsIsOneFailedAttemptOfADrive)
{
    const DrivePlatformOverride override{platform};
    CdDrive drive;
    ASSERT_TRUE(drive.open(letter));
    system.requests.clear();
    system.faults = {WindowsFault::hang()};
    const LogCapture log;
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_EQ(log.lines(), lineOf(300));
    EXPECT_EQ(system.requests.size(), 2);
    EXPECT_TRUE(platform.sleeps.isEmpty());
}

TEST_F(WindowsReadGuard, AReadThatEndsInTimeIsNotTouched)
{
    const LogCapture log;
    EXPECT_TRUE(read(5, true).ok);
    system.faults = {WindowsFault::withError(995)};
    EXPECT_EQ(read(5, true).errorNumber, 995) << "cancelled by somebody else";
    EXPECT_TRUE(system.threadsOpened.isEmpty());
    EXPECT_EQ(system.cancels, 0);
    EXPECT_TRUE(log.lines().isEmpty());
}

// The mechanism is told of a guarded read by its number of a thread being asked for.
TEST_F(WindowsReadGuard, OnlyReadsOfTheWantedSectorsAreWatched)
{
    using Command = SimulatedDrive::Command;
    simulated.commands.clear();
    const DriveReply watched = read(40, true);
    const DriveReply unwatched = read(41, false);
    EXPECT_TRUE(watched.ok && unwatched.ok);
    EXPECT_EQ(simulated.commands, (QList<Command>{{Command::Raw, 40, 1}, {Command::SeekRead, 41, 1}}));
}

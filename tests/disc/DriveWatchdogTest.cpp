#include "disc/DriveWatchdog.h"

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/LogCapture.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <memory>

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

/// A read that ends at a moment of a clock that only the waiting turns.
class TimedReadEnd : public ReadEnd {
public:
    explicit TimedReadEnd(int endsAfterMs) : endsAt(endsAfterMs) {}

    bool within(milliseconds time) override
    {
        longestStep = std::max(longestStep, time);
        now += time;
        return now >= endsAt;
    }

    milliseconds endsAt;
    milliseconds now{0};
    milliseconds longestStep{0};
};

/// A drive whose first guarded reads hang until the watchdog cancels them.
class HangingDevice : public DriveDevice {
public:
    HangingDevice(std::unique_ptr<DriveDevice> below, int hangingReads)
        : device(std::move(below)), hangs(hangingReads)
    {
    }

    DriveReply checkVerify() override { return device->checkVerify(); }
    DriveReply readToc(std::span<quint8, 804> table) override { return device->readToc(table); }
    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override;
    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override
    {
        return device->passThrough(command, data);
    }
    std::optional<DriveDescriptor> descriptor() override { return device->descriptor(); }

private:
    std::unique_ptr<DriveDevice> device;
    int hangs;
};

class HangingPlatform : public SimulatedDrive {
public:
    std::unique_ptr<DriveDevice> open(const QString& name) override
    {
        return std::make_unique<HangingDevice>(SimulatedDrive::open(name), hangingReads);
    }

    int hangingReads = 0;
};

/// A read that blocks until another thread cancels it.
class BlockedRead {
public:
    void cancel(const BeforeCancelling& beforeCancelling)
    {
        beforeCancelling();
        cancelled.signal();
    }
    /// True when it was cancelled rather than left alone.
    bool run() { return cancelled.within(milliseconds(20000)); }

private:
    ReadEnd cancelled;
};

DriveReply HangingDevice::readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded)
{
    if (!guarded)
        return device->readRaw(lba, count, data, guarded);
    BlockedRead read;
    const ReadGuard guard([&read](const BeforeCancelling& before) { read.cancel(before); }, lba);
    if (hangs-- > 0)
        return {!read.run(), ECANCELED, 0};
    return device->readRaw(lba, count, data, guarded);
}

} // namespace

TEST(DriveWatchdog, AReadThatEndsJustBelowTheTimeOutIsNotCancelled)
{
    const LogCapture log;
    TimedReadEnd end(2999);
    driveWatchdog(
        end, [](const BeforeCancelling&) { ADD_FAILURE() << "cancelled"; }, 7);
    EXPECT_TRUE(log.warnings().isEmpty());
    EXPECT_LE(end.longestStep, milliseconds(50));
}

TEST(DriveWatchdog, AReadThatEndsJustAboveTheTimeOutIsCancelledOnce)
{
    const LogCapture log;
    TimedReadEnd end(3001);
    int cancels = 0;
    driveWatchdog(
        end,
        [&](const BeforeCancelling& beforeCancelling) {
            EXPECT_TRUE(log.warnings().isEmpty()) << "said by the cancel, right before it";
            beforeCancelling();
            EXPECT_EQ(log.warnings().size(), 1);
            ++cancels;
        },
        123456);
    EXPECT_EQ(cancels, 1);
    EXPECT_EQ(end.now, milliseconds(3000));
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral(
                                  "[CdDrive] Sector 123456 unresponsive after 3000 ms, cancelling I/O")});
}

TEST(DriveWatchdog, WithoutAThreadToCancelNothingIsLogged)
{
    const LogCapture log;
    TimedReadEnd end(60000);
    int asked = 0;
    driveWatchdog(
        end, [&asked](const BeforeCancelling&) { ++asked; }, 1);
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST(DriveWatchdog, AReadThatHadEndedBeforeTheWatchBeganStopsItAtOnce)
{
    ReadEnd end;
    end.signal();
    const auto started = Clock::now();
    driveWatchdog(
        end, [](const BeforeCancelling&) { ADD_FAILURE() << "cancelled"; }, 1);
    EXPECT_LT(Clock::now() - started, milliseconds(1500)) << "half of the time out";
}

TEST(ReadGuard, AHundredShortReadsAreNotMadeToWaitForASingleStep)
{
    const auto started = Clock::now();
    for (quint32 lba = 0; lba < 100; ++lba)
        const ReadGuard guard([](const BeforeCancelling&) { ADD_FAILURE() << "cancelled"; }, lba);
    // Polling in steps of 50 ms would take up to 5 s.
    EXPECT_LT(Clock::now() - started, milliseconds(2500));
}

TEST(ReadGuard, ABlockedReadIsCancelledAfterThreeSecondsFromAnotherThread)
{
    const LogCapture log;
    BlockedRead read;
    std::atomic<std::thread::id> cancelledFrom;
    const auto started = Clock::now();
    bool cancelled = false;
    {
        const ReadGuard guard(
            [&](const BeforeCancelling& beforeCancelling) {
                cancelledFrom = std::this_thread::get_id();
                read.cancel(beforeCancelling);
            },
            4711);
        cancelled = read.run();
    }
    EXPECT_TRUE(cancelled);
    EXPECT_GE(Clock::now() - started, milliseconds(3000));
    EXPECT_LT(Clock::now() - started, milliseconds(10000));
    EXPECT_NE(cancelledFrom.load(), std::this_thread::get_id());
    EXPECT_EQ(log.warnings(), QStringList{QStringLiteral(
                                  "[CdDrive] Sector 4711 unresponsive after 3000 ms, cancelling I/O")});
}

TEST(ReadGuard, AHungReadOfADriveIsOneFailedAttemptAndTheNextDeliversTheSector)
{
    HangingPlatform platform;
    platform.hangingReads = 1;
    const DrivePlatformOverride override(platform);
    platform.audio = makeAudio(100, 5);
    CdDrive drive;
    ASSERT_TRUE(drive.open(platform.letter));
    const LogCapture log;
    EXPECT_EQ(drive.readSector(40), platform.audio.mid(40 * RAW_SECTOR_BYTES, RAW_SECTOR_BYTES));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("[CdDrive] Sector 40 unresponsive after 3000 ms, cancelling I/O")});
}

TEST(ReadGuard, AReadThatFailsAtOnceLeavesTheWatchdogNothingToDo)
{
    HangingPlatform platform;
    const DrivePlatformOverride override(platform);
    platform.audio = makeAudio(100, 5);
    platform.failingReads = 5;
    CdDrive drive;
    ASSERT_TRUE(drive.open(platform.letter));
    const LogCapture log;
    const auto started = Clock::now();
    EXPECT_FALSE(drive.readSector(40).isEmpty());
    EXPECT_LT(Clock::now() - started, milliseconds(3000));
    EXPECT_EQ(drive.lastRetries(), 5U);
    EXPECT_TRUE(log.lines().isEmpty());
}

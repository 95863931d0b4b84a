#include "disc/CdDrive.h"
#include "support/LogCapture.h"
#include "support/SgIoDrive.h"

#include <gtest/gtest.h>

namespace {

/// A drive that has just been given its disc, over the kernel's requests.
class LinuxReadiness : public SgIoDrive {
protected:
    SgIoFault becomingReadyFor(qint64 seconds)
    {
        return SgIoFault::checkCondition(2, 4, 1).whileSo(
            [this, seconds] { return platform.nowNanoseconds() < seconds * 1'000'000'000; });
    }

    DrivePlatformOverride override{platform};
    CdDrive drive;
};

} // namespace

TEST_F(LinuxReadiness, ADriveThatSpinsUpForThreeSecondsHasATable)
{
    ASSERT_TRUE(drive.open(devicePath));
    system.faults = {becomingReadyFor(3)};
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    EXPECT_EQ(platform.sleeps, QList<int>(12, 250));
    EXPECT_EQ(system.requests.size(), 14) << "13 checks and the table";
}

TEST_F(LinuxReadiness, AChangedDiscIsToldFirstAndThenWaitedFor)
{
    ASSERT_TRUE(drive.open(devicePath));
    system.faults = {SgIoFault::checkCondition(6, 0x28, 0), becomingReadyFor(3)};
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    EXPECT_EQ(platform.sleeps, QList<int>{300} + QList<int>(11, 250)) << "300 + 11 * 250 = 3050 ms";
}

TEST_F(LinuxReadiness, NoDiscAndADriveThatNeedsAHandAreNotWaitedFor)
{
    ASSERT_TRUE(drive.open(devicePath));
    for (const auto& [code, qualifier] : {std::pair{0x3A, 0}, {0x3A, 1}, {0x04, 0}, {0x04, 2}, {0x04, 3}}) {
        platform.sleeps.clear();
        system.faults = {SgIoFault::checkCondition(2, code, qualifier).forever()};
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(platform.sleeps, QList<int>(4, 300));
    }
}

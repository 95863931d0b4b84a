#include "disc/CdDrive.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

TEST(DriveList, ComesFromThePlatform)
{
    SimulatedDrive platform;
    const DrivePlatformOverride override(platform);
    EXPECT_EQ(CdDrive::enumerateDrives(), QStringList{platform.letter});
}

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

TEST(PhysicalToc, TracksFollowTheTable)
{
    SimulatedDrive platform;
    const DrivePlatformOverride override(platform);
    platform.audio = makeAudio(700, 3);
    platform.tracks = {{0, false}, {74, false}, {300, true}};
    CdDrive drive;
    ASSERT_TRUE(drive.open(platform.letter));
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 3);
    EXPECT_EQ(disc.totalSectors, 700U);
    EXPECT_EQ(disc.tracks[0].endLba, 73U);
    EXPECT_EQ(disc.tracks[0].seconds, 0) << "74 sectors are less than a second";
    EXPECT_EQ(disc.tracks[1].startLba, 74U);
    EXPECT_EQ(disc.tracks[1].seconds, 3);
    EXPECT_TRUE(disc.tracks[2].isData);
    EXPECT_EQ(disc.tracks[2].endLba, 699U);
    EXPECT_FALSE(disc.isImage);
}

TEST(PhysicalToc, ADriveThatIsNotThereDoesNotOpen)
{
    SimulatedDrive platform;
    const DrivePlatformOverride override(platform);
    CdDrive drive;
    EXPECT_FALSE(drive.open(QStringLiteral("/dev/sr7")));
}

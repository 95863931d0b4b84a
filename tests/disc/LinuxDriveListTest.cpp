#include "disc/LinuxDrivePlatform.h"

#include <gtest/gtest.h>

TEST(LinuxDriveList, NamesOfTheKernelListBecomeSortedDevicePaths)
{
    const QByteArray list = "CD-ROM information, Id: cdrom.c 3.20 2003/12/17\n\n"
                            "drive name:\t\tsr1\tsr0\n"
                            "drive speed:\t\t48\t24\n";
    EXPECT_EQ(drivesInKernelList(list),
              (QStringList{QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")}));
}

TEST(LinuxDriveList, ListWithoutDrivesIsEmpty)
{
    EXPECT_TRUE(drivesInKernelList("drive name:\t\n").isEmpty());
    EXPECT_TRUE(drivesInKernelList("").isEmpty());
}

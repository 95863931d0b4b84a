#include "base/Settings.h"

#include <gtest/gtest.h>

TEST(DriveOffsetKey, SlashesNeverAddALevel)
{
    EXPECT_EQ(driveOffsetKey(QStringLiteral("A/B\\C - D")), QStringLiteral("driveOffsets/A_B_C - D"));
}

#include "base/PhysicalMemory.h"

#include <gtest/gtest.h>

TEST(PhysicalMemory, ATestCanPretendAndPutItBack)
{
    const quint64 own = physicalMemoryBytes();
    pretendPhysicalMemory(12345);
    EXPECT_EQ(physicalMemoryBytes(), 12345U);
    pretendPhysicalMemory(0);
    EXPECT_EQ(physicalMemoryBytes(), own);
}

#include "base/PhysicalMemory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

TEST(PhysicalMemory, IsTheTotalThatTheSystemLists)
{
    std::ifstream list("/proc/meminfo");
    std::string name;
    quint64 kibibytes = 0;
    ASSERT_TRUE(list >> name >> kibibytes);
    ASSERT_EQ(name, "MemTotal:");
    EXPECT_EQ(physicalMemoryBytes(), kibibytes * 1024);
}

TEST(PhysicalMemory, ATestCanPretendAndPutItBack)
{
    const quint64 own = physicalMemoryBytes();
    pretendPhysicalMemory(12345);
    EXPECT_EQ(physicalMemoryBytes(), 12345U);
    pretendPhysicalMemory(0);
    EXPECT_EQ(physicalMemoryBytes(), own);
}

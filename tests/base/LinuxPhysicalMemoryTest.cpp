#include "base/PhysicalMemory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

TEST(LinuxPhysicalMemory, IsTheTotalThatTheSystemLists)
{
    std::ifstream list("/proc/meminfo");
    std::string name;
    quint64 kibibytes = 0;
    ASSERT_TRUE(list >> name >> kibibytes);
    ASSERT_EQ(name, "MemTotal:");
    EXPECT_EQ(physicalMemoryBytes(), kibibytes * 1024);
}

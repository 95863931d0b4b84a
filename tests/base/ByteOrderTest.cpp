#include "base/ByteOrder.h"

#include <gtest/gtest.h>

#include <array>

TEST(ByteOrder, LittleEndianHasTheLowestByteFirst)
{
    std::array<unsigned char, 4> bytes{};
    byteorder::writeLittle(bytes.data(), std::uint32_t{0x11223344});
    EXPECT_EQ(bytes, (std::array<unsigned char, 4>{0x44, 0x33, 0x22, 0x11}));
    EXPECT_EQ(byteorder::readLittle<std::uint32_t>(bytes.data()), 0x11223344U);
}

TEST(ByteOrder, BigEndianHasTheHighestByteFirst)
{
    std::array<unsigned char, 8> bytes{};
    byteorder::writeBig(bytes.data(), std::uint64_t{0x0102030405060708});
    EXPECT_EQ(bytes, (std::array<unsigned char, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(byteorder::readBig<std::uint64_t>(bytes.data()), 0x0102030405060708U);
}

TEST(ByteOrder, SignedValuesKeepTheirSign)
{
    const std::array<unsigned char, 2> bytes{0xFE, 0xFF};
    EXPECT_EQ(byteorder::readLittle<std::int16_t>(bytes.data()), -2);
    EXPECT_EQ(byteorder::readBig<std::int16_t>(bytes.data()), -257);
}

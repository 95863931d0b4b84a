#include "disc/StorageDescriptor.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Block = std::vector<quint8>;

void putWord(Block& block, size_t place, quint32 value)
{
    for (size_t i = 0; i < 4; ++i)
        block[place + i] = static_cast<quint8>(value >> (8 * i));
}

/// A block with its two texts behind the fixed part, each with a NUL.
Block descriptorOf(const QByteArray& vendor, const QByteArray& product, quint32 bus)
{
    Block block(40, 0);
    putWord(block, 12, static_cast<quint32>(block.size()));
    block.insert(block.end(), vendor.cbegin(), vendor.cend());
    block.push_back(0);
    putWord(block, 16, static_cast<quint32>(block.size()));
    block.insert(block.end(), product.cbegin(), product.cend());
    block.push_back(0);
    putWord(block, 28, bus);
    return block;
}

} // namespace

TEST(StorageDescriptor, TextsAndBusAreTaken)
{
    const auto found = decodeStorageDescriptor(descriptorOf("  ACME ", "CD-R\xE9", 7));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->vendor, "  ACME ") << "blanks are the reader's affair";
    EXPECT_EQ(found->product, "CD-R\xE9");
    EXPECT_TRUE(found->usb);
}

TEST(StorageDescriptor, OnlyBusSevenIsUsb)
{
    for (const quint32 bus : {0U, 1U, 6U, 8U, 7U << 8, 0x01000007U})
        EXPECT_FALSE(decodeStorageDescriptor(descriptorOf("a", "b", bus))->usb) << bus;
}

TEST(StorageDescriptor, ATextAtPlaceZeroIsEmpty)
{
    Block block = descriptorOf("vendor", "product", 1);
    putWord(block, 12, 0);
    const auto found = decodeStorageDescriptor(block);
    EXPECT_EQ(found->vendor, "");
    EXPECT_EQ(found->product, "product");
}

TEST(StorageDescriptor, ATextAtOrPastTheEndIsEmpty)
{
    Block block = descriptorOf("vendor", "product", 1);
    for (const quint32 place : {static_cast<quint32>(block.size()), 1000U, 0xFFFFFFFFU}) {
        putWord(block, 16, place);
        const auto found = decodeStorageDescriptor(block);
        EXPECT_EQ(found->product, "") << place;
        EXPECT_EQ(found->vendor, "vendor");
    }
    putWord(block, 16, static_cast<quint32>(block.size()) - 2);
    EXPECT_EQ(decodeStorageDescriptor(block)->product, "t") << "the last byte but the NUL";
}

TEST(StorageDescriptor, ATextWithoutNulEndsWithTheBlock)
{
    Block block = descriptorOf("vendor", "product", 1);
    block.pop_back();
    EXPECT_EQ(decodeStorageDescriptor(block)->product, "product");
}

TEST(StorageDescriptor, FewerThanFortyBytesAreNone)
{
    EXPECT_FALSE(decodeStorageDescriptor({}));
    EXPECT_FALSE(decodeStorageDescriptor(Block(39, 0)));
    const auto least = decodeStorageDescriptor(Block(40, 0));
    ASSERT_TRUE(least);
    EXPECT_EQ(least->vendor + least->product, "");
    EXPECT_FALSE(least->usb);
}

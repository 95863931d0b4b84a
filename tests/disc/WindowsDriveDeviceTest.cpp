// Single requests: what goes out, byte for byte, and what comes back.

#include "disc/WindowsDriveDevice.h"

#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <vector>

namespace {

class WindowsDriveDeviceTest : public WindowsDrive {
protected:
    void SetUp() override
    {
        device = platform.open(letter);
        ASSERT_NE(device, nullptr);
        system.requests.clear();
    }

    QByteArray bytes() const
    {
        return {reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size())};
    }

    WindowsDriveStandIn::Request lastRequest() const { return system.requests.constLast(); }

    /// The block of a pass-through as hexadecimal digits, with the address of the
    /// data checked and left out.
    QByteArray lastBlock() const
    {
        EXPECT_EQ(lastRequest().data, reinterpret_cast<quintptr>(data.data()));
        return lastRequest().input.left(24).toHex() + " data " + lastRequest().input.mid(32).toHex();
    }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> data;
};

constexpr std::array<quint8, 6> inquiry{0x12, 0, 0, 0, 0x60, 0};

} // namespace

TEST_F(WindowsDriveDeviceTest, ReadinessIsAskedWithoutBuffers)
{
    EXPECT_TRUE(device->checkVerify().ok);
    ASSERT_EQ(system.requests.size(), 1);
    EXPECT_EQ(lastRequest().code, 0x2D0800U);
    EXPECT_FALSE(lastRequest().hasInput);
    EXPECT_TRUE(lastRequest().input.isEmpty());
    EXPECT_FALSE(lastRequest().hasOutput);
    EXPECT_EQ(lastRequest().outputSize, 0U);
    EXPECT_TRUE(lastRequest().synchronous);
}

TEST_F(WindowsDriveDeviceTest, TheTableOfContentsHasItsOwnRequest)
{
    std::array<quint8, 804> table;
    table.fill(0xEE);
    const DriveReply reply = device->readToc(table);
    EXPECT_TRUE(reply.ok);
    EXPECT_EQ(lastRequest().code, 0x24000U);
    EXPECT_FALSE(lastRequest().hasInput);
    EXPECT_EQ(lastRequest().outputSize, 804U);
    EXPECT_TRUE(lastRequest().synchronous);

    // One track and the lead-out at 2000 + 150 frames = 00:28:50; 20 bytes in all.
    EXPECT_EQ(reply.transferred, 20U);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(table.data()), 20).toHex(),
              QByteArray("00120101"
                         "0010010000000200"
                         "0010aa0000001c32"));
    EXPECT_EQ(std::count(table.begin() + 20, table.end(), quint8{0}), 784);
}

// 99 tracks and the lead-out are 4 + 100 * 8 bytes.
TEST_F(WindowsDriveDeviceTest, TheLargestTableFillsItsBlock)
{
    simulated.tracks.clear();
    for (quint32 track = 0; track < 99; ++track)
        simulated.tracks.append({track * 20, false});
    std::array<quint8, 804> table{};
    const DriveReply reply = device->readToc(table);
    EXPECT_TRUE(reply.delivered(804));
    EXPECT_EQ(table[3], 99);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(table.data()) + 796, 8).toHex(),
              QByteArray("0010aa0000001c32"));
}

TEST_F(WindowsDriveDeviceTest, ATableWithoutAllOfItsEntriesIsRefused)
{
    simulated.tracks = {{0}, {500}, {1000}};
    WindowsFault cut;
    cut.returned = 4 + 4 * 8 - 1;
    system.faults = {cut};
    std::array<quint8, 804> table{};
    DriveReply reply = device->readToc(table);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, 1117);
    EXPECT_EQ(reply.transferred, 35U);

    cut.returned = 0;
    system.faults = {cut};
    EXPECT_FALSE(device->readToc(table).ok);
    cut.returned = 4 + 4 * 8;
    system.faults = {cut};
    reply = device->readToc(table);
    EXPECT_TRUE(reply.ok);
    EXPECT_EQ(reply.transferred, 36U);
}

// No entry can be asked of a table whose numbers mean nothing.
TEST_F(WindowsDriveDeviceTest, ATableOfNonsenseIsHandedOnAsItCame)
{
    simulated.tocBytes = QByteArray(804, '\0');
    simulated.tocBytes[2] = 5;
    simulated.tocBytes[3] = 2;
    std::array<quint8, 804> table{};
    EXPECT_TRUE(device->readToc(table).ok);
    EXPECT_EQ(table[2], 5);
    EXPECT_EQ(table[3], 2);
}

TEST_F(WindowsDriveDeviceTest, AudioIsAskedForByItsPlaceInBytesOfData)
{
    data.assign(size_t{27} * RAW_SECTOR_BYTES, 0);
    const DriveReply reply = device->readRaw(0x123, 27, data, true);
    EXPECT_TRUE(reply.delivered(data.size()));
    EXPECT_EQ(reply.errorNumber, 0);
    EXPECT_EQ(bytes(), truth(0x123, 27));
    EXPECT_EQ(lastRequest().code, 0x2403EU);
    EXPECT_EQ(lastRequest().outputSize, 63504U);
    EXPECT_TRUE(lastRequest().synchronous);
    // 0x123 * 2048 = 0x91800, 27 sectors, track mode 2.
    EXPECT_EQ(lastRequest().input.toHex(), QByteArray("0018090000000000"
                                                      "1b000000"
                                                      "02000000"));
}

TEST_F(WindowsDriveDeviceTest, APlaceBeyondFourGibibytesKeepsItsUpperHalf)
{
    data.assign(RAW_SECTOR_BYTES, 0);
    EXPECT_FALSE(device->readRaw(0x01020304, 1, data, false).ok) << "far behind the disc";
    // 0x01020304 * 2048 = 0x810182000.
    EXPECT_EQ(lastRequest().input.toHex(), QByteArray("0020181008000000"
                                                      "01000000"
                                                      "02000000"));
}

TEST_F(WindowsDriveDeviceTest, AReadWithPointersIsABlockOf96Bytes)
{
    constexpr std::array<quint8, 12> command{0xBE, 0x04, 0, 0, 1, 0x23, 0, 0, 27, 0x12, 0, 0};
    data.assign(size_t{27} * RAW_PLUS_C2_BYTES, 0xEE);
    const DriveReply reply = device->passThrough(command, data);
    EXPECT_TRUE(reply.delivered(data.size()));
    EXPECT_EQ(reply.errorNumber, 0);
    EXPECT_EQ(bytes().left(RAW_SECTOR_BYTES), truth(0x123));
    EXPECT_EQ(bytes().mid(26 * RAW_PLUS_C2_BYTES, RAW_SECTOR_BYTES), truth(0x123 + 26));

    EXPECT_EQ(lastRequest().code, 0x4D014U);
    EXPECT_TRUE(lastRequest().inPlace);
    EXPECT_TRUE(lastRequest().synchronous);
    EXPECT_EQ(lastRequest().outputSize, 96U);
    // 27 * 2646 = 71442 = 0x11712.
    EXPECT_EQ(lastBlock(), QByteArray("3800"     // length
                                      "00"       // SCSI status
                                      "000000"   // path, target, unit
                                      "0c"       // length of the command
                                      "20"       // length of the sense area
                                      "01"       // the drive sends
                                      "000000"   //
                                      "12170100" // length of the data
                                      "05000000" // seconds
                                      "00000000" //
                                      " data "
                                      "3c000000" // place of the sense area
                                      "be04000001230000"
                                      "1b12000000000000" // the command
                                      "0000000000000000")
                               + QByteArray(36 * 2, '0'));
}

TEST_F(WindowsDriveDeviceTest, AnInquiryIsTheSameBlockWithSixBytesOfCommand)
{
    data.assign(96, 0);
    const DriveReply reply = device->passThrough(inquiry, data);
    EXPECT_TRUE(reply.ok);
    EXPECT_EQ(reply.transferred, 36U);
    EXPECT_EQ(reply.errorNumber, 1117) << "as for any short transfer";
    EXPECT_FALSE(reply.delivered(96));
    EXPECT_EQ(bytes().mid(8, 24), QByteArray("ACME    DISC READER 9   "));
    EXPECT_EQ(lastBlock(), QByteArray("3800000000000620010000006000000005000000"
                                      "00000000 data 3c000000"
                                      "12000000600000000000000000000000"
                                      "0000000000000000")
                               + QByteArray(36 * 2, '0'));
}

TEST_F(WindowsDriveDeviceTest, ACommandLongerThanItsFieldDoesNotGoOut)
{
    constexpr std::array<quint8, 17> command{0xBE};
    data.assign(RAW_SECTOR_BYTES, 0);
    const DriveReply reply = device->passThrough(command, data);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, 87);
    EXPECT_TRUE(system.requests.isEmpty());
}

TEST_F(WindowsDriveDeviceTest, TheDescriptorIsAskedForWithTwelveZeroBytes)
{
    simulated.vendor = "V ";
    simulated.product = "P 1";
    const auto found = device->descriptor();
    ASSERT_TRUE(found);
    EXPECT_EQ(found->vendor, QByteArray("V "));
    EXPECT_EQ(found->product, QByteArray("P 1"));
    EXPECT_FALSE(found->usb);
    EXPECT_EQ(lastRequest().code, 0x2D1400U);
    EXPECT_EQ(lastRequest().input.toHex(), QByteArray(24, '0'));
    EXPECT_EQ(lastRequest().outputSize, 1023U);
    EXPECT_FALSE(lastRequest().inPlace);
    simulated.usb = true;
    EXPECT_TRUE(device->descriptor().value_or(DriveDescriptor{}).usb);
}

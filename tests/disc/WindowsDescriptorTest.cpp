// What the system tells of a drive, whole and broken.

#include "base/ByteOrder.h"
#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

namespace {

class WindowsDescriptor : public WindowsDrive {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(drive.open(letter));
        system.requests.clear();
    }

    /// A block with texts at their places and the bus of a drive.
    static QByteArray block(quint32 vendorPlace, quint32 productPlace, quint32 bus, const QByteArray& texts)
    {
        auto whole = QByteArray(40, '\0');
        auto* bytes = reinterpret_cast<quint8*>(whole.data());
        byteorder::writeLittle(bytes + 12, vendorPlace);
        byteorder::writeLittle(bytes + 16, productPlace);
        byteorder::writeLittle(bytes + 28, bus);
        return whole + texts;
    }

    /// The model while the drive itself says nothing.
    QString modelOf(const QByteArray& descriptor)
    {
        system.descriptorBlock = descriptor;
        system.faults = {WindowsFault::checkCondition(5, 0x20, 0).only(Code::passThrough)};
        return drive.queryModel();
    }

    bool isUsb(const QByteArray& descriptor)
    {
        system.descriptorBlock = descriptor;
        return drive.isUsb();
    }

    DrivePlatformOverride override{platform};
    CdDrive drive;
};

constexpr quint32 usb = 7;

} // namespace

TEST_F(WindowsDescriptor, TextsStandAtTheirPlaces)
{
    EXPECT_EQ(modelOf(block(40, 45, usb, QByteArray("VEND\0PROD  7 ", 14))), QStringLiteral("VEND - PROD 7"));
    EXPECT_EQ(modelOf(block(45, 40, usb, QByteArray("PROD\0VEND", 10))), QStringLiteral("VEND - PROD"));
    EXPECT_EQ(modelOf(block(40, 44, usb, QByteArray("Br\xfc\0P", 6))), QStringLiteral("Brü - P"));
}

TEST_F(WindowsDescriptor, ATextThatIsNotThereIsEmpty)
{
    EXPECT_EQ(modelOf(block(0, 40, usb, "PROD")), QStringLiteral("PROD")) << "no vendor";
    EXPECT_EQ(modelOf(block(40, 0, usb, "VEND")), QString()) << "no product";
    EXPECT_EQ(modelOf(block(0, 0, usb, "VEND")), QString());
    EXPECT_EQ(modelOf(block(44, 40, usb, "PROD")), QStringLiteral("PROD")) << "right behind the block";
    EXPECT_EQ(modelOf(block(0xFFFFFFFF, 40, usb, "PROD")), QStringLiteral("PROD"));
    EXPECT_EQ(modelOf(block(43, 40, usb, QByteArray("P\0XV", 4))), QStringLiteral("V - P"));
}

TEST_F(WindowsDescriptor, ATextWithoutAnEndEndsWithTheBlock)
{
    EXPECT_EQ(modelOf(block(40, 42, usb, QByteArray("V\0PRODUCT", 9))), QStringLiteral("V - PRODUCT"));
    const QString longest = modelOf(block(0, 40, usb, QByteArray(5000, 'x')));
    EXPECT_EQ(longest, QString(1023 - 40, u'x')) << "no more is offered";
}

TEST_F(WindowsDescriptor, FewerThanFortyBytesAreNone)
{
    EXPECT_TRUE(isUsb(block(0, 0, usb, {})));
    EXPECT_FALSE(isUsb(block(0, 0, usb, {}).left(39)));
    EXPECT_FALSE(isUsb({}));
    EXPECT_EQ(modelOf(block(32, 36, usb, {}).left(39)), QString());
    WindowsFault cut;
    cut.returned = 39;
    system.faults = {cut};
    EXPECT_FALSE(isUsb(block(0, 0, usb, "longer than that")));
}

// A count beyond the block that was offered cannot be true.
TEST_F(WindowsDescriptor, ACountBeyondTheBlockReadsNothingBehindIt)
{
    WindowsFault lie;
    lie.returned = 100'000;
    system.faults = {lie};
    EXPECT_TRUE(isUsb(block(90'000, 2000, usb, "x")));
    system.descriptorBlock = block(2000, 1024, usb, "x");
    system.faults = {lie, WindowsFault::checkCondition(5, 0x20, 0).only(Code::passThrough)};
    EXPECT_EQ(drive.queryModel(), QString());
}

TEST_F(WindowsDescriptor, OnlyBusSevenIsUsb)
{
    for (const quint32 bus : {0U, 1U, 3U, 6U, 8U, 11U, 0x107U, 0x07000000U})
        EXPECT_FALSE(isUsb(block(0, 0, bus, {}))) << bus;
}

TEST_F(WindowsDescriptor, ARequestThatFailsTellsNothing)
{
    for (const DWORD error : {1U, 50U, 21U, 1167U}) {
        system.faults = {WindowsFault::withError(error).forever().only(Code::queryProperty)};
        EXPECT_FALSE(drive.isUsb());
        EXPECT_EQ(drive.queryModel(), QString());
    }
}

TEST_F(WindowsDescriptor, TheDrivesOwnWordStandsAboveTheSystems)
{
    system.descriptorBlock = block(40, 42, usb, QByteArray("X\0Y", 4));
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ACME - DISC READER 9"));
    system.faults = {WindowsFault::withError(1117).only(Code::passThrough)};
    EXPECT_EQ(drive.queryModel(), QStringLiteral("X - Y")) << "a refused inquiry";
    WindowsFault busy;
    busy.status = 8;
    system.faults = {busy.only(Code::passThrough)};
    EXPECT_EQ(drive.queryModel(), QStringLiteral("X - Y")) << "a busy drive";
    simulated.vendor = "        ";
    EXPECT_EQ(drive.queryModel(), QStringLiteral("X - Y")) << "an inquiry without a vendor";
    system.descriptorBlock = block(40, 44, usb, QByteArray("aTa\0MAKER  MODEL 5", 19));
    EXPECT_EQ(drive.queryModel(), QStringLiteral("MAKER - MODEL 5"));
}

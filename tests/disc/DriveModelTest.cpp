// Model text and bus of a physical drive.

#include "disc/CdDrive.h"
#include "support/DiscMaker.h"
#include "support/DriveShim.h"
#include "support/SimulatedDrive.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <algorithm>

namespace {

class DriveModel : public ::testing::Test {
protected:
    void SetUp() override
    {
        shim.onDescriptor = [this](std::optional<DriveDescriptor>& found) { found = descriptor; };
        shim.onPassThrough = [this](std::span<const quint8> command, std::span<quint8> data,
                                    DriveReply& reply) {
            inquiry = QByteArray(reinterpret_cast<const char*>(command.data()),
                                 static_cast<qsizetype>(command.size()));
            misalignment = reinterpret_cast<quintptr>(data.data()) % 64;
            answerLength = data.size();
            reply = inquiryReply;
            std::ranges::copy(inquiryVendor.left(8), data.begin() + 8);
            std::ranges::copy(inquiryProduct.left(16), data.begin() + 16);
        };
        ASSERT_TRUE(drive.open(simulated.letter));
    }

    void describe(const QByteArray& vendor, const QByteArray& product)
    {
        descriptor = DriveDescriptor{vendor, product, false};
    }

    SimulatedDrive simulated;
    DriveShim shim{simulated};
    DrivePlatformOverride override{shim};
    CdDrive drive;

    std::optional<DriveDescriptor> descriptor = DriveDescriptor{"SYSVEN", "SYSPROD 5", false};
    DriveReply inquiryReply{true, 0, 96};
    QByteArray inquiryVendor = "INQVEN  ";
    QByteArray inquiryProduct = "INQ  PROD 1     ";
    QByteArray inquiry;
    quintptr misalignment = 1;
    size_t answerLength = 0;
};

} // namespace

TEST_F(DriveModel, InquiryGivesVendorAndProductWithBlanksReduced)
{
    EXPECT_EQ(drive.queryModel(), QStringLiteral("INQVEN - INQ PROD 1"));
    EXPECT_EQ(inquiry.toHex(), QByteArray("120000006000"));
    EXPECT_EQ(answerLength, 96U);
    EXPECT_EQ(misalignment, 0U);
}

TEST_F(DriveModel, AnInquiryAnswerOf36BytesIsEnough)
{
    inquiryReply = {true, 5, 36};
    EXPECT_EQ(drive.queryModel(), QStringLiteral("INQVEN - INQ PROD 1"));
}

TEST_F(DriveModel, TextsEndAtTheirFirstNul)
{
    inquiryVendor = QByteArray("AB\0CDEFG", 8);
    inquiryProduct = QByteArray("P\0Q             ", 16);
    EXPECT_EQ(drive.queryModel(), QStringLiteral("AB - P"));
}

TEST_F(DriveModel, TextsAreLatin1)
{
    inquiryVendor = "M\xFCLLER  ";
    EXPECT_EQ(drive.queryModel(), QStringLiteral("M\u00FCLLER - INQ PROD 1"));
}

TEST_F(DriveModel, AFailedInquiryFallsBackToTheDescriptor)
{
    inquiryReply = {false, 5, 0};
    describe("VEND  ", " DR   10 ");
    EXPECT_EQ(drive.queryModel(), QStringLiteral("VEND - DR 10"));
}

TEST_F(DriveModel, AnInquiryWithAnEmptyVendorFallsBackToTheDescriptor)
{
    inquiryVendor = "        ";
    EXPECT_EQ(drive.queryModel(), QStringLiteral("SYSVEN - SYSPROD 5"));
}

TEST_F(DriveModel, AnInquiryWithAnEmptyProductFallsBackToTheDescriptor)
{
    inquiryProduct = QByteArray(16, '\0');
    EXPECT_EQ(drive.queryModel(), QStringLiteral("SYSVEN - SYSPROD 5"));
}

TEST_F(DriveModel, ADescriptorOfAnAtaDriveIsSplitAtTheFirstBlankOfItsProduct)
{
    inquiryReply = {false, 5, 0};
    for (const char* vendor : {"ATA     ", "ata", "AtA", ""}) {
        describe(vendor, "VEND  DVD   RW 9 ");
        EXPECT_EQ(drive.queryModel(), QStringLiteral("VEND - DVD RW 9")) << vendor;
    }
}

TEST_F(DriveModel, AnAtaDescriptorWithoutABlankStaysWhole)
{
    inquiryReply = {false, 5, 0};
    describe("ATA", "DVDRW9");
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ATA - DVDRW9"));
}

TEST_F(DriveModel, AVendorThatMerelyBeginsWithAtaIsNotSplit)
{
    inquiryReply = {false, 5, 0};
    describe("ATAX", "DVD RW");
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ATAX - DVD RW"));
}

TEST_F(DriveModel, ADescriptorWithTheProductAloneGivesTheProduct)
{
    inquiryReply = {false, 5, 0};
    describe("", "DVDRW9");
    EXPECT_EQ(drive.queryModel(), QStringLiteral("DVDRW9"));
}

TEST_F(DriveModel, ADescriptorWithoutProductGivesNothing)
{
    inquiryReply = {false, 5, 0};
    describe("VEND", "   ");
    EXPECT_TRUE(drive.queryModel().isEmpty());
}

TEST_F(DriveModel, WithoutADescriptorThereIsNoModelAndNoInquiry)
{
    descriptor.reset();
    EXPECT_TRUE(drive.queryModel().isEmpty());
    EXPECT_TRUE(inquiry.isEmpty());
    EXPECT_FALSE(drive.isUsb());
}

TEST_F(DriveModel, UsbIsWhatTheDescriptorSays)
{
    EXPECT_FALSE(drive.isUsb());
    descriptor->usb = true;
    EXPECT_TRUE(drive.isUsb());
}

TEST_F(DriveModel, AClosedDriveHasNeitherModelNorBus)
{
    descriptor->usb = true;
    drive.close();
    EXPECT_TRUE(drive.queryModel().isEmpty());
    EXPECT_FALSE(drive.isUsb());
    EXPECT_TRUE(inquiry.isEmpty());
}

TEST_F(DriveModel, AnImageHasNeitherModelNorBusNorC2)
{
    const QTemporaryDir folder;
    ImageDescription description;
    description.tracks = {{0, QStringLiteral("One")}};
    descriptor->usb = true;
    ASSERT_TRUE(drive.openCue(writeImage(folder.path(), description, makeAudio(30, 1))));
    EXPECT_TRUE(drive.queryModel().isEmpty());
    EXPECT_FALSE(drive.isUsb());
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_TRUE(inquiry.isEmpty());
}

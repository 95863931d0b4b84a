// Reads that are larger than the kernel lets one request be.

#include "base/ByteOrder.h"
#include "disc/CdDrive.h"
#include "disc/DiscModel.h"
#include "support/LogCapture.h"
#include "support/SgIoDrive.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <utility>
#include <vector>

namespace {

class LinuxTransferLimitTest : public SgIoDrive {
protected:
    void SetUp() override { makeSysEntry(); }

    void open()
    {
        device = platform.open(devicePath);
        ASSERT_NE(device, nullptr);
    }

    DriveReply read(quint32 lba, quint32 count, bool guarded = true)
    {
        system.requests.clear();
        data.assign(size_t{count} * RAW_SECTOR_BYTES, 0);
        return device->readRaw(lba, count, data, guarded);
    }

    DriveReply readWithC2(quint32 lba, quint32 count)
    {
        std::array<quint8, 12> command{0xBE, 0x04, 0, 0, 0, 0, 0, 0, static_cast<quint8>(count), 0x12, 0, 0};
        byteorder::writeBig(command.data() + 2, lba);
        system.requests.clear();
        data.assign(size_t{count} * RAW_PLUS_C2_BYTES, 0);
        return device->passThrough(command, data);
    }

    QByteArray sectors(qsizetype count, size_t stride = RAW_SECTOR_BYTES) const
    {
        QByteArray audio;
        for (qsizetype i = 0; i < count; ++i)
            audio.append(reinterpret_cast<const char*>(data.data()) + i * static_cast<qsizetype>(stride),
                         RAW_SECTOR_BYTES);
        return audio;
    }

    /// First sector and number of sectors of each request, and that the rest of
    /// each is the same.
    QList<std::pair<quint32, quint32>> pieces(size_t stride = RAW_SECTOR_BYTES) const
    {
        QList<std::pair<quint32, quint32>> found;
        for (const SgIoStandIn::Request& request : system.requests) {
            const auto* bytes = reinterpret_cast<const quint8*>(request.command.constData());
            const auto count = static_cast<quint32>(bytes[6] << 16 | bytes[7] << 8 | bytes[8]);
            found.append({byteorder::readBig<quint32>(bytes + 2), count});
            EXPECT_EQ(request.dataLength, count * stride);
            EXPECT_EQ(request.timeOutMs, system.requests.first().timeOutMs);
            EXPECT_EQ(request.command.left(2), system.requests.first().command.left(2));
            EXPECT_EQ(request.command.mid(9), system.requests.first().command.mid(9));
        }
        return found;
    }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> data;
};

using Pieces = QList<std::pair<quint32, quint32>>;

} // namespace

TEST_F(LinuxTransferLimitTest, ABatchAboveTheLimitComesInAsManyPiecesAsItNeeds)
{
    limitTransfers(32); // 13 sectors are 30,576 bytes, 14 are 32,928
    open();
    EXPECT_TRUE(read(100, 27).delivered(data.size()));
    EXPECT_EQ(pieces(), (Pieces{{100, 13}, {113, 13}, {126, 1}}));
    EXPECT_EQ(sectors(27), truth(100, 27));
    EXPECT_EQ(system.requests.first().timeOutMs, 3000U);
}

TEST_F(LinuxTransferLimitTest, ASeekReadIsDividedAsWell)
{
    limitTransfers(32);
    open();
    EXPECT_TRUE(read(100, 27, false).delivered(data.size()));
    EXPECT_EQ(pieces(), (Pieces{{100, 13}, {113, 13}, {126, 1}}));
    EXPECT_EQ(system.requests.first().timeOutMs, 5000U);
}

TEST_F(LinuxTransferLimitTest, ABatchWithC2IsDividedByItsOwnSectorLength)
{
    limitTransfers(32); // 12 sectors with their pointers are 31,752 bytes, 13 are 34,398
    open();
    EXPECT_TRUE(readWithC2(0x0100, 27).delivered(data.size()));
    EXPECT_EQ(pieces(RAW_PLUS_C2_BYTES), (Pieces{{0x100, 12}, {0x10C, 12}, {0x118, 3}}));
    EXPECT_EQ(sectors(27, RAW_PLUS_C2_BYTES), truth(0x100, 27));
    EXPECT_EQ(system.requests.first().timeOutMs, 5000U);
}

TEST_F(LinuxTransferLimitTest, ABatchThatFitsStaysOneCommand)
{
    limitTransfers(64); // 27 sectors are 63,504 bytes, with pointers 71,442
    open();
    EXPECT_TRUE(read(100, 27).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 27}}));
    EXPECT_TRUE(readWithC2(100, 27).ok);
    EXPECT_EQ(pieces(RAW_PLUS_C2_BYTES), (Pieces{{100, 24}, {124, 3}}));
}

TEST_F(LinuxTransferLimitTest, APieceMayFillTheLimitToTheByte)
{
    limitTransfers(147); // 150,528 bytes are 64 sectors
    open();
    EXPECT_TRUE(read(100, 64).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 64}}));
    EXPECT_TRUE(read(100, 65).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 64}, {164, 1}}));
}

TEST_F(LinuxTransferLimitTest, SectorNumbersCarryIntoEveryByte)
{
    limitTransfers(32);
    open();
    EXPECT_FALSE(read(0x00FFFFFF, 27).ok) << "far behind the disc";
    EXPECT_EQ(pieces(), (Pieces{{0x00FFFFFF, 13}}));
    simulated.audio = makeAudio(100, 21); // is repeated up to the lead-out
    simulated.leadOutLba = 0x01000100;
    EXPECT_TRUE(read(0x00FFFFFF, 27).ok);
    EXPECT_EQ(pieces(), (Pieces{{0x00FFFFFF, 13}, {0x0100000C, 13}, {0x01000019, 1}}));
}

TEST_F(LinuxTransferLimitTest, ALimitBelowASectorAsksForSingleSectors)
{
    writeFile(sysEntry() + QStringLiteral("/queue"), QStringLiteral("max_hw_sectors_kb"), "2\n");
    open();
    EXPECT_TRUE(read(100, 3).ok) << "the limit that is told is not the one that holds";
    EXPECT_EQ(pieces(), (Pieces{{100, 1}, {101, 1}, {102, 1}}));
    EXPECT_EQ(sectors(3), truth(100, 3));
}

TEST_F(LinuxTransferLimitTest, NoLimitIsKnownWhereTheKernelTellsNone)
{
    open();
    EXPECT_TRUE(read(100, 100).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 100}}));
    for (const char* text : {"0\n", "", "many\n", "-1\n"}) {
        writeFile(sysEntry() + QStringLiteral("/queue"), QStringLiteral("max_hw_sectors_kb"), text);
        open();
        EXPECT_TRUE(read(100, 100).ok);
        EXPECT_EQ(pieces(), (Pieces{{100, 100}})) << text;
    }
}

TEST_F(LinuxTransferLimitTest, AHugeLimitIsNone)
{
    writeFile(sysEntry() + QStringLiteral("/queue"), QStringLiteral("max_hw_sectors_kb"), "2147483647\n");
    open();
    EXPECT_TRUE(read(100, 100).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 100}}));
}

TEST_F(LinuxTransferLimitTest, TheFirstPieceThatFailsEndsTheReadWithItsReply)
{
    limitTransfers(32);
    open();
    system.faults = {SgIoFault::checkCondition(3, 0x11, 5).afterCommands(1)};
    const DriveReply reply = read(100, 27);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, EIO);
    EXPECT_EQ(reply.failure, DriveFailure::unreadable);
    EXPECT_EQ(reply.transferred, size_t{13} * RAW_SECTOR_BYTES);
    EXPECT_EQ(pieces(), (Pieces{{100, 13}, {113, 13}}));
    EXPECT_EQ(sectors(13), truth(100, 13));

    system.faults = {SgIoFault::checkCondition(3, 0x11, 5).afterCommands(2)};
    EXPECT_EQ(readWithC2(100, 27).transferred, size_t{24} * RAW_PLUS_C2_BYTES);
}

TEST_F(LinuxTransferLimitTest, AShortPieceEndsTheReadAndWhatCameIsCounted)
{
    limitTransfers(32);
    open();
    SgIoFault cut;
    cut.residue = 2;
    system.faults = {cut.afterCommands(1)};
    const DriveReply reply = read(100, 27);
    EXPECT_FALSE(reply.delivered(data.size()));
    EXPECT_EQ(reply.transferred, size_t{26} * RAW_SECTOR_BYTES - 2);
    EXPECT_EQ(reply.errorNumber, EIO);
    EXPECT_EQ(pieces(), (Pieces{{100, 13}, {113, 13}}));
}

TEST_F(LinuxTransferLimitTest, APieceThatHangsIsCancelledAndLoggedOnce)
{
    limitTransfers(32);
    open();
    system.faults = {SgIoFault::hang().afterCommands(1)};
    const LogCapture log;
    const DriveReply reply = read(100, 27);
    EXPECT_EQ(reply.errorNumber, ECANCELED);
    EXPECT_EQ(reply.failure, DriveFailure::timedOut);
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("[CdDrive] Sector 100 unresponsive after 3000 ms, cancelling I/O")});
}

TEST_F(LinuxTransferLimitTest, OtherCommandBlocksGoOutAsTheyAre)
{
    limitTransfers(1);
    system.transferLimit = 0;
    open();
    constexpr std::array<quint8, 10> playAudio{0x45, 0, 0, 0, 0, 1, 0, 0, 2, 0};
    data.assign(size_t{2} * RAW_SECTOR_BYTES, 0);
    EXPECT_FALSE(device->passThrough(playAudio, data).ok);
    ASSERT_EQ(system.requests.size(), 1);
    EXPECT_EQ(system.requests.first().dataLength, data.size());
    // As does a read whose length is not a number of sectors.
    constexpr std::array<quint8, 12> readFour{0xBE, 0x04, 0, 0, 0, 100, 0, 0, 4, 0x12, 0, 0};
    data.assign(size_t{4} * RAW_PLUS_C2_BYTES + 1, 0);
    EXPECT_FALSE(device->passThrough(readFour, data).delivered(data.size()));
    EXPECT_EQ(system.requests.size(), 2);
    constexpr std::array<quint8, 12> readNone{0xBE, 0x04, 0, 0, 0, 100, 0, 0, 0, 0x12, 0, 0};
    data.assign(RAW_PLUS_C2_BYTES, 0);
    EXPECT_FALSE(device->passThrough(readNone, data).delivered(data.size()));
    EXPECT_EQ(system.requests.size(), 3);
}

TEST_F(LinuxTransferLimitTest, AWholeDiscIsReadBehindASmallBridge)
{
    const DrivePlatformOverride override{platform};
    for (const size_t kibibytes : {32, 64}) {
        limitTransfers(kibibytes);
        CdDrive drive;
        ASSERT_TRUE(drive.open(devicePath));
        ASSERT_EQ(drive.readToc().totalSectors, 2000U);
        EXPECT_TRUE(drive.probeC2(0));
        for (const bool c2 : {false, true}) {
            drive.setC2Enabled(c2);
            for (quint32 lba = 0; lba < 2000; ++lba)
                ASSERT_EQ(drive.readSector(lba), truth(lba)) << lba;
        }
    }
}

// The machine's platform as a whole: opening, the kernel's texts, and a CdDrive over it.

#include "disc/CdDrive.h"
#include "disc/DiscModel.h"
#include "support/LogCapture.h"
#include "support/SgIoDrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>

namespace {

class LinuxDrivePlatformTest : public SgIoDrive {
protected:
    DrivePlatformOverride override{platform};
    CdDrive drive;

    int requestsOf(quint8 code) const
    {
        return static_cast<int>(
            std::ranges::count_if(system.requests, [code](const SgIoStandIn::Request& request) {
                return static_cast<quint8>(request.command[0]) == code;
            }));
    }
};

constexpr int openMode = O_NONBLOCK | O_CLOEXEC;
// A 64-bit system sets this by itself, or not.
constexpr int ignoredFlags = O_LARGEFILE;

using Node = SgIoStandIn::Node;
using Openings = QList<SgIoStandIn::Opening>;

Openings without(Openings openings, int ignored)
{
    for (SgIoStandIn::Opening& one : openings)
        one.flags &= ~ignored;
    return openings;
}

} // namespace

TEST_F(LinuxDrivePlatformTest, DrivesComeFromTheKernelsList)
{
    EXPECT_TRUE(CdDrive::enumerateDrives().isEmpty()) << "no list, no drives";
    writeFile(folder.path(), QStringLiteral("info"), "CD-ROM information\n\ndrive name:\t\tsr1\tsr0\n");
    EXPECT_EQ(CdDrive::enumerateDrives(),
              (QStringList{QStringLiteral("/dev/sr0"), QStringLiteral("/dev/sr1")}));
}

TEST_F(LinuxDrivePlatformTest, ADriveIsOpenedForReadingAndWritingWithoutWaiting)
{
    EXPECT_TRUE(drive.open(devicePath));
    EXPECT_EQ(drive.name(), devicePath);
    EXPECT_EQ(without(system.opens, ignoredFlags), (Openings{{Node::block, O_RDWR | openMode}}));
    EXPECT_EQ(system.openFiles(), 1);
}

TEST_F(LinuxDrivePlatformTest, ADriveThatMayNotBeWrittenIsOpenedForReading)
{
    for (const int error : {EACCES, EPERM, EROFS, EBUSY}) {
        system.opens.clear();
        system.openForWritingError = error;
        const LogCapture log;
        EXPECT_TRUE(drive.open(devicePath));
        EXPECT_EQ(without(system.opens, ignoredFlags),
                  (Openings{{Node::block, O_RDWR | openMode}, {Node::block, O_RDONLY | openMode}}));
        EXPECT_TRUE(log.warnings().isEmpty());
        EXPECT_EQ(drive.readSector(0), truth(0));
    }
}

TEST_F(LinuxDrivePlatformTest, ADriveThatMayNotBeOpenedAtAllIsNamedInTheLogAndNothingElse)
{
    for (const int error : {EPERM, EACCES, EBUSY, ENOENT, ENOMEDIUM}) {
        system.openError = error;
        const LogCapture log;
        EXPECT_FALSE(drive.open(devicePath));
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("CdDrive: cannot open /dev/stood-in-sr0")});
        EXPECT_TRUE(log.debugLines().isEmpty());
        EXPECT_EQ(system.openFiles(), 0);
    }
    EXPECT_TRUE(system.requests.isEmpty());
}

TEST_F(LinuxDrivePlatformTest, AFileThatIsNoDriveOpensAndFailsEveryCommand)
{
    const QString path = writeFile(folder.path(), QStringLiteral("file"), "no drive");
    const LogCapture log;
    ASSERT_TRUE(drive.open(path));
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_EQ(log.warnings().value(0),
              QStringLiteral("CdDrive: IOCTL_CDROM_READ_TOC failed (attempt 1 ): %1").arg(ENOTTY));
    EXPECT_TRUE(drive.readSector(0).isEmpty());
    EXPECT_TRUE(system.requests.isEmpty());
}

TEST_F(LinuxDrivePlatformTest, AWholeDriveRunsOverIt)
{
    makeSysEntry(QStringLiteral("devices/pci0000:00/ata1/host0/target0:0:0/0:0:0:0"), "SYSVEN  \n",
                 "SYSPROD 5       \n");
    simulated.tracks = {{0, false}, {500, false}, {1500, true}};
    ASSERT_TRUE(drive.open(devicePath));
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 3);
    EXPECT_EQ(disc.tracks[1].startLba, 500U);
    EXPECT_TRUE(disc.tracks[2].isData);
    EXPECT_EQ(disc.totalSectors, 2000U);
    EXPECT_TRUE(drive.probeC2(0));
    for (const bool c2 : {false, true}) {
        drive.setC2Enabled(c2);
        for (quint32 lba = 0; lba < 60; ++lba)
            ASSERT_EQ(drive.readSector(lba), truth(lba));
        EXPECT_EQ(drive.readSectorFresh(700), truth(700));
    }
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ACME - DISC READER 9"));
    EXPECT_FALSE(drive.isUsb());
    EXPECT_EQ(system.otherRequests, 0);
    EXPECT_EQ(system.openFiles(), 1);
    drive.close();
    EXPECT_EQ(system.openFiles(), 0);
}

TEST_F(LinuxDrivePlatformTest, TheFileIsClosedWithTheDriveAndByTheNextOpen)
{
    {
        CdDrive passing;
        ASSERT_TRUE(passing.open(devicePath));
        ASSERT_TRUE(passing.open(devicePath));
        EXPECT_EQ(system.openFiles(), 1);
    }
    EXPECT_EQ(system.openFiles(), 0);
}

TEST_F(LinuxDrivePlatformTest, TextsOfTheKernelServeWhenInquiryFails)
{
    makeSysEntry(QStringLiteral("devices/pci0000:00/host0"), "ATA     \n", "SYSVEN DVD  RW 9\n");
    ASSERT_TRUE(drive.open(devicePath));
    system.faults = {SgIoFault::checkCondition(5, 0x20, 0).only(0x12)};
    EXPECT_EQ(drive.queryModel(), QStringLiteral("SYSVEN - DVD RW 9"));
}

TEST_F(LinuxDrivePlatformTest, WithoutTextsOfTheKernelInquiryIsAskedAllTheSame)
{
    ASSERT_TRUE(drive.open(devicePath));
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ACME - DISC READER 9"));
    EXPECT_FALSE(drive.isUsb());
    system.faults = {SgIoFault::checkCondition(5, 0x20, 0).only(0x12)};
    EXPECT_TRUE(drive.queryModel().isEmpty());
}

TEST_F(LinuxDrivePlatformTest, ADriveBelowAUsbBusIsUsb)
{
    makeSysEntry(QStringLiteral("devices/pci0000:00/0000:00:14.0/usb2/2-1/2-1:1.0/host6"), "V\n", "P\n");
    ASSERT_TRUE(drive.open(devicePath));
    EXPECT_TRUE(drive.isUsb());
}

TEST_F(LinuxDrivePlatformTest, AComponentThatMerelyHoldsTheLettersIsNotUsb)
{
    makeSysEntry(QStringLiteral("devices/pci0000:00/xusb2/host6"), "V\n", "P\n");
    ASSERT_TRUE(drive.open(devicePath));
    EXPECT_FALSE(drive.isUsb());
}

TEST_F(LinuxDrivePlatformTest, ADriveThatHangsIsCancelledOnceAndReadAgain)
{
    ASSERT_TRUE(drive.open(devicePath));
    SgIoFault hang;
    hang.host = 3;
    system.faults = {hang};
    const LogCapture log;
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("[CdDrive] Sector 300 unresponsive after 3000 ms, cancelling I/O")});
}

TEST_F(LinuxDrivePlatformTest, ADriveThatHangsForGoodIsGivenUpAfterTheLadder)
{
    ASSERT_TRUE(drive.open(devicePath));
    SgIoFault hang;
    hang.host = 3;
    system.faults = {hang.forever()};
    const LogCapture log;
    EXPECT_TRUE(drive.readSector(300).isEmpty());
    EXPECT_EQ(drive.lastRetries(), 35U);
    EXPECT_EQ(log.warnings(),
              QStringList(36, QStringLiteral("[CdDrive] Sector 300 unresponsive after 3000 ms, "
                                             "cancelling I/O")));
    const auto guarded = std::ranges::count(system.requests, 3000U, &SgIoStandIn::Request::timeOutMs);
    EXPECT_EQ(guarded, 36) << "the ladder, and the sector alone";
    EXPECT_EQ(system.requests.size() - guarded, 20) << "the seek reads carry the time of any other command";
}

TEST_F(LinuxDrivePlatformTest, AHangWithC2EndsByTheTimeOfThePassThroughAndIsNotLogged)
{
    ASSERT_TRUE(drive.open(devicePath));
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    system.requests.clear();
    SgIoFault hang;
    hang.host = 3;
    system.faults = {hang};
    const LogCapture log;
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(system.requests.value(0).timeOutMs, 5000U);
}

TEST_F(LinuxDrivePlatformTest, ADriveUnpluggedInTheMiddleFailsEveryBatchFromThenOn)
{
    ASSERT_TRUE(drive.open(devicePath));
    SgIoFault unplugged;
    unplugged.requestError = ENODEV;
    system.faults = {unplugged.forever().afterCommands(2)};
    EXPECT_EQ(drive.readSector(0), truth(0));
    EXPECT_EQ(drive.readSector(27), truth(27));
    EXPECT_TRUE(drive.readSector(54).isEmpty());
    EXPECT_EQ(drive.lastRetries(), 35U);
    EXPECT_EQ(system.requests.size(), 2 + 35 + 20 + 1);
    EXPECT_EQ(platform.sleeps, QList<int>(20, 10) + QList<int>(10, 100));
    EXPECT_EQ(drive.readSector(30), truth(30)) << "what is in the cache stays";

    const LogCapture log;
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(
        log.warnings(),
        QStringList{QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= %1 )").arg(ENODEV)});
    drive.close();
    EXPECT_EQ(system.openFiles(), 0);
}

TEST_F(LinuxDrivePlatformTest, ShortAnswersToReadCdClimbTheLadder)
{
    ASSERT_TRUE(drive.open(devicePath));
    ASSERT_TRUE(drive.probeC2(0));
    for (const bool c2 : {false, true}) {
        drive.setC2Enabled(c2);
        SgIoFault cut;
        cut.residue = 2;
        cut.times = 3;
        system.faults = {cut.only(0xBE)};
        const quint32 lba = c2 ? 900 : 950;
        EXPECT_EQ(drive.readSector(lba), truth(lba));
        EXPECT_EQ(drive.lastRetries(), 3U);
    }
}

TEST_F(LinuxDrivePlatformTest, AnEmptyDriveHasNoTable)
{
    ASSERT_TRUE(drive.open(devicePath));
    system.faults = {SgIoFault::checkCondition(2, 0x3A, 0).forever()};
    const LogCapture log;
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_EQ(requestsOf(0x00), 5);
    EXPECT_EQ(requestsOf(0x43), 5);
    EXPECT_EQ(platform.sleeps, QList<int>(4, 300));
    EXPECT_EQ(log.warnings().value(4),
              QStringLiteral("CdDrive: IOCTL_CDROM_READ_TOC failed (attempt 5 ): %1").arg(ENOMEDIUM));
    EXPECT_EQ(log.warnings().value(5),
              QStringLiteral("CdDrive: could not obtain a valid TOC after 5 attempts"));
}

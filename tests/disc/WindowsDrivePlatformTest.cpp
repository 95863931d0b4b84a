// The list of drives, the opening of one, and the clock.

#include "disc/CdDrive.h"
#include "support/LogCapture.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

namespace {

class WindowsDrivePlatformTest : public WindowsDrive {
protected:
    using Openings = QList<WindowsDriveStandIn::Opening>;

    // Sharing: 1 read, 2 write. Disposition: 3, an existing one. Attributes: 0x80, none.
    const WindowsDriveStandIn::Opening forWriting{QStringLiteral("\\\\.\\T:"), 0xC0000000, 3, 3, 0x80, true};
    const WindowsDriveStandIn::Opening forReading{QStringLiteral("\\\\.\\T:"), 0x80000000, 3, 3, 0x80, true};

    DrivePlatformOverride override{platform};
    CdDrive drive;
};

/// The counter of the system, at a number of ticks of 100 ns.
qint64 playedCount = -1;

BOOL WINAPI playCounter(LARGE_INTEGER* count)
{
    static auto* const real = reinterpret_cast<decltype(&QueryPerformanceCounter)>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "QueryPerformanceCounter")));
    if (playedCount < 0)
        return real(count);
    count->QuadPart = playedCount;
    return TRUE;
}

BOOL WINAPI playFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = 10'000'000;
    return TRUE;
}

QList<DWORD> sleeps;

void WINAPI playSleep(DWORD milliseconds)
{
    sleeps.append(milliseconds);
}

} // namespace

extern "C" {

decltype(&QueryPerformanceCounter) __imp_QueryPerformanceCounter = playCounter;
decltype(&QueryPerformanceFrequency) __imp_QueryPerformanceFrequency = playFrequency;
decltype(&Sleep) __imp_Sleep = playSleep;

} // extern "C"

TEST_F(WindowsDrivePlatformTest, DrivesAreTheLettersWithADriveForDiscs)
{
    EXPECT_EQ(CdDrive::enumerateDrives(), QStringList{QStringLiteral("T:")});
    // A, C, D, E, X and Z are there; a letter that is not in the mask is not asked about.
    system.logicalDrives = 0b10'1000'0000'0000'0000'0001'1101;
    system.driveTypes = {{QStringLiteral("A:\\"), DRIVE_CDROM},     {QStringLiteral("B:\\"), DRIVE_CDROM},
                         {QStringLiteral("C:\\"), DRIVE_FIXED},     {QStringLiteral("D:\\"), DRIVE_CDROM},
                         {QStringLiteral("E:\\"), DRIVE_REMOVABLE}, {QStringLiteral("X:\\"), DRIVE_REMOTE},
                         {QStringLiteral("Z:\\"), DRIVE_CDROM}};
    EXPECT_EQ(CdDrive::enumerateDrives(),
              (QStringList{QStringLiteral("A:"), QStringLiteral("D:"), QStringLiteral("Z:")}));
}

TEST_F(WindowsDrivePlatformTest, OtherKindsOfDrivesAreNone)
{
    for (const UINT kind :
         {DRIVE_UNKNOWN, DRIVE_NO_ROOT_DIR, DRIVE_REMOVABLE, DRIVE_FIXED, DRIVE_REMOTE, DRIVE_RAMDISK, 7}) {
        system.driveTypes = {{QStringLiteral("T:\\"), kind}};
        EXPECT_TRUE(CdDrive::enumerateDrives().isEmpty()) << kind;
    }
}

TEST_F(WindowsDrivePlatformTest, AMachineWithoutDrivesHasAnEmptyList)
{
    system.logicalDrives = 0;
    EXPECT_TRUE(CdDrive::enumerateDrives().isEmpty());
    system.logicalDrives = 0xFC000000; // no letters
    EXPECT_TRUE(CdDrive::enumerateDrives().isEmpty());
}

TEST_F(WindowsDrivePlatformTest, ADriveIsOpenedForReadingAndWriting)
{
    EXPECT_TRUE(drive.open(letter));
    EXPECT_EQ(drive.name(), QStringLiteral("T:"));
    EXPECT_EQ(system.opens, Openings{forWriting});
    EXPECT_EQ(system.openHandles(), 1);
}

TEST_F(WindowsDrivePlatformTest, ADriveThatMayNotBeWrittenIsOpenedForReading)
{
    for (const DWORD error : {5U, 19U, 32U}) {
        system.opens.clear();
        system.openForWritingError = error;
        const LogCapture log;
        EXPECT_TRUE(drive.open(letter));
        EXPECT_EQ(system.opens, (Openings{forWriting, forReading}));
        EXPECT_TRUE(log.warnings().isEmpty());
        EXPECT_EQ(drive.readSector(0), truth(0));
        EXPECT_EQ(system.openHandles(), 1);
    }
}

TEST_F(WindowsDrivePlatformTest, ADriveWithoutRightsIsNamedInTheLogAndNothingElse)
{
    for (const DWORD error : {5U, 2U, 21U, 32U}) {
        system.openError = error;
        const LogCapture log;
        EXPECT_FALSE(drive.open(letter));
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral("CdDrive: cannot open T:")});
        EXPECT_TRUE(log.debugLines().isEmpty());
        EXPECT_EQ(system.openHandles(), 0);
    }
    EXPECT_EQ(system.opens.size(), 8);
    EXPECT_TRUE(system.requests.isEmpty());
    EXPECT_TRUE(drive.readToc().tracks.isEmpty());
    EXPECT_TRUE(drive.readSector(0).isEmpty());
}

TEST_F(WindowsDrivePlatformTest, ANameThatIsNoDriveCannotBeOpened)
{
    for (const char* name : {"", "Q:", "\\\\server\\share", "no such thing"}) {
        const LogCapture log;
        EXPECT_FALSE(drive.open(QLatin1String(name)));
        EXPECT_EQ(log.warnings().size(), 1) << name;
    }
    EXPECT_TRUE(system.opens.isEmpty());
}

TEST_F(WindowsDrivePlatformTest, ClosingGivesTheHandleBack)
{
    ASSERT_TRUE(drive.open(letter));
    drive.close();
    EXPECT_EQ(system.openHandles(), 0);
    ASSERT_TRUE(drive.open(letter));
    ASSERT_TRUE(drive.open(letter));
    EXPECT_EQ(system.openHandles(), 1);
    {
        CdDrive other;
        ASSERT_TRUE(other.open(letter));
        EXPECT_EQ(system.openHandles(), 2);
    }
    EXPECT_EQ(system.openHandles(), 1);
}

// Ticks of 100 ns; times a billion the last count is far beyond 64 bits.
TEST(WindowsClock, CountsNanosecondsHoweverLongTheMachineHasBeenOn)
{
    WindowsDrivePlatform machine;
    for (const qint64 count : {qint64{0}, qint64{1}, qint64{9'999'999}, qint64{10'000'000},
                               qint64{123'456'789'012'345}, qint64{90'000'000'000'000'007}}) {
        playedCount = count;
        EXPECT_EQ(machine.nowNanoseconds(), count * 100);
    }
    playedCount = -1;
    const qint64 before = machine.nowNanoseconds();
    EXPECT_GE(machine.nowNanoseconds(), before);
}

TEST(WindowsClock, SleepsAreTheSystems)
{
    WindowsDrivePlatform machine;
    sleeps.clear();
    machine.sleepMilliseconds(300);
    machine.sleepMilliseconds(10);
    EXPECT_EQ(sleeps, (QList<DWORD>{300, 10}));
}

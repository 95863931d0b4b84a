// A drive as a whole over Windows' requests: ladder, probe, table, and what ends them.

#include "disc/CdDrive.h"
#include "support/LogCapture.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace {

class WindowsCdDrive : public WindowsDrive {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(drive.open(letter));
        system.requests.clear();
    }

    int requestsOf(DWORD code) const
    {
        return static_cast<int>(
            std::ranges::count(system.requests, code, &WindowsDriveStandIn::Request::code));
    }

    DrivePlatformOverride override{platform};
    CdDrive drive;
};

const QList<int> pausesOfALadder = QList<int>(20, 10) + QList<int>(10, 100);
// A ladder's attempts and its seek reads, and the sector alone.
constexpr int requestsOfALadder = 35 + 20 + 1;

} // namespace

TEST_F(WindowsCdDrive, AWholeDriveRunsOverIt)
{
    simulated.tracks = {{0, false}, {500, false}, {1500, true}};
    simulated.refusesData = false;
    const DiscToc disc = drive.readToc();
    ASSERT_EQ(disc.tracks.size(), 3);
    EXPECT_EQ(disc.tracks[1].startLba, 500U);
    EXPECT_TRUE(disc.tracks[2].isData);
    EXPECT_EQ(disc.totalSectors, 2000U);
    EXPECT_TRUE(drive.probeC2(0));
    for (const bool c2 : {false, true}) {
        drive.setC2Enabled(c2);
        for (quint32 lba = 0; lba < 60; ++lba)
            ASSERT_EQ(drive.readSector(lba), truth(lba)) << lba;
        EXPECT_EQ(drive.readSectorFresh(700), truth(700));
    }
    EXPECT_FALSE(drive.isUsb());
    simulated.usb = true;
    EXPECT_TRUE(drive.isUsb());
    EXPECT_EQ(drive.queryModel(), QStringLiteral("ACME - DISC READER 9"));
}

TEST_F(WindowsCdDrive, ATableCostsTwoRequests)
{
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    ASSERT_EQ(system.requests.size(), 2);
    EXPECT_EQ(system.requests[0].code, 0x2D0800U);
    EXPECT_EQ(system.requests[1].code, 0x24000U);
}

TEST_F(WindowsCdDrive, AnEmptyDriveHasNoTableAfterFiveAttempts)
{
    for (const DWORD error : {21U, 1112U}) {
        system.requests.clear();
        platform.sleeps.clear();
        system.faults = {WindowsFault::withError(error).forever()};
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(requestsOf(Code::checkVerify), 5);
        EXPECT_EQ(requestsOf(Code::readToc), 5);
        EXPECT_EQ(platform.sleeps, QList<int>(4, 300));
        QStringList lines;
        for (int attempt = 1; attempt <= 5; ++attempt) {
            lines.append(QStringLiteral("CdDrive: IOCTL_CDROM_READ_TOC failed (attempt %1 ): %2")
                             .arg(attempt)
                             .arg(error));
        }
        lines.append(QStringLiteral("CdDrive: could not obtain a valid TOC after 5 attempts"));
        EXPECT_EQ(log.warnings(), lines);
    }
}

TEST_F(WindowsCdDrive, TheReadinessCheckIsAskedForAndNotListenedTo)
{
    system.faults = {WindowsFault::withError(1).only(Code::checkVerify).forever()};
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    EXPECT_EQ(system.requests.size(), 2);
}

TEST_F(WindowsCdDrive, ADriveThatIsNotReadyIsAskedWhyAndReadAllTheSame)
{
    system.faults = {WindowsFault::withError(21).only(Code::checkVerify).forever()};
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    ASSERT_EQ(system.requests.size(), 3);
    EXPECT_EQ(system.requests[1].code, Code::passThrough);
    EXPECT_EQ(system.requests[1].input.mid(36, 16), QByteArray(16, '\0')) << "TEST UNIT READY";
    EXPECT_TRUE(platform.sleeps.isEmpty());
}

TEST_F(WindowsCdDrive, ADriveThatSpinsUpIsWaitedFor)
{
    WindowsFault looking = WindowsFault::withError(21).only(Code::checkVerify);
    looking.times = 12;
    WindowsFault says = WindowsFault::checkCondition(2, 4, 1).only(Code::passThrough);
    says.times = 12;
    system.faults = {looking, says};
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    EXPECT_EQ(platform.sleeps, QList<int>(12, 250));
    EXPECT_EQ(requestsOf(Code::checkVerify), 13);
    EXPECT_EQ(requestsOf(Code::readToc), 1);
}

TEST_F(WindowsCdDrive, NoDiscAndADriveThatNeedsAHandAreNotWaitedFor)
{
    for (const auto& [code, qualifier] : {std::pair{0x3A, 0}, {0x3A, 1}, {0x04, 0}, {0x04, 2}, {0x04, 3}}) {
        platform.sleeps.clear();
        system.faults = {WindowsFault::checkCondition(2, code, qualifier).only(Code::passThrough).forever(),
                         WindowsFault::withError(21).forever()};
        const LogCapture log;
        EXPECT_TRUE(drive.readToc().tracks.isEmpty());
        EXPECT_EQ(platform.sleeps, QList<int>(4, 300));
    }
}

TEST_F(WindowsCdDrive, AShortTableIsAskedForAgain)
{
    WindowsFault cut;
    cut.returned = 12; // one entry of two
    cut.times = 2;
    system.faults = {cut.only(Code::readToc)};
    const LogCapture log;
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
    EXPECT_EQ(requestsOf(Code::readToc), 3);
    EXPECT_EQ(log.warnings().value(0),
              QStringLiteral("CdDrive: IOCTL_CDROM_READ_TOC failed (attempt 1 ): 1117"));
}

TEST_F(WindowsCdDrive, EachKindOfFailureClimbsTheWholeLadder)
{
    for (const DWORD error : {21U, 23U, 27U, 121U, 995U, 1117U, 1167U}) {
        drive.close();
        ASSERT_TRUE(drive.open(letter));
        system.requests.clear();
        platform.sleeps.clear();
        system.faults = {WindowsFault::withError(error).forever()};
        EXPECT_TRUE(drive.readSector(300).isEmpty()) << error;
        EXPECT_EQ(drive.lastRetries(), 35U);
        EXPECT_EQ(requestsOf(Code::rawRead), requestsOfALadder) << error;
        EXPECT_EQ(platform.sleeps, pausesOfALadder);
    }
}

// The attempt that succeeds: 0 to 4 at once, 5 to 24 behind a seek read, then patiently.
TEST_F(WindowsCdDrive, TheLadderEndsAtTheFirstSuccess)
{
    for (const auto& [failures, requests] :
         {std::pair{4, 5}, {5, 6 + 1}, {24, 25 + 20}, {25, 26 + 20}, {34, 35 + 20}}) {
        drive.close();
        ASSERT_TRUE(drive.open(letter));
        system.requests.clear();
        WindowsFault fault = WindowsFault::withError(23);
        fault.times = failures;
        fault.fromSector = 300;
        system.faults = {fault};
        EXPECT_EQ(drive.readSector(300), truth(300)) << failures;
        EXPECT_EQ(drive.lastRetries(), static_cast<quint32>(failures));
        EXPECT_EQ(system.requests.size(), requests) << failures;
    }
}

TEST_F(WindowsCdDrive, ShortTransfersClimbTheLadder)
{
    ASSERT_TRUE(drive.probeC2(0));
    for (const bool c2 : {false, true}) {
        drive.setC2Enabled(c2);
        WindowsFault cut;
        (c2 ? cut.transferred : cut.returned) = 2;
        cut.times = 3;
        system.faults = {cut};
        const quint32 lba = c2 ? 900 : 950;
        EXPECT_EQ(drive.readSector(lba), truth(lba));
        EXPECT_EQ(drive.lastRetries(), 3U);
    }
}

TEST_F(WindowsCdDrive, AStatusWithTheCallASuccessIsAFailedAttempt)
{
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    system.faults = {WindowsFault::checkCondition(3, 0x11, 5)};
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 1U);
}

TEST_F(WindowsCdDrive, AHangWithPointersEndsByTheRequestsOwnTimeAndIsNotLogged)
{
    ASSERT_TRUE(drive.probeC2(0));
    drive.setC2Enabled(true);
    system.faults = {WindowsFault::withError(121)};
    const LogCapture log;
    EXPECT_EQ(drive.readSector(300), truth(300));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_TRUE(system.threadsOpened.isEmpty());
}

TEST_F(WindowsCdDrive, ADriveWithoutPointersSaysSoWithItsError)
{
    system.faults = {WindowsFault::withError(1).forever().only(Code::passThrough)};
    const LogCapture log;
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(system.requests.size(), 3);
    EXPECT_EQ(log.lines(),
              QStringList{QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= 1 )")});
    system.faults = {WindowsFault::checkCondition(5, 0x24, 0).forever().only(Code::passThrough)};
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(log.warnings().constLast(),
              QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= 1117 )"));
    WindowsFault cut;
    cut.transferred = 0;
    system.faults = {cut.forever().only(Code::passThrough)};
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(log.warnings().constLast(),
              QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= 1117 )"))
        << "a transfer that came short has an error as well";
}

TEST_F(WindowsCdDrive, ALetterThatVanishesFailsEveryBatchFromThenOn)
{
    system.faults = {WindowsFault::withError(1167).forever().afterRequests(2)};
    EXPECT_EQ(drive.readSector(0), truth(0));
    EXPECT_EQ(drive.readSector(27), truth(27));
    EXPECT_TRUE(drive.readSector(54).isEmpty());
    EXPECT_EQ(drive.lastRetries(), 35U);
    EXPECT_EQ(system.requests.size(), 2 + requestsOfALadder);
    EXPECT_EQ(platform.sleeps, pausesOfALadder);
    EXPECT_EQ(drive.readSector(30), truth(30)) << "what is in the cache stays";

    const LogCapture log;
    EXPECT_FALSE(drive.probeC2(0));
    EXPECT_EQ(log.warnings(),
              QStringList{QStringLiteral("[CdDrive] C2: READ CD with C2 not available (err= 1167 )")});
    drive.close();
    EXPECT_EQ(system.openHandles(), 0);
}

// Half a minute of nothing but "gone", by the clock of the pauses: from then on a
// sector costs one attempt.
TEST_F(WindowsCdDrive, ADriveThatIsGoneIsNotWaitedForWithoutEnd)
{
    for (const DWORD error : {2U, 21U, 55U, 433U, 1110U, 1112U, 1167U, 1617U}) {
        drive.close();
        ASSERT_TRUE(drive.open(letter));
        system.faults = {WindowsFault::withError(error).forever()};
        for (quint32 lba = 0; lba < 30; ++lba)
            EXPECT_TRUE(drive.readSector(lba * 30).isEmpty());
        system.requests.clear();
        EXPECT_TRUE(drive.readSector(1500).isEmpty());
        EXPECT_EQ(system.requests.size(), 1) << error;
        system.faults.clear();
        EXPECT_EQ(drive.readSector(1501), truth(1501)) << "it is back";
    }
}

// Another disc in the drive in the middle of a run: the system says so once, then
// reads what lies there now.
TEST_F(WindowsCdDrive, ADiscChangedOnTheWayIsOneFailedAttempt)
{
    EXPECT_EQ(drive.readSector(0), truth(0));
    simulated.audio = makeAudio(2000, 99);
    system.faults = {WindowsFault::withError(1110)};
    EXPECT_EQ(drive.readSector(100), truth(100));
    EXPECT_EQ(drive.lastRetries(), 1U);
    EXPECT_EQ(drive.readToc().totalSectors, 2000U);
}

// Single commands through SG_IO: what goes out, and what each answer means.

#include "disc/LinuxDriveDevice.h"

#include "disc/DiscModel.h"
#include "support/LogCapture.h"
#include "support/SgIoDrive.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <vector>

#include <scsi/sg.h>

namespace {

constexpr quint8 readTocCode = 0x43;
constexpr quint8 readCd = 0xBE;

class LinuxDriveDeviceTest : public SgIoDrive {
protected:
    void SetUp() override
    {
        device = platform.open(devicePath);
        ASSERT_NE(device, nullptr);
    }

    DriveReply readOne(bool guarded = true)
    {
        data.assign(RAW_SECTOR_BYTES, 0);
        return device->readRaw(100, 1, data, guarded);
    }

    QByteArray bytes() const
    {
        return {reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size())};
    }

    SgIoStandIn::Request lastRequest() const { return system.requests.value(system.requests.size() - 1); }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> data;
};

using enum DriveFailure;

struct Refusal {
    const char* name;
    SgIoFault fault;
    int error;
    DriveFailure failure;
};

SgIoFault withRequestError(int error)
{
    SgIoFault fault;
    fault.requestError = error;
    return fault;
}

SgIoFault withHost(int host)
{
    SgIoFault fault;
    fault.host = host;
    return fault;
}

SgIoFault withDriver(int driver, int status = 0, const QByteArray& sense = {})
{
    SgIoFault fault;
    fault.driver = driver;
    fault.status = status;
    fault.sense = sense;
    return fault;
}

SgIoFault withResidue(int residue)
{
    SgIoFault fault;
    fault.residue = residue;
    return fault;
}

SgIoFault hostErrorWithSense()
{
    SgIoFault fault = withDriver(8, 0, fixedSense(1, 0x17, 1));
    fault.host = 7;
    return fault;
}

QByteArray descriptorSense(int key, int code, int qualifier = 0)
{
    QByteArray sense(8, '\0');
    sense[0] = 0x72;
    sense[1] = static_cast<char>(key);
    sense[2] = static_cast<char>(code);
    sense[3] = static_cast<char>(qualifier);
    return sense;
}

QByteArray deferredSense(int key)
{
    QByteArray sense = fixedSense(key, 0x11, 0);
    sense[0] = 0x71;
    return sense;
}

} // namespace

TEST_F(LinuxDriveDeviceTest, ReadinessIsAskedWithTestUnitReady)
{
    EXPECT_TRUE(device->checkVerify().ok);
    ASSERT_EQ(system.requests.size(), 1);
    EXPECT_EQ(lastRequest().command.toHex(), QByteArray("000000000000"));
    EXPECT_EQ(lastRequest().direction, SG_DXFER_NONE);
    EXPECT_EQ(lastRequest().dataLength, 0U);
    EXPECT_EQ(lastRequest().timeOutMs, 5000U);
    EXPECT_EQ(lastRequest().senseRoom, 32);
}

TEST_F(LinuxDriveDeviceTest, TheTableOfContentsIsAskedInMinutesSecondsFrames)
{
    std::array<quint8, 804> table;
    table.fill(0xEE);
    EXPECT_TRUE(device->readToc(table).ok);
    EXPECT_EQ(lastRequest().command.toHex(), QByteArray("43020000000000032400"));
    EXPECT_EQ(lastRequest().direction, SG_DXFER_FROM_DEV);
    EXPECT_EQ(lastRequest().dataLength, 804U);
    EXPECT_EQ(lastRequest().timeOutMs, 5000U);

    // One track and the lead-out at 2000 + 150 frames = 00:28:50; 20 bytes in all.
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(table.data()), 20).toHex(),
              QByteArray("00120101"
                         "0010010000000200"
                         "0010aa0000001c32"));
    EXPECT_EQ(std::count(table.begin() + 20, table.end(), quint8{0}), 784);
}

TEST_F(LinuxDriveDeviceTest, ADriveMaySendAllOfTheTable)
{
    system.answers.announceWholeToc = true;
    std::array<quint8, 804> table;
    EXPECT_TRUE(device->readToc(table).ok);
}

TEST_F(LinuxDriveDeviceTest, ATableThatComesShorterThanAnnouncedIsRefused)
{
    system.faults = {withResidue(804 - 19).only(readTocCode)};
    std::array<quint8, 804> table;
    const DriveReply reply = device->readToc(table);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, EIO);
}

TEST_F(LinuxDriveDeviceTest, AudioIsReadAsUserDataAlone)
{
    data.assign(size_t{27} * RAW_SECTOR_BYTES, 0);
    const DriveReply reply = device->readRaw(0x123, 27, data, true);
    EXPECT_TRUE(reply.delivered(data.size()));
    EXPECT_EQ(bytes(), truth(0x123, 27));
    EXPECT_EQ(lastRequest().command.toHex(), QByteArray("be040000012300001b100000"));
    EXPECT_EQ(lastRequest().direction, SG_DXFER_FROM_DEV);
    EXPECT_EQ(lastRequest().dataLength, 63504U);
    EXPECT_EQ(lastRequest().timeOutMs, 3000U) << "a guarded read";
}

TEST_F(LinuxDriveDeviceTest, LargeSectorNumbersAreBigEndian)
{
    data.assign(RAW_SECTOR_BYTES, 0);
    EXPECT_FALSE(device->readRaw(0x01020304, 1, data, false).ok);
    EXPECT_EQ(lastRequest().command.toHex(), QByteArray("be0401020304000001100000"));
    EXPECT_EQ(lastRequest().timeOutMs, 5000U) << "an unguarded read";
}

TEST_F(LinuxDriveDeviceTest, ThePassThroughCarriesTheBlockAsItIs)
{
    constexpr std::array<quint8, 12> block{0xBE, 0x04, 0, 0, 0, 9, 0, 0, 2, 0x12, 0, 0};
    data.assign(size_t{2} * RAW_PLUS_C2_BYTES, 0xEE);
    EXPECT_TRUE(device->passThrough(block, data).delivered(data.size()));
    EXPECT_EQ(lastRequest().command.toHex(), QByteArray("be0400000009000002120000"));
    EXPECT_EQ(lastRequest().dataLength, 2U * 2646);
    EXPECT_EQ(lastRequest().timeOutMs, 5000U);
    EXPECT_EQ(bytes().left(RAW_SECTOR_BYTES), truth(9));
    EXPECT_EQ(bytes().mid(RAW_PLUS_C2_BYTES, RAW_SECTOR_BYTES), truth(10));
}

TEST_F(LinuxDriveDeviceTest, AnInquiryAnsweredWith36BytesIsOkAndToldAsShort)
{
    constexpr std::array<quint8, 6> inquiry{0x12, 0, 0, 0, 0x60, 0};
    data.assign(96, 0);
    const DriveReply reply = device->passThrough(inquiry, data);
    EXPECT_TRUE(reply.ok);
    EXPECT_EQ(reply.transferred, 36U);
    EXPECT_FALSE(reply.delivered(96));
    EXPECT_EQ(bytes().mid(8, 24), QByteArray("ACME    DISC READER 9   "));
}

TEST_F(LinuxDriveDeviceTest, ACommandTheDriveDoesNotKnowIsRefused)
{
    constexpr std::array<quint8, 10> playAudio{0x45};
    data.assign(8, 0);
    const DriveReply reply = device->passThrough(playAudio, data);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, EINVAL);
}

TEST_F(LinuxDriveDeviceTest, ABlockLongerThanTheKernelTakesIsNotSent)
{
    const std::vector<quint8> block(17, 0);
    data.assign(8, 0);
    EXPECT_FALSE(device->passThrough(block, data).ok);
    EXPECT_TRUE(system.requests.isEmpty());
}

TEST_F(LinuxDriveDeviceTest, NoRefusalPassesAsGoodData)
{
    const QList<Refusal> refusals{
        {"no medium", SgIoFault::checkCondition(2, 0x3A, 0), ENOMEDIUM, notReady},
        {"becoming ready", SgIoFault::checkCondition(2, 0x04, 1), EBUSY, becomingReady},
        {"becoming ready, in the format of descriptors", withDriver(8, 0x02, descriptorSense(2, 0x04, 1)),
         EBUSY, becomingReady},
        {"not ready, cause unknown", SgIoFault::checkCondition(2, 0x04, 0), EBUSY, notReady},
        {"not ready, needs a hand", SgIoFault::checkCondition(2, 0x04, 3), EBUSY, notReady},
        {"not ready, another cause", SgIoFault::checkCondition(2, 0x30, 1), EBUSY, notReady},
        {"no seek complete", SgIoFault::checkCondition(3, 0x02, 0), EIO, unreadable},
        {"unrecovered read", SgIoFault::checkCondition(3, 0x11, 5), EIO, unreadable},
        {"hardware", SgIoFault::checkCondition(4, 0x44, 0), EIO, unreadable},
        {"blank check", SgIoFault::checkCondition(8, 0x64, 1), EIO, unreadable},
        {"illegal mode for this track", SgIoFault::checkCondition(5, 0x64, 0), EINVAL, unreadable},
        {"invalid field", SgIoFault::checkCondition(5, 0x24, 0), EINVAL, unknown},
        {"aborted command", SgIoFault::checkCondition(0x0B, 0, 0), EIO, timedOut},
        {"out of range", SgIoFault::checkCondition(5, 0x21, 0), EINVAL, unknown},
        {"medium changed", SgIoFault::checkCondition(6, 0x28, 0), EAGAIN, notReady},
        {"recovered error under a check condition", SgIoFault::checkCondition(1, 0x17, 1), EIO, unknown},
        {"check condition without sense", withDriver(0, 0x02), EIO, unknown},
        {"descriptor sense", withDriver(8, 0x02, descriptorSense(2, 0x3A)), ENOMEDIUM, notReady},
        {"busy", withDriver(0, 0x08), EBUSY, notReady},
        {"reservation conflict", withDriver(0, 0x18), EBUSY, notReady},
        {"queue full", withDriver(0, 0x28), EBUSY, notReady},
        {"unknown status", withDriver(0, 0x04), EIO, unknown},
        {"host: no connection", withHost(1), ENODEV, notReady},
        {"host: time-out, guarded", withHost(3), ECANCELED, timedOut},
        {"host: aborted", withHost(5), EIO, timedOut},
        {"host: reset", withHost(8), EIO, timedOut},
        {"host: error", withHost(7), EIO, unknown},
        {"host: error behind a recovered one", hostErrorWithSense(), EIO, unknown},
        {"driver: busy", withDriver(1), EIO, unknown},
        {"driver: time-out, guarded", withDriver(6), ECANCELED, timedOut},
        {"driver: hard error with advice", withDriver(0x17), EIO, unknown},
        {"good status with the sense of a medium error", withDriver(8, 0, fixedSense(3, 0x11, 5)), EIO,
         unreadable},
        {"good status with a deferred error", withDriver(8, 0, deferredSense(4)), EIO, unknown},
        {"request: not permitted", withRequestError(EPERM), EPERM, unknown},
        {"request: busy", withRequestError(EBUSY), EBUSY, notReady},
        {"request: no disc", withRequestError(ENOMEDIUM), ENOMEDIUM, notReady},
        {"request: too long, guarded", withRequestError(ETIMEDOUT), ECANCELED, timedOut},
        {"request: unplugged", withRequestError(ENODEV), ENODEV, notReady},
        {"request: no such device", withRequestError(ENXIO), ENXIO, notReady},
        {"negative residue", withResidue(-1), EIO, unknown},
        {"residue above the length", withResidue(2353), EIO, unknown},
    };
    const LogCapture log; // the time-outs' lines have a test of their own
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        system.faults = {refusal.fault};
        const DriveReply reply = readOne();
        EXPECT_FALSE(reply.ok);
        EXPECT_FALSE(reply.delivered(RAW_SECTOR_BYTES));
        EXPECT_EQ(reply.errorNumber, refusal.error);
        EXPECT_EQ(reply.failure, refusal.failure);
        EXPECT_TRUE(readOne().delivered(RAW_SECTOR_BYTES)) << "the fault struck once";
    }
}

TEST_F(LinuxDriveDeviceTest, SenseThatTellsOfNothingIsNoFailure)
{
    for (const SgIoFault& fault :
         {withDriver(8), withDriver(8, 0, fixedSense(0, 0, 0)), withDriver(8, 0, fixedSense(1, 0x17, 1)),
          withDriver(0x10), withDriver(8, 0, QByteArray(18, '\0'))}) {
        system.faults = {fault};
        EXPECT_TRUE(readOne().delivered(RAW_SECTOR_BYTES));
        EXPECT_EQ(bytes(), truth(100));
    }
}

TEST_F(LinuxDriveDeviceTest, AShortTransferIsNotDelivered)
{
    for (const int missing : {1, 1176, 2352}) {
        system.faults = {withResidue(missing)};
        const DriveReply reply = readOne();
        EXPECT_FALSE(reply.delivered(RAW_SECTOR_BYTES)) << missing;
        EXPECT_EQ(reply.transferred, size_t{2352} - static_cast<size_t>(missing));
        EXPECT_EQ(reply.errorNumber, EIO);
    }
}

TEST_F(LinuxDriveDeviceTest, AnInterruptedRequestIsRepeated)
{
    SgIoFault fault = withRequestError(EINTR);
    fault.times = 3;
    system.faults = {fault};
    EXPECT_TRUE(readOne().ok);
    EXPECT_EQ(system.requests.size(), 4);
}

TEST_F(LinuxDriveDeviceTest, ARequestThatIsAlwaysInterruptedEnds)
{
    system.faults = {withRequestError(EINTR).forever()};
    const DriveReply reply = readOne();
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, EINTR);
}

TEST_F(LinuxDriveDeviceTest, AGuardedReadThatRunsOutOfTimeIsCancelledAndLogged)
{
    for (const SgIoFault& fault : {withHost(3), withDriver(6), withRequestError(ETIMEDOUT)}) {
        system.faults = {fault};
        const LogCapture log;
        EXPECT_EQ(readOne().errorNumber, ECANCELED);
        EXPECT_EQ(log.warnings(), QStringList{QStringLiteral(
                                      "[CdDrive] Sector 100 unresponsive after 3000 ms, cancelling I/O")});
    }
}

TEST_F(LinuxDriveDeviceTest, AnAbortedCommandThatTookTheWholeTimeRanOutOfIt)
{
    SgIoFault aborted = SgIoFault::checkCondition(0x0B, 0, 0);
    const LogCapture log;
    aborted.duration = 2999;
    system.faults = {aborted};
    EXPECT_EQ(readOne().errorNumber, EIO);
    EXPECT_TRUE(log.warnings().isEmpty());
    aborted.duration = 3000;
    system.faults = {aborted};
    EXPECT_EQ(readOne().errorNumber, ECANCELED);
    EXPECT_EQ(log.warnings().size(), 1);
    system.faults = {aborted};
    EXPECT_EQ(readOne(false).errorNumber, EIO) << "an unguarded read has 5 s";
}

TEST_F(LinuxDriveDeviceTest, AnErrorThatTheDriveItselfReportsIsNoTimeOutHoweverLateItComes)
{
    const LogCapture log;
    for (const auto& [key, code] : {std::pair{3, 0x11}, {4, 0x44}, {2, 0x04}, {8, 0x64}}) {
        SgIoFault late = SgIoFault::checkCondition(key, code, 0);
        for (const unsigned duration : {2999, 3000, 6500}) {
            late.duration = duration;
            system.faults = {late};
            const DriveReply reply = readOne();
            EXPECT_EQ(reply.errorNumber, key == 2 ? EBUSY : EIO) << key;
            EXPECT_EQ(reply.failure, key == 2 ? notReady : unreadable) << key;
        }
    }
    EXPECT_TRUE(log.warnings().isEmpty());
}

TEST_F(LinuxDriveDeviceTest, AHostThatAbortedACommandAfterTheWholeTimeRanOutOfIt)
{
    SgIoFault aborted = withHost(5);
    aborted.duration = 3000;
    system.faults = {aborted};
    const LogCapture log;
    EXPECT_EQ(readOne().errorNumber, ECANCELED);
    SgIoFault broken = withHost(7);
    broken.duration = 3000;
    system.faults = {broken};
    EXPECT_EQ(readOne().errorNumber, EIO) << "a transport error is none";
    EXPECT_EQ(log.warnings().size(), 1);
}

TEST_F(LinuxDriveDeviceTest, OtherCommandsThatRunOutOfTimeAreNotLogged)
{
    const LogCapture log;
    system.faults = {withHost(3).forever()};
    EXPECT_EQ(readOne(false).errorNumber, ETIMEDOUT);
    EXPECT_EQ(device->checkVerify().errorNumber, ETIMEDOUT);
    std::array<quint8, 804> table;
    EXPECT_EQ(device->readToc(table).errorNumber, ETIMEDOUT);
    constexpr std::array<quint8, 12> withC2{readCd, 0x04, 0, 0, 0, 9, 0, 0, 1, 0x12, 0, 0};
    data.assign(RAW_PLUS_C2_BYTES, 0);
    EXPECT_EQ(device->passThrough(withC2, data).errorNumber, ETIMEDOUT);
    EXPECT_TRUE(log.warnings().isEmpty());
}

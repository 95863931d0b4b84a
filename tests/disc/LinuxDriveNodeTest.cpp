// Which of a drive's two nodes its commands take, and the time limits that follow.

#include "disc/CdDrive.h"
#include "disc/DiscModel.h"
#include "support/LogCapture.h"
#include "support/SgIoDrive.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <utility>
#include <vector>

#include <fcntl.h>

namespace {

using Node = SgIoStandIn::Node;

constexpr std::array<quint8, 12> oneSectorWithC2{0xBE, 0x04, 0, 0, 0, 100, 0, 0, 1, 0x12, 0, 0};

class LinuxDriveNodeTest : public SgIoDrive {
protected:
    void open()
    {
        device = platform.open(devicePath);
        ASSERT_NE(device, nullptr);
        system.requests.clear();
    }

    DriveReply readOne(bool guarded = true)
    {
        std::vector<quint8> data(RAW_SECTOR_BYTES);
        return device->readRaw(100, 1, data, guarded);
    }

    /// Sends one command of each kind.
    void sendAll()
    {
        std::array<quint8, 804> table;
        std::vector<quint8> data(RAW_PLUS_C2_BYTES);
        EXPECT_TRUE(device->checkVerify().ok);
        EXPECT_TRUE(device->readToc(table).ok);
        EXPECT_TRUE(readOne(true).ok);
        EXPECT_TRUE(readOne(false).ok);
        EXPECT_TRUE(device->passThrough(oneSectorWithC2, data).ok);
    }

    QList<Node> nodesOfRequests() const
    {
        QList<Node> nodes;
        for (const SgIoStandIn::Request& request : system.requests)
            nodes.append(request.node);
        return nodes;
    }

    QList<std::pair<Node, int>> accessModes() const
    {
        QList<std::pair<Node, int>> modes;
        for (const SgIoStandIn::Opening& opening : system.opens)
            modes.append({opening.node, opening.flags & (O_ACCMODE | O_NONBLOCK | O_CLOEXEC)});
        return modes;
    }

    std::unique_ptr<DriveDevice> device;
};

constexpr int openMode = O_NONBLOCK | O_CLOEXEC;
const QList<std::pair<Node, int>> bothNodes{{Node::block, O_RDWR | openMode},
                                            {Node::generic, O_RDWR | openMode}};

} // namespace

TEST_F(LinuxDriveNodeTest, CommandsGoThroughTheGenericNodeWhereThereIsOne)
{
    makeSysEntry();
    makeGenericNode();
    open();
    EXPECT_EQ(accessModes(), bothNodes);
    sendAll();
    EXPECT_EQ(nodesOfRequests(), QList<Node>(5, Node::generic));
    EXPECT_EQ(system.otherRequests, 0);
}

TEST_F(LinuxDriveNodeTest, TheBlockNodeStaysOpenBesideItAndBothAreClosedWithTheDrive)
{
    makeSysEntry();
    makeGenericNode();
    open();
    EXPECT_EQ(system.openFiles(), 2);
    device.reset();
    EXPECT_EQ(system.openFiles(), 0);
}

TEST_F(LinuxDriveNodeTest, ABlockNodeForReadingAloneHasItsGenericNodeAllTheSame)
{
    makeSysEntry();
    makeGenericNode();
    system.openForWritingError = EROFS;
    open();
    sendAll();
    EXPECT_EQ(nodesOfRequests(), QList<Node>(5, Node::generic));
}

TEST_F(LinuxDriveNodeTest, ADriveWhoseBlockNodeCannotBeOpenedIsNotOpenedAtAll)
{
    makeSysEntry();
    makeGenericNode();
    system.openError = EACCES;
    EXPECT_EQ(platform.open(devicePath), nullptr);
    EXPECT_EQ(system.openFiles(), 0);
}

TEST_F(LinuxDriveNodeTest, CommandsGoThroughTheBlockNodeWhereTheGenericOneMayNotBeOpened)
{
    makeSysEntry();
    makeGenericNode();
    for (const int error : {EACCES, EPERM, EBUSY, ENOENT, ENXIO}) {
        system.opens.clear();
        system.openGenericError = error;
        open();
        EXPECT_EQ(accessModes(), bothNodes) << "a node for reading alone takes no such commands";
        EXPECT_EQ(system.openFiles(), 1);
        sendAll();
        EXPECT_EQ(nodesOfRequests(), QList<Node>(5, Node::block));
    }
}

TEST_F(LinuxDriveNodeTest, CommandsGoThroughTheBlockNodeWhereThereIsNoOther)
{
    open(); // no entry of the kernel's
    sendAll();
    makeSysEntry();
    open(); // no folder of a generic node
    sendAll();
    ASSERT_TRUE(QDir().mkpath(sysEntry() + QStringLiteral("/device/scsi_generic")));
    open(); // an empty one
    sendAll();
    EXPECT_EQ(nodesOfRequests(), QList<Node>(5, Node::block));
    EXPECT_EQ(accessModes(), (QList<std::pair<Node, int>>(3, {Node::block, O_RDWR | openMode})));
}

TEST_F(LinuxDriveNodeTest, BothNodesGetTheSameCommandsWithTheSameTimeLimits)
{
    const QList<unsigned> limits{5000, 5000, 3000, 5000, 5000};
    open();
    sendAll();
    const auto overBlock = system.requests;
    makeSysEntry();
    makeGenericNode();
    open();
    sendAll();
    ASSERT_EQ(system.requests.size(), 5);
    ASSERT_EQ(overBlock.size(), 5);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(system.requests[i].command, overBlock[i].command);
        EXPECT_EQ(system.requests[i].timeOutMs, limits[i]);
        EXPECT_EQ(overBlock[i].timeOutMs, limits[i]);
    }
}

TEST_F(LinuxDriveNodeTest, AHangEndsAfterThreeSecondsOrFiveOnTheGenericNode)
{
    makeSysEntry();
    makeGenericNode();
    open();
    system.faults = {SgIoFault::hang().forever()};
    const LogCapture log;
    EXPECT_EQ(readOne(true).errorNumber, ECANCELED);
    EXPECT_EQ(readOne(false).errorNumber, ETIMEDOUT);
    ASSERT_EQ(system.requests.size(), 2);
    EXPECT_EQ(system.requests[0].durationMs, 3000U);
    EXPECT_EQ(system.requests[1].durationMs, 5000U);
}

TEST_F(LinuxDriveNodeTest, AHangOnTheBlockNodeLastsAsLongAsTheKernelMakesIt)
{
    open();
    system.faults = {SgIoFault::hang().forever()};
    const LogCapture log;
    EXPECT_EQ(readOne(true).errorNumber, ECANCELED);
    EXPECT_EQ(readOne(false).errorNumber, ETIMEDOUT);
    ASSERT_EQ(system.requests.size(), 2);
    EXPECT_EQ(system.requests[0].durationMs, 7000U);
    EXPECT_EQ(system.requests[1].durationMs, 7000U);
    EXPECT_EQ(log.warnings().size(), 1) << "of the guarded read";
}

TEST_F(LinuxDriveNodeTest, ASectorThatHangsThroughTheWholeLadderTakesThreeSecondsAnAttempt)
{
    makeSysEntry();
    makeGenericNode();
    const DrivePlatformOverride override{platform};
    CdDrive drive;
    ASSERT_TRUE(drive.open(devicePath));
    system.faults = {SgIoFault::hang().forever()};
    const LogCapture log;
    EXPECT_TRUE(drive.readSector(300).isEmpty());
    unsigned guardedMs = 0;
    for (const SgIoStandIn::Request& request : system.requests)
        guardedMs += request.timeOutMs == 3000 ? request.durationMs : 0;
    EXPECT_EQ(guardedMs, (35U + 1) * 3000) << "the ladder, and the sector alone";
}

TEST_F(LinuxDriveNodeTest, TheLogTellsTheNodeAndItsTimeLimit)
{
    const LogCapture log;
    open();
    makeSysEntry();
    makeGenericNode();
    system.openGenericError = EACCES;
    open();
    system.openGenericError = 0;
    open();
    EXPECT_EQ(
        log.debugLines(),
        (QStringList{
            QStringLiteral("[CdDrive] /dev/stood-in-sr0: no generic node, commands go through the block "
                           "node; the kernel cancels a read that hangs after 7000 ms"),
            QStringLiteral("[CdDrive] /dev/stood-in-sr0: cannot open /dev/sg-stood-in (error 13), "
                           "commands go through the block node; the kernel cancels a read that hangs "
                           "after 7000 ms"),
            QStringLiteral("[CdDrive] /dev/stood-in-sr0: commands go through /dev/sg-stood-in; the "
                           "kernel cancels a read that hangs after 3000 ms")}));
    EXPECT_TRUE(log.warnings().isEmpty());
}

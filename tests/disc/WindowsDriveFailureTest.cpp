// What each failure of a request means.

#include "disc/DiscModel.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

class WindowsDriveFailure : public WindowsDrive {
protected:
    void SetUp() override
    {
        device = platform.open(letter);
        ASSERT_NE(device, nullptr);
        system.requests.clear();
    }

    DriveReply readOne(bool guarded = true)
    {
        data.assign(RAW_SECTOR_BYTES, 0);
        return device->readRaw(100, 1, data, guarded);
    }

    DriveReply readOneWithC2()
    {
        constexpr std::array<quint8, 12> command{0xBE, 0x04, 0, 0, 0, 100, 0, 0, 1, 0x12, 0, 0};
        data.assign(RAW_PLUS_C2_BYTES, 0);
        return device->passThrough(command, data);
    }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> data;
};

using enum DriveFailure;

struct ErrorMeaning {
    DWORD error;
    DriveFailure failure;
};

const ErrorMeaning meanings[] = {
    {2, notReady},      // file not found: what an unplugged device's handle says
    {20, notReady},     // bad unit
    {21, notReady},     // not ready
    {55, notReady},     // the device exists no longer
    {170, notReady},    // busy
    {433, notReady},    // no such device
    {1110, notReady},   // the medium was changed
    {1112, notReady},   // no medium
    {1167, notReady},   // not connected
    {1617, notReady},   // removed
    {23, unreadable},   // CRC
    {25, unreadable},   // seek
    {27, unreadable},   // sector not found
    {483, unreadable},  // hardware error
    {1117, unreadable}, // I/O error
    {121, timedOut},    // semaphore time-out
    {995, timedOut},    // aborted
    {1460, timedOut},   // time-out
    {1, unknown},       // function not known
    {5, unknown},       // access denied
    {87, unknown},      // invalid parameter
    {122, unknown},     // the buffer is too small
};

} // namespace

TEST_F(WindowsDriveFailure, AnErrorOfARequestIsHandedOnWithItsMeaning)
{
    for (const auto& [error, failure] : meanings) {
        system.faults = {WindowsFault::withError(error).forever()};
        std::array<quint8, 804> table{};
        for (const DriveReply& reply : {readOne(true), readOne(false), readOneWithC2(), device->checkVerify(),
                                        device->readToc(table)}) {
            EXPECT_FALSE(reply.ok) << error;
            EXPECT_EQ(reply.errorNumber, static_cast<int>(error));
            EXPECT_EQ(reply.transferred, 0U) << error << ": whatever count the call left";
            EXPECT_EQ(reply.failure, failure) << error;
        }
        EXPECT_FALSE(device->descriptor()) << error;
    }
}

TEST_F(WindowsDriveFailure, AShortRawReadIsNoDeliveryAndNamesAnError)
{
    for (const DWORD returned : {2351U, 2048U, 1U, 0U}) {
        WindowsFault cut;
        cut.returned = returned;
        system.faults = {cut};
        const DriveReply reply = readOne();
        EXPECT_FALSE(reply.delivered(RAW_SECTOR_BYTES));
        EXPECT_EQ(reply.transferred, returned);
        EXPECT_EQ(reply.errorNumber, 1117);
    }
    WindowsFault beyond;
    beyond.returned = 2353;
    system.faults = {beyond};
    EXPECT_FALSE(readOne().delivered(RAW_SECTOR_BYTES));
}

TEST_F(WindowsDriveFailure, APassThroughThatTransfersLessIsNoDeliveryAndNamesAnError)
{
    for (const DWORD transferred : {2645U, 2352U, 0U}) {
        WindowsFault cut;
        cut.transferred = transferred;
        system.faults = {cut};
        const DriveReply reply = readOneWithC2();
        EXPECT_TRUE(reply.ok) << "how much a command sends is its own affair";
        EXPECT_FALSE(reply.delivered(RAW_PLUS_C2_BYTES));
        EXPECT_EQ(reply.transferred, transferred);
        EXPECT_EQ(reply.errorNumber, 1117);
    }
}

TEST_F(WindowsDriveFailure, APassThroughThatTransfersMoreThanThereIsRoomForIsRefused)
{
    WindowsFault beyond;
    beyond.transferred = 2647;
    system.faults = {beyond};
    const DriveReply reply = readOneWithC2();
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.errorNumber, 1117);
}

// What the call returns is the size of the block, which says nothing of the data.
TEST_F(WindowsDriveFailure, WhatAPassThroughReturnsIsNotItsTransfer)
{
    for (const DWORD returned : {96U, 56U, 0U}) {
        WindowsFault any;
        any.returned = returned;
        system.faults = {any};
        EXPECT_TRUE(readOneWithC2().delivered(RAW_PLUS_C2_BYTES));
    }
}

TEST_F(WindowsDriveFailure, SenseDataTellsWhatAStatusMeans)
{
    struct {
        int key;
        int code;
        int qualifier;
        DriveFailure failure;
    } const cases[] = {
        {2, 0x3A, 0, notReady},   {2, 0x04, 1, becomingReady}, {2, 0x04, 2, notReady},
        {3, 0x11, 5, unreadable}, {4, 0x09, 0, unreadable},    {5, 0x20, 0, unknown},
        {5, 0x64, 0, unreadable}, {6, 0x28, 0, notReady},      {8, 0x00, 0, unreadable},
        {0xB, 0x00, 0, timedOut}, {1, 0x17, 1, unknown},
    };
    for (const auto& one : cases) {
        system.faults = {WindowsFault::checkCondition(one.key, one.code, one.qualifier)};
        const DriveReply reply = readOneWithC2();
        EXPECT_FALSE(reply.ok) << "sense key " << one.key;
        EXPECT_EQ(reply.errorNumber, 1117);
        EXPECT_EQ(reply.transferred, 0U);
        EXPECT_EQ(reply.failure, one.failure) << "sense key " << one.key << " code " << one.code;
    }
}

TEST_F(WindowsDriveFailure, SenseDataWithDescriptorsIsReadToo)
{
    WindowsFault fault;
    fault.status = 2;
    fault.sense = QByteArray::fromHex("7203110500000000");
    system.faults = {fault};
    EXPECT_EQ(readOneWithC2().failure, unreadable);
    fault.sense = QByteArray::fromHex("7306280000000000");
    system.faults = {fault};
    EXPECT_EQ(readOneWithC2().failure, unknown) << "of a command before this one";
}

TEST_F(WindowsDriveFailure, AStatusWithoutSenseDataIsARefusalAllTheSame)
{
    struct {
        int status;
        DriveFailure failure;
    } const cases[] = {
        {0x02, unknown},  {0x08, notReady}, {0x18, notReady},
        {0x28, notReady}, {0x04, unknown},  {0x40, unknown},
    };
    for (const auto& [status, failure] : cases) {
        WindowsFault fault;
        fault.status = status;
        system.faults = {fault};
        const DriveReply reply = readOneWithC2();
        EXPECT_FALSE(reply.ok) << status;
        EXPECT_EQ(reply.failure, failure) << status;
        EXPECT_EQ(reply.errorNumber, 1117);
    }
}

TEST_F(WindowsDriveFailure, SenseDataThatComesWithAGoodStatusIsListenedTo)
{
    WindowsFault fault;
    fault.sense = windowsSense(3, 0x11, 5);
    system.faults = {fault};
    const DriveReply reply = readOneWithC2();
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.failure, unreadable);
    for (const int harmless : {0, 1}) {
        fault.sense = windowsSense(harmless, 0, 0);
        system.faults = {fault};
        EXPECT_TRUE(readOneWithC2().delivered(RAW_PLUS_C2_BYTES)) << "no error, or one that was mended";
    }
}

TEST_F(WindowsDriveFailure, AnErrorOfTheDiscIsNoDataThoughTheBytesCame)
{
    system.faults = {WindowsFault::withError(23)};
    const DriveReply reply = readOne();
    EXPECT_EQ(data[0], static_cast<quint8>(truth(100)[0])) << "the bytes are there";
    EXPECT_FALSE(reply.ok);
}

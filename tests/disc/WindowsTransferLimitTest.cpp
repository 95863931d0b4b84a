// Reads that are larger than the drive's adapter takes in one command.

#include "base/ByteOrder.h"
#include "disc/PassThroughAlignment.h"
#include "support/WindowsDrive.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace {

class WindowsTransferLimit : public WindowsDrive {
protected:
    void open()
    {
        system.requests.clear();
        device = platform.open(letter);
        ASSERT_NE(device, nullptr);
    }

    DriveReply readWithC2(quint32 lba, quint32 count)
    {
        std::array<quint8, 12> command{0xBE, 0x04, 0, 0, 0, 0, 0, 0, static_cast<quint8>(count), 0x12, 0, 0};
        byteorder::writeBig(command.data() + 2, lba);
        system.requests.clear();
        memory.assign(size_t{count} * RAW_PLUS_C2_BYTES + PASS_THROUGH_ALIGNMENT, 0);
        void* start = memory.data();
        size_t space = memory.size();
        auto* aligned = static_cast<quint8*>(std::align(PASS_THROUGH_ALIGNMENT, 1, start, space));
        data = std::span(aligned, size_t{count} * RAW_PLUS_C2_BYTES);
        return device->passThrough(command, data);
    }

    QByteArray sectors(qsizetype count) const
    {
        QByteArray audio;
        for (qsizetype i = 0; i < count; ++i)
            audio.append(reinterpret_cast<const char*>(data.data()) + i * RAW_PLUS_C2_BYTES,
                         RAW_SECTOR_BYTES);
        return audio;
    }

    /// First sector and number of sectors of each pass-through, and that each
    /// begins where a direct transfer may.
    QList<std::pair<quint32, quint32>> pieces() const
    {
        QList<std::pair<quint32, quint32>> found;
        for (const WindowsDriveStandIn::Request& request : system.requests) {
            if (request.code != Code::passThrough)
                continue;
            const auto* command = reinterpret_cast<const quint8*>(request.input.constData()) + 36;
            const auto count = static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8]);
            found.append({byteorder::readBig<quint32>(command + 2), count});
            EXPECT_EQ(request.data % PASS_THROUGH_ALIGNMENT, 0U);
        }
        return found;
    }

    std::unique_ptr<DriveDevice> device;
    std::vector<quint8> memory;
    std::span<quint8> data;
};

using Pieces = QList<std::pair<quint32, quint32>>;

} // namespace

TEST_F(WindowsTransferLimit, ABatchAboveTheLimitComesInAsManyPiecesAsItNeeds)
{
    system.transferLimit = 64 * 1024; // 24 sectors with their pointers are 63,504 bytes
    open();
    ASSERT_EQ(system.requests.size(), 1);
    EXPECT_EQ(system.requests.first().code, DWORD{Code::queryProperty});
    EXPECT_EQ(system.requests.first().input, QByteArray(1, 1) + QByteArray(11, '\0'));
    EXPECT_TRUE(readWithC2(100, 27).delivered(data.size()));
    EXPECT_EQ(pieces(), (Pieces{{100, 24}, {124, 3}}));
    EXPECT_EQ(sectors(27), truth(100, 27));

    EXPECT_TRUE(readWithC2(200, 24).delivered(data.size()));
    EXPECT_EQ(pieces(), (Pieces{{200, 24}}));
}

// 17 pages are 16 where a block begins within one.
TEST_F(WindowsTransferLimit, PagesLimitAsWell)
{
    system.transferLimit = 128 * 1024;
    system.transferPages = 17;
    open();
    EXPECT_TRUE(readWithC2(100, 27).delivered(data.size()));
    EXPECT_EQ(pieces(), (Pieces{{100, 24}, {124, 3}}));
}

TEST_F(WindowsTransferLimit, NoLimitIsKnownWhereTheAdapterTellsNone)
{
    open();
    EXPECT_TRUE(readWithC2(100, 27).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 27}}));

    system.adapterBytes = 12;
    system.transferPages = 2; // which it does not come to say
    open();
    EXPECT_TRUE(readWithC2(100, 27).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 27}}));

    system.faults = {WindowsFault::withError(87).only(Code::queryProperty).forever()};
    open();
    EXPECT_TRUE(readWithC2(100, 27).ok);
    EXPECT_EQ(pieces(), (Pieces{{100, 27}}));
}

TEST_F(WindowsTransferLimit, TheFirstPieceThatFailsEndsTheReadWithItsReply)
{
    system.transferLimit = 64 * 1024;
    open();
    system.faults = {WindowsFault::checkCondition(3, 0x11, 5).only(Code::passThrough).afterRequests(1)};
    const DriveReply reply = readWithC2(100, 27);
    EXPECT_FALSE(reply.ok);
    EXPECT_EQ(reply.failure, DriveFailure::unreadable);
    EXPECT_EQ(reply.transferred, size_t{24} * RAW_PLUS_C2_BYTES);
    EXPECT_EQ(sectors(24), truth(100, 24));
}

#include "disc/WindowsDriveDevice.h"

#include "base/ByteOrder.h"
#include "disc/DriveWatchdog.h"
#include "disc/PassThroughAlignment.h"
#include "disc/ReadCdCommand.h"
#include "disc/SenseData.h"
#include "disc/StorageDescriptor.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace {

enum RequestCode : quint32 {
    checkVerifyCode = 0x2D0800,
    readTocCode = 0x24000,
    rawReadCode = 0x2403E,
    passThroughCode = 0x4D014,
    queryPropertyCode = 0x2D1400,
};

constexpr quint32 diskBytesPerSector = 2048; // what places are counted in, whatever a sector holds
constexpr quint32 trackModeAudio = 2;

// What the system may be asked of a drive and of what the drive hangs on.
using PropertyQuery = std::array<quint8, 12>;
constexpr PropertyQuery deviceProperty{};
constexpr PropertyQuery adapterProperty{1};

// Younger than the headers.
constexpr DWORD noSuchDeviceError = 433;
constexpr DWORD hardwareError = 483;

constexpr quint8 goodStatus = 0x00;
constexpr quint8 busyStatus = 0x08;
constexpr quint8 reservedStatus = 0x18;
constexpr quint8 queueFullStatus = 0x28;

/// A command block with its sense area, as the pass-through request takes it.
class PassThroughBlock {
public:
    static constexpr size_t commandRoom = 16;

    /// @param command  as many bytes as there is room for, at most
    PassThroughBlock(std::span<const quint8> command, std::span<quint8> data)
    {
        byteorder::writeLittle(at(0), quint16{56});
        bytes[6] = static_cast<quint8>(command.size());
        bytes[7] = senseBytes;
        bytes[8] = data.empty() ? noData : dataFromDrive;
        byteorder::writeLittle(at(lengthPlace), static_cast<quint32>(data.size()));
        byteorder::writeLittle(at(16), timeOutSeconds);
        byteorder::writeLittle(at(24), quint64{reinterpret_cast<quintptr>(data.data())});
        byteorder::writeLittle(at(32), sensePlace);
        std::ranges::copy(command, at(36));
    }

    std::span<quint8> whole() { return bytes; }
    quint8 status() const { return bytes[2]; }
    size_t transferred() const { return byteorder::readLittle<quint32>(bytes.data() + lengthPlace); }
    std::span<const quint8> sense() const { return std::span(bytes).subspan(sensePlace, senseBytes); }

private:
    static constexpr quint8 dataFromDrive = 1;
    static constexpr quint8 noData = 2;
    static constexpr quint32 sensePlace = 60;
    static constexpr quint8 senseBytes = 32;
    static constexpr size_t lengthPlace = 12;
    static constexpr quint32 timeOutSeconds = 5;

    quint8* at(size_t place) { return bytes.data() + place; }

    alignas(8) std::array<quint8, 96> bytes{};
};

DriveFailure failureOfError(DWORD error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND: // what a handle says whose device has been unplugged
    case ERROR_BAD_UNIT:
    case ERROR_NOT_READY:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_BUSY:
    case noSuchDeviceError:
    case ERROR_MEDIA_CHANGED:
    case ERROR_NO_MEDIA_IN_DRIVE:
    case ERROR_DEVICE_NOT_CONNECTED:
    case ERROR_DEVICE_REMOVED:
        return DriveFailure::notReady;
    case ERROR_CRC:
    case ERROR_SEEK:
    case ERROR_SECTOR_NOT_FOUND:
    case hardwareError:
    case ERROR_IO_DEVICE:
        return DriveFailure::unreadable;
    case ERROR_SEM_TIMEOUT:
    case ERROR_OPERATION_ABORTED:
    case ERROR_TIMEOUT:
        return DriveFailure::timedOut;
    default:
        return DriveFailure::unknown;
    }
}

/// What a pass-through that the system carried out says of itself; nothing when
/// the drive has no complaint.
std::optional<DriveFailure> failureOfAnswer(const PassThroughBlock& block)
{
    const auto sense = decodeSense(block.sense());
    switch (block.status()) {
    case goodStatus:
        return sense && tellsOfError(*sense) ? std::optional(failureOfSense(*sense)) : std::nullopt;
    case busyStatus:
    case reservedStatus:
    case queueFullStatus:
        return DriveFailure::notReady;
    default:
        return sense ? failureOfSense(*sense) : DriveFailure::unknown;
    }
}

DriveReply delivery(size_t transferred, size_t wanted)
{
    return {true, transferred == wanted ? 0 : ERROR_IO_DEVICE, transferred};
}

// Of the tracks that a table says it has, and of the lead-out behind them.
size_t bytesOfEntries(std::span<const quint8, 804> table)
{
    constexpr size_t headBytes = 4;
    constexpr size_t entryBytes = 8;
    const size_t first = table[2];
    const size_t last = table[3];
    return last < first ? headBytes : std::min(table.size(), headBytes + (last - first + 2) * entryBytes);
}

// The thread is named by its number, as the reading one may have ended by then.
CancelRead cancelOfThisThread()
{
    return [thread = GetCurrentThreadId()](const BeforeCancelling& beforeCancelling) {
        const WindowsHandle opened(OpenThread(THREAD_TERMINATE, FALSE, thread));
        if (!opened.isOpen())
            return;
        beforeCancelling();
        CancelSynchronousIo(opened.get());
    };
}

} // namespace

WindowsHandle::~WindowsHandle()
{
    if (isOpen())
        CloseHandle(handle);
}

bool WindowsHandle::isOpen() const
{
    return handle && handle != INVALID_HANDLE_VALUE;
}

WindowsDriveDevice::WindowsDriveDevice(WindowsHandle opened)
    : handle(std::move(opened)), largestTransfer(transferLimit())
{
}

size_t WindowsDriveDevice::transferLimit()
{
    constexpr size_t lengthPlace = 8;
    constexpr size_t pagesPlace = 12;
    constexpr size_t pageBytes = 4096;
    std::array<quint8, 32> adapter{};
    const DriveReply reply = request(queryPropertyCode, adapterProperty, adapter);
    if (!reply.ok || reply.transferred < pagesPlace + sizeof(quint32))
        return 0;
    const size_t length = byteorder::readLittle<quint32>(adapter.data() + lengthPlace);
    const size_t pages = byteorder::readLittle<quint32>(adapter.data() + pagesPlace);
    // A block that begins within a page touches one more.
    return pages > 1 ? std::min(length, (pages - 1) * pageBytes) : length;
}

DriveReply WindowsDriveDevice::request(quint32 code, std::span<const quint8> input, std::span<quint8> output)
{
    DWORD returned = 0;
    const BOOL ok = DeviceIoControl(handle.get(), code, const_cast<quint8*>(input.data()),
                                    static_cast<DWORD>(input.size()), output.data(),
                                    static_cast<DWORD>(output.size()), &returned, nullptr);
    if (ok)
        return {true, 0, returned};
    const DWORD error = GetLastError();
    return {false, static_cast<int>(error), 0, failureOfError(error)};
}

DriveReply WindowsDriveDevice::checkVerify()
{
    DriveReply reply = request(checkVerifyCode, {}, {});
    // An empty drive and one that is still looking at its disc have the same number.
    if (!reply.ok && reply.errorNumber == ERROR_NOT_READY) {
        constexpr std::array<quint8, 6> testUnitReady{};
        if (send(testUnitReady, {}).failure == DriveFailure::becomingReady)
            reply.failure = DriveFailure::becomingReady;
    }
    return reply;
}

DriveReply WindowsDriveDevice::readToc(std::span<quint8, 804> table)
{
    std::ranges::fill(table, quint8{0});
    const DriveReply reply = request(readTocCode, {}, table);
    if (!reply.ok)
        return reply;
    if (reply.transferred < bytesOfEntries(table))
        return {false, ERROR_IO_DEVICE, reply.transferred};
    std::ranges::fill(table.subspan(std::min(reply.transferred, table.size())), quint8{0});
    return reply;
}

DriveReply WindowsDriveDevice::readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded)
{
    std::array<quint8, 16> which{};
    byteorder::writeLittle(which.data(), quint64{lba} * diskBytesPerSector);
    byteorder::writeLittle(which.data() + 8, count);
    byteorder::writeLittle(which.data() + 12, trackModeAudio);
    std::optional<ReadGuard> guard;
    if (guarded)
        guard.emplace(cancelOfThisThread(), lba);
    const DriveReply reply = request(rawReadCode, which, data);
    return reply.ok ? delivery(reply.transferred, data.size()) : reply;
}

DriveReply WindowsDriveDevice::passThrough(std::span<const quint8> command, std::span<quint8> data)
{
    if (!isReadCd(command))
        return send(command, data);
    ReadCdBlock readCd{};
    std::ranges::copy(command, readCd.begin());
    return sendInPieces(readCd, data, largestTransfer,
                        [this, data](std::span<const quint8> block, std::span<quint8> room) {
                            return room.data() == data.data() ? send(block, room) : sendAligned(block, room);
                        });
}

// A later piece of a read begins where the one before ended.
DriveReply WindowsDriveDevice::sendAligned(std::span<const quint8> command, std::span<quint8> data)
{
    struct alignas(PASS_THROUGH_ALIGNMENT) Line {
        std::array<quint8, PASS_THROUGH_ALIGNMENT> bytes{};
    };
    std::vector<Line> lines(data.size() / sizeof(Line) + 1);
    const std::span aligned(lines.front().bytes.data(), data.size());
    const DriveReply reply = send(command, aligned);
    std::ranges::copy(aligned.first(reply.transferred), data.begin());
    return reply;
}

DriveReply WindowsDriveDevice::send(std::span<const quint8> command, std::span<quint8> data)
{
    if (command.size() > PassThroughBlock::commandRoom)
        return {false, ERROR_INVALID_PARAMETER};
    PassThroughBlock block(command, data);
    const DriveReply reply = request(passThroughCode, block.whole(), block.whole());
    if (!reply.ok)
        return reply;
    if (const auto failure = failureOfAnswer(block))
        return {false, ERROR_IO_DEVICE, 0, *failure};
    // More than there was room for is not what was asked for.
    if (block.transferred() > data.size())
        return {false, ERROR_IO_DEVICE};
    return delivery(block.transferred(), data.size());
}

std::optional<DriveDescriptor> WindowsDriveDevice::descriptor()
{
    std::array<quint8, 1024> block{};
    const DriveReply reply =
        request(queryPropertyCode, deviceProperty, std::span(block).first(block.size() - 1));
    if (!reply.ok)
        return std::nullopt;
    return decodeStorageDescriptor(std::span(block).first(std::min(reply.transferred, block.size())));
}

#include "support/WindowsDriveStandIn.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <vector>

namespace {

constinit std::atomic<WindowsDriveStandIn*> active = nullptr;

constexpr quint8 checkConditionStatus = 0x02;
constexpr quint64 diskBytesPerSector = 2048;
constexpr std::chrono::seconds longestHang{30}; // for the end of a test that fails

// The block of a pass-through request.
constexpr size_t blockBytes = 96;
constexpr size_t headerBytes = 56;
constexpr size_t statusPlace = 2;
constexpr size_t commandLengthPlace = 6;
constexpr size_t senseLengthPlace = 7;
constexpr size_t directionPlace = 8;
constexpr size_t lengthPlace = 12;
constexpr size_t dataPlace = 24;
constexpr size_t senseOffsetPlace = 32;
constexpr size_t commandPlace = 36;
constexpr size_t sensePlace = 60;
constexpr size_t senseBytes = 32;

DWORD errorOf(const DriveReply& reply)
{
    switch (reply.failure) {
    case DriveFailure::unreadable:
        return ERROR_CRC;
    case DriveFailure::timedOut:
        return ERROR_SEM_TIMEOUT;
    case DriveFailure::notReady:
        return ERROR_DEVICE_NOT_CONNECTED;
    case DriveFailure::becomingReady:
        return ERROR_NOT_READY;
    default:
        return ERROR_IO_DEVICE;
    }
}

void putRefusal(std::span<quint8> block, int status, const QByteArray& sense)
{
    block[statusPlace] = static_cast<quint8>(status);
    const auto length = std::min<size_t>(static_cast<size_t>(sense.size()), senseBytes);
    block[senseLengthPlace] = static_cast<quint8>(length);
    std::copy_n(sense.constData(), length, block.begin() + sensePlace);
}

quint8* dataOf(std::span<const quint8> block)
{
    return reinterpret_cast<quint8*>(
        static_cast<quintptr>(byteorder::readLittle<quint64>(block.data() + dataPlace)));
}

quint32 sectorOf(const QByteArray& rawReadInput)
{
    return static_cast<quint32>(
        byteorder::readLittle<quint64>(reinterpret_cast<const quint8*>(rawReadInput.constData()))
        / diskBytesPerSector);
}

// No data, or data from the drive to where a direct transfer may begin.
bool isWellAimed(std::span<const quint8> block)
{
    if (byteorder::readLittle<quint32>(block.data() + lengthPlace) == 0)
        return block[directionPlace] == 2;
    return block[directionPlace] == 1 && dataOf(block);
}

bool isWellFormed(std::span<const quint8> block)
{
    return block.size() == blockBytes && byteorder::readLittle<quint16>(block.data()) == headerBytes
           && block[statusPlace] == 0 && block[senseLengthPlace] == senseBytes
           && byteorder::readLittle<quint32>(block.data() + senseOffsetPlace) == sensePlace
           && block[commandLengthPlace] <= 16 && isWellAimed(block);
}

} // namespace

WindowsDriveStandIn::WindowsDriveStandIn(QString drive, DriveDevice& behind)
    : name(QStringLiteral("\\\\.\\") + drive), device(behind)
{
    driveTypes.insert(drive + u'\\', DRIVE_CDROM);
    logicalDrives = 1U << (drive.at(0).unicode() - u'A');
    active = this;
}

WindowsDriveStandIn::~WindowsDriveStandIn()
{
    active = nullptr;
}

int WindowsDriveStandIn::openHandles() const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(handles.size());
}

bool WindowsDriveStandIn::owns(HANDLE handle) const
{
    const std::lock_guard lock(mutex);
    return handles.contains(handle);
}

std::optional<HANDLE> WindowsDriveStandIn::handleCreateFile(const wchar_t* file, DWORD access, DWORD sharing,
                                                            const void* security, DWORD disposition,
                                                            DWORD attributes, HANDLE model)
{
    WindowsDriveStandIn* const self = active;
    if (!self || self->name != QString::fromWCharArray(file))
        return std::nullopt;
    self->opens.append({self->name, access, sharing, disposition, attributes, !security && !model});
    const bool forWriting = (access & GENERIC_WRITE) != 0;
    if (const DWORD error = self->openError != 0 ? self->openError
                            : forWriting         ? self->openForWritingError
                                                 : 0) {
        SetLastError(error);
        return INVALID_HANDLE_VALUE;
    }
    // A real object holds the handle, so that nothing else gets it.
    const HANDLE handle = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const std::lock_guard lock(self->mutex);
    self->handles.append(handle);
    return handle;
}

void WindowsDriveStandIn::handleClose(HANDLE handle)
{
    if (WindowsDriveStandIn* const self = active) {
        const std::lock_guard lock(self->mutex);
        self->handles.removeAll(handle);
    }
}

std::optional<DWORD> WindowsDriveStandIn::handleLogicalDrives()
{
    WindowsDriveStandIn* const self = active;
    return self ? std::optional(self->logicalDrives) : std::nullopt;
}

std::optional<UINT> WindowsDriveStandIn::handleDriveType(const wchar_t* root)
{
    WindowsDriveStandIn* const self = active;
    return self ? std::optional(self->driveTypes.value(QString::fromWCharArray(root), DRIVE_NO_ROOT_DIR))
                : std::nullopt;
}

bool WindowsDriveStandIn::refusesThread(DWORD access, BOOL inherited, DWORD thread)
{
    WindowsDriveStandIn* const self = active;
    if (!self)
        return false;
    const std::lock_guard lock(self->mutex);
    self->threadsOpened.append({access, inherited != FALSE, thread});
    if (self->openThreadError == 0)
        return false;
    self->leftAlone = true;
    self->changed.notify_all();
    SetLastError(self->openThreadError);
    return true;
}

void WindowsDriveStandIn::handleThreadOpened(HANDLE thread)
{
    if (WindowsDriveStandIn* const self = active) {
        const std::lock_guard lock(self->mutex);
        self->handles.append(thread);
    }
}

std::optional<BOOL> WindowsDriveStandIn::handleCancel(HANDLE thread)
{
    WindowsDriveStandIn* const self = active;
    if (!self || !self->owns(thread))
        return std::nullopt;
    if (self->onCancel)
        self->onCancel();
    const std::lock_guard lock(self->mutex);
    ++self->cancels;
    self->cancelled = true;
    self->changed.notify_all();
    return TRUE;
}

void WindowsDriveStandIn::handleThreadAsked(DWORD thread)
{
    if (WindowsDriveStandIn* const self = active)
        self->watchedThread = thread;
}

std::optional<BOOL> WindowsDriveStandIn::handleRequest(HANDLE file, DWORD code, void* input, DWORD inputSize,
                                                       void* output, DWORD outputSize, DWORD* returned,
                                                       const OVERLAPPED* overlapped)
{
    WindowsDriveStandIn* const self = active;
    if (!self || !self->owns(file))
        return std::nullopt;
    return self->request(code, input, inputSize, output, outputSize, returned, overlapped);
}

BOOL WindowsDriveStandIn::request(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize,
                                  DWORD* returned, const OVERLAPPED* overlapped)
{
    Call call{QByteArray(static_cast<const char*>(input), static_cast<qsizetype>(inputSize)),
              {static_cast<quint8*>(output), outputSize}};
    requests.append({code, call.input, outputSize, input != nullptr, output != nullptr,
                     input && input == output, returned && !overlapped,
                     code == passThrough && inputSize == blockBytes
                         ? reinterpret_cast<quintptr>(dataOf(call.output))
                         : 0});
    const auto fault = faultFor(code, call.input);
    answer(code, call);
    if (fault) {
        call.error = fault->error;
        call.returned = fault->returned.value_or(call.returned);
        call.hangs = fault->hangs;
        if (code == passThrough && (fault->status != 0 || !fault->sense.isEmpty()))
            putRefusal(call.output, fault->status, fault->sense);
        if (code == passThrough && fault->transferred)
            byteorder::writeLittle(call.output.data() + lengthPlace, quint32{*fault->transferred});
    }
    if (call.hangs)
        awaitCancel(call);
    *returned = call.returned;
    SetLastError(call.error);
    return call.error == 0;
}

std::optional<WindowsFault> WindowsDriveStandIn::faultFor(DWORD code, const QByteArray& input)
{
    for (WindowsFault& fault : faults) {
        if (fault.times == 0 || (fault.onCode && *fault.onCode != code)
            || (fault.fromSector && (code != rawRead || sectorOf(input) != *fault.fromSector)))
            continue;
        if (fault.after > 0) {
            --fault.after;
            continue;
        }
        if (fault.times > 0)
            --fault.times;
        return fault;
    }
    return std::nullopt;
}

void WindowsDriveStandIn::answer(DWORD code, Call& call)
{
    switch (code) {
    case checkVerify: {
        const DriveReply reply = device.checkVerify();
        call.error = reply.ok ? 0 : errorOf(reply);
        return;
    }
    case readToc:
        return answerToc(call);
    case rawRead:
        return answerRaw(call);
    case passThrough:
        return answerPassThrough(call);
    case queryProperty:
        return answerDescriptor(call);
    default:
        call.error = ERROR_INVALID_FUNCTION;
    }
}

void WindowsDriveStandIn::answerToc(Call& call)
{
    std::array<quint8, 804> table{};
    const DriveReply reply = device.readToc(table);
    if (!reply.ok || call.output.size() < table.size()) {
        call.error = reply.ok ? ERROR_INSUFFICIENT_BUFFER : errorOf(reply);
        return;
    }
    const size_t entries = table[3] >= table[2] ? size_t{table[3]} - table[2] + 2 : 1;
    const size_t used = std::min(table.size(), 4 + entries * 8);
    byteorder::writeBig(table.data(), static_cast<quint16>(used - 2));
    std::copy_n(table.begin(), used, call.output.begin());
    call.returned = static_cast<DWORD>(used);
}

void WindowsDriveStandIn::answerRaw(Call& call)
{
    const auto* which = reinterpret_cast<const quint8*>(call.input.constData());
    constexpr quint32 audio = 2;
    if (call.input.size() != 16 || byteorder::readLittle<quint32>(which + 12) != audio) {
        call.error = ERROR_INVALID_PARAMETER;
        return;
    }
    const auto count = byteorder::readLittle<quint32>(which + 8);
    if (byteorder::readLittle<quint64>(which) % diskBytesPerSector != 0
        || call.output.size() < size_t{count} * RAW_SECTOR_BYTES) {
        call.error = ERROR_INVALID_PARAMETER;
        return;
    }
    const bool guarded = watchedThread.exchange(0) != 0;
    const DriveReply reply = device.readRaw(sectorOf(call.input), count, call.output, guarded);
    call.returned = static_cast<DWORD>(reply.transferred);
    call.hangs = guarded && reply.failure == DriveFailure::timedOut && !reply.ok;
    call.error = reply.ok ? 0 : errorOf(reply);
}

void WindowsDriveStandIn::answerPassThrough(Call& call)
{
    const std::span block = call.output;
    if (call.input.size() != static_cast<qsizetype>(blockBytes) || !isWellFormed(block)) {
        call.error = ERROR_INVALID_PARAMETER;
        return;
    }
    const std::span command = block.subspan(commandPlace, block[commandLengthPlace]);
    const auto room = byteorder::readLittle<quint32>(block.data() + lengthPlace);
    if (transferLimit > 0 && room > transferLimit) {
        call.error = ERROR_INVALID_PARAMETER;
        return;
    }
    std::vector<quint8> data(room);
    DriveReply reply = device.passThrough(command, data);
    call.returned = blockBytes;
    if (!reply.ok && (reply.failure == DriveFailure::timedOut || reply.failure == DriveFailure::notReady)) {
        call.error = errorOf(reply);
        return;
    }
    if (reply.ok && command[0] == 0x12)
        reply.transferred = std::min<size_t>(reply.transferred, inquiryBytes);
    if (!reply.ok) {
        constexpr quint8 modeSense = 0x5A;
        putRefusal(block, checkConditionStatus,
                   command[0] == modeSense ? windowsSense(5, 0x24, 0x00) : windowsSense(3, 0x11, 0x05));
        reply.transferred = 0;
    }
    std::copy_n(data.begin(), reply.transferred, dataOf(block));
    byteorder::writeLittle(block.data() + lengthPlace, static_cast<quint32>(reply.transferred));
}

void WindowsDriveStandIn::answerDescriptor(Call& call)
{
    const bool ofAdapter = call.input == QByteArray(1, 1) + QByteArray(11, '\0');
    QByteArray block = ofAdapter ? adapterBlock() : descriptorBlock.value_or(QByteArray());
    if (!ofAdapter && !descriptorBlock) {
        const auto found = device.descriptor();
        if (call.input != QByteArray(12, '\0') || !found) {
            call.error = found ? ERROR_INVALID_PARAMETER : ERROR_DEVICE_NOT_CONNECTED;
            return;
        }
        auto texts = QByteArray(40, '\0');
        auto* words = reinterpret_cast<quint8*>(texts.data());
        byteorder::writeLittle(words + 12, quint32{40});
        byteorder::writeLittle(words + 16, static_cast<quint32>(40 + found->vendor.size() + 1));
        byteorder::writeLittle(words + 28, quint32{found->usb ? 7U : 3U});
        block = texts + found->vendor + '\0' + found->product + '\0';
    }
    const size_t length = std::min(static_cast<size_t>(block.size()), call.output.size());
    std::copy_n(block.constData(), length, call.output.begin());
    call.returned = static_cast<DWORD>(length);
}

QByteArray WindowsDriveStandIn::adapterBlock() const
{
    QByteArray block(32, '\0');
    auto* words = reinterpret_cast<quint8*>(block.data());
    byteorder::writeLittle(words, quint32{32});
    byteorder::writeLittle(words + 4, quint32{32});
    byteorder::writeLittle(words + 8, transferLimit);
    byteorder::writeLittle(words + 12, transferPages);
    return block.left(adapterBytes);
}

void WindowsDriveStandIn::awaitCancel(Call& call)
{
    std::unique_lock lock(mutex);
    const bool over = changed.wait_for(lock, longestHang, [this] { return cancelled || leftAlone; });
    EXPECT_TRUE(over) << "a read that nobody cancels";
    if (cancelled || !over) {
        call.error = ERROR_OPERATION_ABORTED;
        call.returned = 0;
    }
    cancelled = leftAlone = false;
}

#pragma once

#include "disc/DriveDevice.h"

#include <optional>
#include <utility>

/// An open handle of the operating system, closed at the end of its owner.
class WindowsHandle {
public:
    explicit WindowsHandle(void* opened = nullptr) : handle(opened) {}
    WindowsHandle(WindowsHandle&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    WindowsHandle& operator=(WindowsHandle&& other) noexcept
    {
        std::swap(handle, other.handle);
        return *this;
    }
    ~WindowsHandle();

    bool isOpen() const;
    void* get() const { return handle; }

private:
    void* handle;
};

/// An optical drive behind Windows' device requests.
///
/// A guarded read is cancelled after 3 s; commands that pass through end after 5 s
/// by themselves. A read of more than the drive's adapter takes in one command goes out
/// as several. Whether a drive that is not ready is becoming so, it is asked itself. Error
/// numbers are those of Windows: 995 for a cancelled read.
class WindowsDriveDevice : public DriveDevice {
public:
    explicit WindowsDriveDevice(WindowsHandle opened);

    DriveReply checkVerify() override;
    DriveReply readToc(std::span<quint8, 804> table) override;
    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override;
    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override;
    std::optional<DriveDescriptor> descriptor() override;

private:
    DriveReply send(std::span<const quint8> command, std::span<quint8> data);
    DriveReply sendAligned(std::span<const quint8> command, std::span<quint8> data);
    size_t transferLimit();
    DriveReply request(quint32 code, std::span<const quint8> input, std::span<quint8> output);

    WindowsHandle handle;
    size_t largestTransfer; ///< bytes of one command; 0: no limit is known
};

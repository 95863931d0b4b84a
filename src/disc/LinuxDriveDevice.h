#pragma once

#include "disc/DriveDevice.h"
#include "disc/ReadCdCommand.h"

#include <QString>

#include <utility>

/// An open file of the operating system, closed at the end of its owner.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int opened) : number(opened) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number(std::exchange(other.number, closed)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(number, other.number);
        return *this;
    }
    ~FileDescriptor();

    bool isOpen() const { return number >= 0; }
    int get() const { return number; }

private:
    static constexpr int closed = -1;
    int number = closed;
};

/// The open nodes of one drive. Commands go through the generic node where that
/// is open. The block node stays open beside it, so that the drive is in use for
/// whoever would eject its disc.
struct DriveNodes {
    FileDescriptor block;
    FileDescriptor generic;

    const FileDescriptor& ofCommands() const { return generic.isOpen() ? generic : block; }
};

/// What the kernel makes of a shorter time limit on a block node.
inline constexpr int leastBlockTimeOutMs = 7000;

/// An optical drive behind the kernel's SG_IO request, which takes command
/// blocks as they are; no other request is made.
///
/// A guarded read ends after 3 s and any other command after 5 s, when they go
/// through the generic node; through the block node each ends after 7 s. Then
/// the kernel aborts it, which may take some seconds more.
///
/// A read of more than the kernel takes in one request goes out as several, each
/// of whole sectors and with the whole time limit. The first that does not bring
/// all of its sectors ends the read with its reply.
///
/// A command is ok when the request was taken, the SCSI, host and driver status
/// are clean, and no sense data tells of an error. A check condition is a
/// failure even with the sense key "recovered error": the read is repeated
/// rather than believed.
///
/// Error numbers: that of the request itself; ETIMEDOUT for a command that ran
/// out of time, as the kernel says or as the time that an aborted one took tells,
/// and ECANCELED when it was a guarded read; ENODEV for a drive that is gone;
/// EBUSY, ENOMEDIUM, EINVAL and EAGAIN as the status and the sense key have it;
/// EIO for all else, an error that the drive itself reports late among them, and
/// for a short transfer.
class LinuxDriveDevice : public DriveDevice {
public:
    /// @param blockFolder  what the kernel tells of the block device; it may be
    ///                     missing, and then the drive has no texts, no USB and
    ///                     no limit on a transfer
    LinuxDriveDevice(DriveNodes nodes, QString blockFolder);

    DriveReply checkVerify() override;
    DriveReply readToc(std::span<quint8, 804> table) override;
    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override;
    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override;
    std::optional<DriveDescriptor> descriptor() override;

private:
    DriveReply send(std::span<const quint8> command, std::span<quint8> data, int timeOutMs);
    SendCommand sender(int timeOutMs);

    DriveNodes nodes;
    QString blockFolder;
    size_t largestTransfer; ///< bytes of one request; 0: no limit is known
};

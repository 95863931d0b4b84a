#include "disc/LinuxDriveDevice.h"

#include "base/ByteOrder.h"
#include "disc/DriveTimeOut.h"
#include "disc/LinuxCommandAnswer.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>

#include <scsi/sg.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

constexpr int commandTimeOutMs = 5000;
constexpr int interruptedTries = 16;

int request(int file, sg_io_hdr& header)
{
    for (int attempt = 0; attempt < interruptedTries; ++attempt) {
        if (ioctl(file, SG_IO, &header) >= 0)
            return 0;
        if (errno != EINTR)
            break;
    }
    return errno;
}

DriveReply refused(const CommandRefusal& refusal)
{
    return {false, refusal.errorNumber, 0, refusal.failure};
}

QByteArray firstLine(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray text = file.readAll();
    return text.left(text.contains('\n') ? text.indexOf('\n') : text.size());
}

size_t transferLimitOf(const QString& blockFolder)
{
    return size_t{firstLine(blockFolder + QStringLiteral("/queue/max_hw_sectors_kb")).toUInt()} * 1024;
}

} // namespace

FileDescriptor::~FileDescriptor()
{
    if (isOpen())
        ::close(number);
}

LinuxDriveDevice::LinuxDriveDevice(DriveNodes opened, QString folder)
    : nodes(std::move(opened)), blockFolder(std::move(folder)), largestTransfer(transferLimitOf(blockFolder))
{
}

DriveReply LinuxDriveDevice::send(std::span<const quint8> command, std::span<quint8> data, int timeOutMs)
{
    std::array<quint8, 16> block{};
    if (command.size() > block.size())
        return {false, EINVAL, 0};
    std::ranges::copy(command, block.begin());
    SenseBuffer sense{};

    sg_io_hdr header{};
    header.interface_id = 'S';
    header.dxfer_direction = data.empty() ? SG_DXFER_NONE : SG_DXFER_FROM_DEV;
    header.cmd_len = static_cast<unsigned char>(command.size());
    header.cmdp = block.data();
    header.mx_sb_len = static_cast<unsigned char>(sense.size());
    header.sbp = sense.data();
    header.dxfer_len = static_cast<unsigned>(data.size());
    header.dxferp = data.empty() ? nullptr : data.data();
    header.timeout = static_cast<unsigned>(timeOutMs);

    if (const int error = request(nodes.ofCommands().get(), header))
        return refused(refusalOfRequest(error));
    if (const auto refusal = refusalOfAnswer(header, sense))
        return refused(*refusal);
    // A negative residue means that the drive had more to say than there was
    // room for; what came is then not what was asked for.
    if (header.resid < 0 || static_cast<size_t>(header.resid) > data.size())
        return {false, EIO, 0};
    const size_t transferred = data.size() - static_cast<size_t>(header.resid);
    return {true, header.resid == 0 ? 0 : EIO, transferred};
}

SendCommand LinuxDriveDevice::sender(int timeOutMs)
{
    return [this, timeOutMs](std::span<const quint8> command, std::span<quint8> data) {
        return send(command, data, timeOutMs);
    };
}

DriveReply LinuxDriveDevice::checkVerify()
{
    constexpr std::array<quint8, 6> testUnitReady{};
    return send(testUnitReady, {}, commandTimeOutMs);
}

DriveReply LinuxDriveDevice::readToc(std::span<quint8, 804> table)
{
    std::array<quint8, 10> command{0x43, 0x02}; // READ TOC/PMA/ATIP, addresses as minute, second, frame
    byteorder::writeBig(command.data() + 7, static_cast<quint16>(table.size()));
    std::ranges::fill(table, quint8{0});
    DriveReply reply = send(command, table, commandTimeOutMs);
    if (!reply.ok)
        return reply;

    // A drive sends no more than it has, and says in the first two bytes how
    // much that is. Less than announced means that the rest was lost.
    const size_t announced = std::min(table.size(), size_t{byteorder::readBig<quint16>(table.data())} + 2);
    if (reply.transferred < announced)
        return {false, EIO, reply.transferred};
    std::ranges::fill(table.subspan(reply.transferred), quint8{0});
    return {true, 0, reply.transferred};
}

DriveReply LinuxDriveDevice::readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded)
{
    ReadCdBlock command{readCdCode, 0x04}; // CD-DA alone
    command[9] = 0x10;                     // user data alone
    setSectors(command, lba, count);
    DriveReply reply =
        sendInPieces(command, data, largestTransfer, sender(guarded ? driveTimeOutMs : commandTimeOutMs));
    // The kernel's own time-out cancels the command, as the watchdog would.
    if (guarded && reply.errorNumber == ETIMEDOUT) {
        logUnresponsiveSector(lba);
        reply.errorNumber = ECANCELED;
    }
    return reply;
}

DriveReply LinuxDriveDevice::passThrough(std::span<const quint8> command, std::span<quint8> data)
{
    if (!isReadCd(command))
        return send(command, data, commandTimeOutMs);
    ReadCdBlock readCd{};
    std::ranges::copy(command, readCd.begin());
    return sendInPieces(readCd, data, largestTransfer, sender(commandTimeOutMs));
}

std::optional<DriveDescriptor> LinuxDriveDevice::descriptor()
{
    const QStringList path = QFileInfo(blockFolder).canonicalFilePath().split(u'/');
    DriveDescriptor found;
    found.vendor = firstLine(blockFolder + QStringLiteral("/device/vendor"));
    found.product = firstLine(blockFolder + QStringLiteral("/device/model"));
    found.usb =
        std::ranges::any_of(path, [](const QString& part) { return part.startsWith(QLatin1String("usb")); });
    return found;
}

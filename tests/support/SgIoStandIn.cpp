#include "support/SgIoStandIn.h"

#include "base/ByteOrder.h"
#include "disc/DiscModel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <vector>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constinit std::atomic<SgIoStandIn*> active = nullptr;

constexpr int checkConditionStatus = 0x02;
constexpr int senseDriverStatus = 0x08;
constexpr int timeOutHostStatus = 0x03;

void putStatus(sg_io_hdr& header, int status, const QByteArray& sense)
{
    header.status = static_cast<unsigned char>(status);
    header.masked_status = static_cast<unsigned char>(status >> 1);
    const auto length = std::min<qsizetype>(sense.size(), header.mx_sb_len);
    std::copy_n(sense.constData(), length, header.sbp);
    header.sb_len_wr = static_cast<unsigned char>(length);
}

void refuse(sg_io_hdr& header, int key, int code, int qualifier)
{
    putStatus(header, checkConditionStatus, fixedSense(key, code, qualifier));
    header.driver_status = senseDriverStatus;
    header.resid = static_cast<int>(header.dxfer_len);
}

// What the drive behind says of a command that failed, in the kernel's words.
void refuseAs(const DriveReply& reply, sg_io_hdr& header)
{
    if (reply.failure == DriveFailure::notReady) {
        refuse(header, 2, 0x3A, 0x00); // no medium
    } else if (reply.failure == DriveFailure::timedOut) {
        header.host_status = timeOutHostStatus;
        header.duration = header.timeout;
        header.resid = static_cast<int>(header.dxfer_len);
    } else {
        refuse(header, 3, 0x11, 0x05); // medium error: unrecovered read error
    }
}

void deliver(sg_io_hdr& header, std::span<const quint8> bytes)
{
    const size_t length = std::min<size_t>(bytes.size(), header.dxfer_len);
    std::copy_n(bytes.data(), length, static_cast<quint8*>(header.dxferp));
    header.resid = static_cast<int>(header.dxfer_len - length);
}

} // namespace

QByteArray fixedSense(int key, int code, int qualifier)
{
    QByteArray sense(18, '\0');
    sense[0] = 0x70;
    sense[2] = static_cast<char>(key);
    sense[7] = 10; // bytes that follow
    sense[12] = static_cast<char>(code);
    sense[13] = static_cast<char>(qualifier);
    return sense;
}

SgIoFault SgIoFault::checkCondition(int key, int code, int qualifier)
{
    SgIoFault fault;
    fault.status = checkConditionStatus;
    fault.driver = senseDriverStatus;
    fault.sense = fixedSense(key, code, qualifier);
    return fault;
}

SgIoFault SgIoFault::hang()
{
    SgIoFault fault;
    fault.host = timeOutHostStatus;
    fault.lastsToTheLimit = true;
    return fault;
}

SgIoFault& SgIoFault::forever()
{
    times = -1;
    return *this;
}

SgIoFault& SgIoFault::only(quint8 commandCode)
{
    opcode = commandCode;
    return *this;
}

SgIoFault& SgIoFault::afterCommands(int count)
{
    after = count;
    return *this;
}

SgIoFault& SgIoFault::whileSo(std::function<bool()> condition)
{
    holds = std::move(condition);
    return forever();
}

SgIoStandIn::SgIoStandIn(QByteArray devicePath, DriveDevice& drive)
    : path(std::move(devicePath)), device(drive)
{
    active = this;
}

SgIoStandIn::~SgIoStandIn()
{
    active = nullptr;
}

int SgIoStandIn::openFiles() const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(files.size());
}

std::optional<SgIoStandIn::Node> SgIoStandIn::nodeOf(int file) const
{
    const std::lock_guard lock(mutex);
    const auto found = std::ranges::find(files, file, &OpenFile::number);
    return found == files.end() ? std::nullopt : std::optional(found->node);
}

std::optional<int> SgIoStandIn::handleOpen(const char* name, int flags)
{
    SgIoStandIn* const self = active;
    if (self && self->path == name)
        return self->openNode(Node::block, flags);
    if (self && !self->genericPath.isEmpty() && self->genericPath == name)
        return self->openNode(Node::generic, flags);
    return std::nullopt;
}

int SgIoStandIn::errorOfOpen(Node node, int flags) const
{
    if (node == Node::generic)
        return openGenericError;
    const bool forWriting = (flags & O_ACCMODE) != O_RDONLY;
    return openError != 0 ? openError : forWriting ? openForWritingError : 0;
}

int SgIoStandIn::openNode(Node node, int flags)
{
    opens.append({node, flags});
    if (const int error = errorOfOpen(node, flags)) {
        errno = error;
        return -1;
    }
    // A real file holds the number, so that nothing else gets it.
    const auto file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, "/dev/null", O_RDONLY | O_CLOEXEC));
    const std::lock_guard lock(mutex);
    files.append({file, node});
    return file;
}

void SgIoStandIn::handleClose(int file)
{
    if (SgIoStandIn* const self = active) {
        const std::lock_guard lock(self->mutex);
        self->files.removeIf([file](const OpenFile& one) { return one.number == file; });
    }
}

std::optional<int> SgIoStandIn::handleRequest(int file, unsigned long code, void* argument)
{
    SgIoStandIn* const self = active;
    const auto node = self ? self->nodeOf(file) : std::nullopt;
    if (!node)
        return std::nullopt;
    return self->request(*node, code, static_cast<sg_io_hdr*>(argument));
}

int SgIoStandIn::request(Node node, unsigned long code, sg_io_hdr* header)
{
    if (code != SG_IO || header->interface_id != 'S') {
        ++otherRequests;
        errno = ENOTTY;
        return -1;
    }
    requests.append({node, QByteArray(reinterpret_cast<const char*>(header->cmdp), header->cmd_len),
                     header->dxfer_direction, header->timeout, header->dxfer_len, header->mx_sb_len});
    if (transferLimit != 0 && header->dxfer_len > transferLimit) {
        errno = EINVAL;
        return -1;
    }
    const auto fault = faultFor(header->cmdp[0]);
    if (fault && fault->requestError != 0) {
        errno = fault->requestError;
        return -1;
    }
    answer(*header);
    if (fault) {
        putStatus(*header, fault->status, fault->sense);
        header->host_status = static_cast<unsigned short>(fault->host);
        header->driver_status = static_cast<unsigned short>(fault->driver);
        header->resid = fault->residue.value_or(header->resid);
        const unsigned least = node == Node::block ? leastBlockTimeOutMs : 0;
        header->duration = fault->lastsToTheLimit ? std::max(header->timeout, least) : fault->duration;
    }
    requests.last().durationMs = header->duration;
    return 0;
}

std::optional<SgIoFault> SgIoStandIn::faultFor(quint8 opcode)
{
    for (SgIoFault& fault : faults) {
        if (fault.times == 0 || (fault.opcode && *fault.opcode != opcode) || (fault.holds && !fault.holds()))
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

void SgIoStandIn::answer(sg_io_hdr& header)
{
    header.status = header.masked_status = header.sb_len_wr = 0;
    header.host_status = header.driver_status = 0;
    header.resid = 0;
    header.duration = 1;
    bool known = false;
    switch (header.cmdp[0]) {
    case 0x00:
        known = testUnitReady(header);
        break;
    case 0x12:
        known = inquiry(header);
        break;
    case 0x43:
        known = readToc(header);
        break;
    case 0x5A:
        known = modeSense(header);
        break;
    case 0xBE:
        known = readCd(header);
        break;
    default:
        break;
    }
    if (!known)
        refuse(header, 5, 0x20, 0x00); // illegal request: no such command
}

bool SgIoStandIn::testUnitReady(sg_io_hdr& header)
{
    if (header.cmd_len != 6)
        return false;
    if (!device.checkVerify().ok)
        refuse(header, 2, 0x3A, 0x00);
    return true;
}

bool SgIoStandIn::readToc(sg_io_hdr& header)
{
    const unsigned char* command = header.cmdp;
    if (header.cmd_len != 10)
        return false;
    if (command[1] != 0x02 || command[2] != 0) {
        refuse(header, 5, 0x24, 0x00);
        return true;
    }
    std::array<quint8, 804> table{};
    if (!device.readToc(table).ok) {
        refuse(header, 2, 0x3A, 0x00);
        return true;
    }
    const size_t entries = table[3] >= table[2] ? size_t{table[3]} - table[2] + 2 : 1;
    const size_t used = announceWholeToc ? table.size() : std::min(table.size(), 4 + entries * 8);
    byteorder::writeBig(table.data(), static_cast<quint16>(used - 2));
    deliver(header, std::span(table).first(std::min<size_t>(used, byteorder::readBig<quint16>(command + 7))));
    return true;
}

bool SgIoStandIn::readCd(sg_io_hdr& header)
{
    const unsigned char* command = header.cmdp;
    if (header.cmd_len != 12)
        return false;
    const bool withC2 = command[9] == 0x12;
    if (command[1] != 0x04 || (command[9] != 0x10 && !withC2) || command[10] != 0 || command[11] != 0) {
        refuse(header, 5, 0x24, 0x00);
        return true;
    }
    const auto lba = byteorder::readBig<quint32>(command + 2);
    const auto count = static_cast<quint32>(command[6] << 16 | command[7] << 8 | command[8]);
    std::vector<quint8> data(size_t{count} * (withC2 ? RAW_PLUS_C2_BYTES : RAW_SECTOR_BYTES));
    const DriveReply reply = withC2 ? device.passThrough({command, 12}, data)
                                    : device.readRaw(lba, count, data, header.timeout == 3000);
    if (reply.ok)
        deliver(header, data);
    else
        refuseAs(reply, header);
    return true;
}

bool SgIoStandIn::inquiry(sg_io_hdr& header)
{
    if (header.cmd_len != 6)
        return false;
    std::array<quint8, 96> data{};
    device.passThrough({header.cmdp, 6}, data);
    const size_t allowed = std::min<size_t>({static_cast<size_t>(inquiryBytes), header.cmdp[4], data.size()});
    deliver(header, std::span(data).first(allowed));
    return true;
}

bool SgIoStandIn::modeSense(sg_io_hdr& header)
{
    if (header.cmd_len != 10)
        return false;
    std::vector<quint8> data(header.dxfer_len);
    const DriveReply reply = device.passThrough({header.cmdp, 10}, data);
    if (reply.ok)
        deliver(header, std::span(data).first(reply.transferred));
    else
        refuse(header, 5, 0x24, 0x00); // illegal request: a field of the command
    return true;
}

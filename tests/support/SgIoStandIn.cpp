#include "support/SgIoStandIn.h"

#include <algorithm>
#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <scsi/sg.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constinit std::atomic<SgIoStandIn*> active = nullptr;

} // namespace

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
    : answers(drive), path(std::move(devicePath))
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

void SgIoStandIn::handleDuplicate(int file, int copy)
{
    SgIoStandIn* const self = active;
    const auto node = self ? self->nodeOf(file) : std::nullopt;
    if (!node || copy < 0)
        return;
    const std::lock_guard lock(self->mutex);
    self->files.append({copy, *node});
}

bool SgIoStandIn::isOpen(int file)
{
    const SgIoStandIn* const self = active;
    return self && self->nodeOf(file);
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
        errno = code == SG_IO ? EINVAL : ENOTTY;
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
    answers.answer(*header);
    if (fault) {
        putScsiStatus(*header, fault->status, fault->sense);
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

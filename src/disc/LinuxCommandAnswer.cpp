#include "disc/LinuxCommandAnswer.h"

#include "disc/SenseData.h"

#include <algorithm>
#include <cerrno>

#include <scsi/sg.h>

namespace {

// The kernel's host and driver status, which no header offers to programs.
constexpr int hostNoConnection = 1;
constexpr int hostTimeOut = 3;
constexpr int hostAbort = 5;
constexpr int hostReset = 8;
constexpr int driverStatusMask = 0x0F; // the upper half is advice
constexpr int driverTimeOut = 6;
constexpr int driverSense = 8; // only says that sense data came

constexpr int statusGood = 0x00;
constexpr int statusCheckCondition = 0x02;
constexpr int statusBusy = 0x08;
constexpr int statusReserved = 0x18;
constexpr int statusQueueFull = 0x28;

int errorOfSense(const SenseData& sense)
{
    switch (sense.key) {
    case notReadyKey:
        return sense.code == noMediumCode ? ENOMEDIUM : EBUSY;
    case illegalRequestKey:
        return EINVAL;
    case unitAttentionKey:
        return EAGAIN;
    default:
        return EIO;
    }
}

CommandRefusal refusalOfSense(const SenseData& sense)
{
    return {errorOfSense(sense), failureOfSense(sense)};
}

CommandRefusal refusalOfHost(int status)
{
    switch (status) {
    case hostNoConnection:
        return {ENODEV, DriveFailure::notReady};
    case hostTimeOut:
        return {ETIMEDOUT, DriveFailure::timedOut};
    case hostAbort:
    case hostReset:
        return {EIO, DriveFailure::timedOut};
    default:
        return {EIO, DriveFailure::unknown};
    }
}

CommandRefusal refusalOfDriver(int status)
{
    return status == driverTimeOut ? CommandRefusal{ETIMEDOUT, DriveFailure::timedOut}
                                   : CommandRefusal{EIO, DriveFailure::unknown};
}

// What lies furthest from the disc is asked first: when the transport failed,
// the rest means nothing.
std::optional<CommandRefusal> judge(const sg_io_hdr& header, const SenseBuffer& senseBytes)
{
    if (header.host_status != 0)
        return refusalOfHost(header.host_status);
    const int driver = header.driver_status & driverStatusMask;
    if (driver != 0 && driver != driverSense)
        return refusalOfDriver(driver);

    const auto sense =
        decodeSense(std::span(senseBytes).first(std::min<size_t>(header.sb_len_wr, senseBytes.size())));
    const int status = header.status != statusGood ? header.status : header.masked_status << 1;
    switch (status) {
    case statusGood:
        if (sense && tellsOfError(*sense))
            return refusalOfSense(*sense);
        return std::nullopt;
    case statusCheckCondition:
        return sense ? refusalOfSense(*sense) : CommandRefusal{EIO, DriveFailure::unknown};
    case statusBusy:
    case statusReserved:
    case statusQueueFull:
        return CommandRefusal{EBUSY, DriveFailure::notReady};
    default:
        return CommandRefusal{EIO, DriveFailure::unknown};
    }
}

} // namespace

std::optional<CommandRefusal> refusalOfAnswer(const sg_io_hdr& header, const SenseBuffer& senseBytes)
{
    auto refusal = judge(header, senseBytes);
    // Some host drivers report a time-out as any other aborted command; the time
    // it took gives it away.
    if (refusal && refusal->failure == DriveFailure::timedOut && header.duration >= header.timeout)
        refusal->errorNumber = ETIMEDOUT;
    return refusal;
}

CommandRefusal refusalOfRequest(int error)
{
    switch (error) {
    case ETIMEDOUT:
        return {error, DriveFailure::timedOut};
    case ENODEV:
    case ENXIO:
    case ENOMEDIUM:
    case EBUSY:
        return {error, DriveFailure::notReady};
    default:
        return {error, DriveFailure::unknown};
    }
}

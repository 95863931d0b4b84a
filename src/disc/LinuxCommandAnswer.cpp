#include "disc/LinuxCommandAnswer.h"

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

struct Sense {
    int key = 0;
    int code = 0;
    int qualifier = 0;
    bool deferred = false; ///< speaks of a command before this one

    bool tells(int wantedCode, int wantedQualifier) const
    {
        return code == wantedCode && qualifier == wantedQualifier;
    }
};

enum SenseKey {
    keyNoSense = 0x0,
    keyRecoveredError = 0x1,
    keyNotReady = 0x2,
    keyMediumError = 0x3,
    keyHardwareError = 0x4,
    keyIllegalRequest = 0x5,
    keyUnitAttention = 0x6,
    keyBlankCheck = 0x8,
    keyAbortedCommand = 0xB
};
constexpr int codeNotReady = 0x04;
constexpr int qualifierBecomingReady = 0x01;
constexpr int codeNoMedium = 0x3A;
constexpr int codeIllegalModeForTrack = 0x64;

std::optional<Sense> decodeSense(const SenseBuffer& bytes, size_t length)
{
    length = std::min(length, bytes.size());
    const auto byteAt = [&](size_t place) { return place < length ? int{bytes[place]} : 0; };
    const int format = bytes[0] & 0x7F;
    const bool fixed = format == 0x70 || format == 0x71;
    const bool descriptors = format == 0x72 || format == 0x73;
    const bool deferred = (format & 1) != 0;
    if (fixed && length >= 3)
        return Sense{bytes[2] & 0x0F, byteAt(12), byteAt(13), deferred};
    if (descriptors && length >= 2)
        return Sense{bytes[1] & 0x0F, byteAt(2), byteAt(3), deferred};
    return std::nullopt;
}

CommandRefusal refusalOfKey(const Sense& sense)
{
    switch (sense.key) {
    case keyNotReady:
        return {sense.code == codeNoMedium ? ENOMEDIUM : EBUSY,
                sense.tells(codeNotReady, qualifierBecomingReady) ? DriveFailure::becomingReady
                                                                  : DriveFailure::notReady};
    case keyMediumError:
    case keyHardwareError:
    case keyBlankCheck:
        return {EIO, DriveFailure::unreadable};
    case keyIllegalRequest:
        return {EINVAL,
                sense.tells(codeIllegalModeForTrack, 0) ? DriveFailure::unreadable : DriveFailure::unknown};
    case keyUnitAttention:
        return {EAGAIN, DriveFailure::notReady};
    case keyAbortedCommand:
        return {EIO, DriveFailure::timedOut};
    default:
        return {EIO, DriveFailure::unknown};
    }
}

CommandRefusal refusalOfSense(const Sense& sense)
{
    CommandRefusal refusal = refusalOfKey(sense);
    if (sense.deferred)
        refusal.failure = DriveFailure::unknown;
    return refusal;
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

    const auto sense = decodeSense(senseBytes, header.sb_len_wr);
    const int status = header.status != statusGood ? header.status : header.masked_status << 1;
    switch (status) {
    case statusGood:
        if (sense && sense->key != keyNoSense && sense->key != keyRecoveredError)
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

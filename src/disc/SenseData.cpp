#include "disc/SenseData.h"

namespace {

constexpr int notReadyCode = 0x04;
constexpr int becomingReadyQualifier = 0x01;
constexpr int illegalModeForTrackCode = 0x64;

} // namespace

std::optional<SenseData> decodeSense(std::span<const quint8> bytes)
{
    const auto byteAt = [&](size_t place) { return place < bytes.size() ? int{bytes[place]} : 0; };
    const int format = byteAt(0) & 0x7F;
    const bool fixed = format == 0x70 || format == 0x71;
    const bool descriptors = format == 0x72 || format == 0x73;
    const bool deferred = (format & 1) != 0;
    if (fixed && bytes.size() >= 3)
        return SenseData{bytes[2] & 0x0F, byteAt(12), byteAt(13), deferred};
    if (descriptors && bytes.size() >= 2)
        return SenseData{bytes[1] & 0x0F, byteAt(2), byteAt(3), deferred};
    return std::nullopt;
}

bool tellsOfError(const SenseData& sense)
{
    return sense.key != noSenseKey && sense.key != recoveredErrorKey;
}

DriveFailure failureOfSense(const SenseData& sense)
{
    if (sense.deferred)
        return DriveFailure::unknown;
    switch (sense.key) {
    case notReadyKey:
        return sense.code == notReadyCode && sense.qualifier == becomingReadyQualifier
                   ? DriveFailure::becomingReady
                   : DriveFailure::notReady;
    case mediumErrorKey:
    case hardwareErrorKey:
    case blankCheckKey:
        return DriveFailure::unreadable;
    case illegalRequestKey:
        return sense.code == illegalModeForTrackCode && sense.qualifier == 0 ? DriveFailure::unreadable
                                                                             : DriveFailure::unknown;
    case unitAttentionKey:
        return DriveFailure::notReady;
    case abortedCommandKey:
        return DriveFailure::timedOut;
    default:
        return DriveFailure::unknown;
    }
}

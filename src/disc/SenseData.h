#pragma once

#include "disc/DriveDevice.h"

#include <optional>
#include <span>

/// What a drive says of a command that it did not carry out without complaint, in
/// the words of the SCSI standard: sense key, additional sense code and qualifier.
struct SenseData {
    int key = 0;
    int code = 0;
    int qualifier = 0;
    bool deferred = false; ///< speaks of a command before this one
};

enum SenseKey {
    noSenseKey = 0x0,
    recoveredErrorKey = 0x1,
    notReadyKey = 0x2,
    mediumErrorKey = 0x3,
    hardwareErrorKey = 0x4,
    illegalRequestKey = 0x5,
    unitAttentionKey = 0x6,
    blankCheckKey = 0x8,
    abortedCommandKey = 0xB
};
inline constexpr int noMediumCode = 0x3A;

/// Decodes both formats, fixed and with descriptors; nothing for any other.
/// @param bytes  as many as the drive wrote
std::optional<SenseData> decodeSense(std::span<const quint8> bytes);

/// Whether it tells of an error at all, rather than of nothing or of one that was mended.
bool tellsOfError(const SenseData& sense);

/// What it means for the sectors that the command asked for.
DriveFailure failureOfSense(const SenseData& sense);

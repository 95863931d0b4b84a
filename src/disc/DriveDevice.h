#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <span>

/// What a failed command says of the sectors that it asked for.
enum class DriveFailure {
    unknown,
    unreadable,    ///< the drive's own word: it cannot read them
    timedOut,      ///< no answer within the time limit, or the command was aborted
    becomingReady, ///< nothing yet: the drive is still looking at its disc
    notReady       ///< nothing: the drive has no disc, is busy with something else, or is gone
};

/// The answer to one command sent to a drive. Anything but a command carried
/// out without complaint is not ok. How much a drive sends is its own affair
/// for some commands, so a caller that needs all of it asks for all of it.
struct DriveReply {
    bool ok = false;
    int errorNumber = 0;    ///< the platform's error, for the debug log; set on a short transfer too
    size_t transferred = 0; ///< bytes that came; a count that was forgotten is a short read
    DriveFailure failure = DriveFailure::unknown; ///< of a reply that is not ok

    bool delivered(size_t wanted) const { return ok && transferred == wanted; }
};

/// What the platform says of a drive without asking the disc.
struct DriveDescriptor {
    QByteArray vendor; ///< Latin-1, as reported, blanks included
    QByteArray product;
    bool usb = false;
};

/// An open optical drive. A platform's implementation carries commands and nothing
/// else: retries, limits and judgement stand above it. One thread at a time.
class DriveDevice {
public:
    virtual ~DriveDevice() = default;

    /// Asks whether a medium is there; the answer is not needed for a read.
    virtual DriveReply checkVerify() = 0;

    /// Fills the table of contents, the unused rest with zeros: length, first and
    /// last track, then 100 entries of 8 bytes with control in byte 1 and the
    /// address as minute, second, frame in bytes 5 to 7.
    virtual DriveReply readToc(std::span<quint8, 804> table) = 0;

    /// Reads whole audio sectors. A read that hangs is cancelled after 3 s when
    /// guarded, which is logged, and fails.
    virtual DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) = 0;

    /// Sends a command block that reads, as it is.
    virtual DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) = 0;

    virtual std::optional<DriveDescriptor> descriptor() = 0;
};

#pragma once

#include "disc/DriveDevice.h"
#include "disc/FarPlace.h"
#include "disc/KnownHoles.h"
#include "disc/SectorRange.h"

#include <QList>

#include <memory>

/// Stands between PhysicalDrive and a drive, so that what is asked for again comes from
/// the disc and not from the drive's memory, and so that a hole is not asked for
/// without end.
///
/// A drive keeps what it has read, and what it reads ahead, in a buffer of up to
/// 8 MiB and gives it again as it was: several reads of a sector are then one.
/// So the sectors whose reading has been given to somebody are remembered, and
/// before one of them is read again the drive is sent far away: once, or to three
/// places, which is what a buffer of three segments needs to forget. A drive that
/// tells of a larger buffer is sent farther; one that tells of a smaller may lie.
///
/// A command that touches a known hole is answered at once with the drive's last
/// word; a seek is cut short in front of it.
class ColdReads : public DriveDevice {
public:
    enum class Effort {
        Once,    ///< one far read: what a disc without a fault may cost
        Thorough ///< three
    };

    explicit ColdReads(std::unique_ptr<DriveDevice> behind);

    DriveReply checkVerify() override { return device->checkVerify(); }
    DriveReply readToc(std::span<quint8, 804> table) override { return device->readToc(table); }
    DriveReply readRaw(quint32 lba, quint32 count, std::span<quint8> data, bool guarded) override;
    DriveReply passThrough(std::span<const quint8> command, std::span<quint8> data) override;
    std::optional<DriveDescriptor> descriptor() override { return device->descriptor(); }

    /// Where far reads may go; without it, no further than sectors have been read.
    void setAudioArea(const SectorRange& area) { audioArea = area; }

    /// The last reading of this sector has been given to somebody who may hold
    /// another one against it.
    void handedOut(quint32 lba);
    /// Whether that holds for one of these sectors since the drive last was far away.
    bool wasHandedOut(quint32 lba, quint32 count) const;
    /// Goes far away if it does; whether it did.
    bool makeCold(quint32 lba, quint32 count, Effort effort);
    /// As makeCold for every sector, on the way to this one; thorough on a disc that
    /// has shown a fault.
    void makeAllCold(quint32 lba);
    /// Goes far away in any case.
    void goFar(quint32 lba, Effort effort);

    KnownHoles& holes() { return knownHoles; }
    const KnownHoles& holes() const { return knownHoles; }

private:
    bool visitPlaces(const SectorRange& area, int places, QList<quint32> from);
    void askForBuffer();
    void learn(quint32 lba, quint32 count, const DriveReply& reply, size_t wanted);

    std::unique_ptr<DriveDevice> device;
    KnownHoles knownHoles;
    DriveReply lastWord{false, 0, 0, DriveFailure::unreadable};
    QList<SectorRange> handed; ///< since the drive was last sent far away
    QList<quint32> unusable;   ///< far places that failed since a trip last reached none
    SectorRange audioArea;
    quint32 highestRead = 0; ///< one past it
    quint32 farEnough = FAR_DISTANCE;
    bool askedForBuffer = false;
    bool inDoubt = false; ///< the disc has shown a fault, or a reading of it has been voted on
    quint32 position = 0; ///< where the last command left the drive
};

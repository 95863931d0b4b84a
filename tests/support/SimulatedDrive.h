#pragma once

#include "disc/DrivePlatform.h"
#include "support/SimulatedDisc.h"
#include "support/SimulatedMechanism.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <optional>

/// A whole drive with a disc in it behind the platform's interface, with a
/// clock that only moves when a command or a sleep takes its time. Without
/// further settings the disc is clean, the drive exact and without a cache.
/// Counts what it is asked for. One thread at a time.
class SimulatedDrive : public DrivePlatform, public SimulatedDisc {
public:
    /// What was asked of the drive, in order.
    struct Command {
        enum Kind { Verify, Toc, Raw, SeekRead, RawWithC2, Inquiry, ModeSense, Sleep } kind;
        quint32 lba = 0;   ///< or milliseconds of a sleep
        quint32 count = 0; ///< sectors
        bool operator==(const Command&) const = default;
    };

    /// What the drive's C2 pointers say of a wrong byte.
    enum class C2 {
        Honest,          ///< a bit for each, and no other
        AllSet,          ///< all bits, always
        NeverSet,        ///< nothing, ever
        Noisy,           ///< a bit for each, and false alarms in some sectors
        PartiallyHonest, ///< some are missed
    };

    QStringList enumerateDrives() override;
    std::unique_ptr<DriveDevice> open(const QString& letter) override;
    qint64 nowNanoseconds() override { return clock; }
    void sleepMilliseconds(int duration) override;

    QString letter = QStringLiteral("/dev/sr0");
    QByteArray vendor = "ACME    ";
    QByteArray product = "DISC READER 9   ";
    bool usb = false;
    int readOffset = 0; ///< stereo frames by which samples come late; what a host corrects by

    bool refusesData =
        true; ///< a read that touches a sector without audio fails; else that sector is silence
    bool c2Available = true; ///< else the command is refused
    C2 c2 = C2::Honest;
    double c2NoiseRate = 0.01; ///< sectors with a false alarm, of Noisy
    double c2MissRate = 0.5;   ///< wrong bytes that are missed, of PartiallyHonest

    SimulatedMechanism mechanism; ///< faults, buffer, speed, seed
    /// What the drive says of its buffer, which need not be true; else it refuses to say.
    std::optional<quint16> announcedKiB;
    /// What a command transfers before a sector that cannot be read reaches the host.
    bool partialTransfers = false;
    /// No command is ended before this time, whatever limit it carries.
    qint64 timeFloor = 0;
    qint64 commandNanoseconds = 1'000'000; ///< virtual time of one command, whatever else it costs
    /// The next reads of sectors fail as often as this.
    int failingReads = 0;
    /// The drive is unplugged after this many commands.
    std::optional<quint64> commandsUntilGone;

    QList<Command> commands;
    qsizetype count(Command::Kind kind) const;
    quint64 commandsSent = 0; ///< without the sleeps
    quint64 sectorsTransferred = 0;

    /// What the disc holds, as far as this drive's host can know it after the
    /// correction of the read offset.
    QByteArray truth(quint32 lba) const { return visibleSector(lba, readOffset); }

private:
    friend class SimulatedDevice;
    bool gone(quint64 commandsBefore) const
    {
        return commandsUntilGone && commandsBefore >= *commandsUntilGone;
    }

    qint64 clock = 0;
};

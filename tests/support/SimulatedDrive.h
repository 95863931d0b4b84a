#pragma once

#include "disc/DrivePlatform.h"

#include <QByteArray>
#include <QList>

#include <memory>

/// One track of a simulated disc.
struct SimulatedTrack {
    quint32 startLba = 0;
    bool isData = false;
};

/// A whole drive with a clean disc in it behind the platform's interface, with
/// a clock that only moves when a command or a sleep takes its time. Counts
/// what it is asked for.
class SimulatedDrive : public DrivePlatform {
public:
    /// What was asked of the drive, in order.
    struct Command {
        enum Kind { Verify, Toc, Raw, SeekRead, RawWithC2, Inquiry, Sleep } kind;
        quint32 lba = 0;   ///< or milliseconds of a sleep
        quint32 count = 0; ///< sectors
        bool operator==(const Command&) const = default;
    };

    QStringList enumerateDrives() override;
    std::unique_ptr<DriveDevice> open(const QString& letter) override;
    qint64 nowNanoseconds() override { return clock; }
    void sleepMilliseconds(int duration) override;

    QString letter = QStringLiteral("/dev/sr0");
    QByteArray audio;               ///< sectors from LBA 0 on; the lead-out follows
    QList<SimulatedTrack> tracks{{0, false}};
    int firstTrackNumber = 1;
    bool c2Available = true;
    QByteArray vendor = "ACME    ";
    QByteArray product = "DISC READER 9   ";
    bool usb = false;
    qint64 commandNanoseconds = 1'000'000; ///< virtual time of one command

    quint32 leadOut() const;
    /// The next reads of sectors fail as often as this.
    int failingReads = 0;

    QList<Command> commands;
    qsizetype count(Command::Kind kind) const;

private:
    friend class SimulatedDevice;
    qint64 clock = 0;
};

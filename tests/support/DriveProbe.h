#pragma once

#include "support/SimulatedDrive.h"

#include <QByteArray>

#include <memory>

/// Sends single commands to a simulated drive, as the platform's code would.
struct DriveProbe {
    struct Answer {
        bool ok = false;
        int error = 0;
        QByteArray audio;    ///< whatever came, zeros behind it
        QByteArray pointers; ///< C2 blocks
    };

    explicit DriveProbe(SimulatedDrive& drive) : device(drive.open(drive.letter)) {}

    Answer read(quint32 lba, quint32 count = 1, bool guarded = true);
    Answer readWithC2(quint32 lba, quint32 count = 1);

    std::unique_ptr<DriveDevice> device;
};

/// Bits that are set.
int bitsIn(const QByteArray& bytes);
/// Places at which two blocks differ.
int differencesBetween(const QByteArray& one, const QByteArray& other);

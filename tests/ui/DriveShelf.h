#pragma once

#include "support/SimulatedDrive.h"

#include <QStringList>

#include <functional>

/// A simulated drive that can be unplugged.
class DriveShelf : public SimulatedDrive {
public:
    QStringList enumerateDrives() override { return letters; }
    qint64 nowNanoseconds() override
    {
        if (onClock)
            onClock();
        return SimulatedDrive::nowNanoseconds();
    }

    QStringList letters;
    /// Called whenever a read is timed, on the thread that reads.
    std::function<void()> onClock;
};

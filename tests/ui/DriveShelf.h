#pragma once

#include "support/SimulatedDrive.h"

#include <QStringList>

#include <functional>

/// A simulated drive under the letters that a test lists.
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

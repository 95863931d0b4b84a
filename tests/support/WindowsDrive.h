#pragma once

#include "disc/DiscModel.h"
#include "disc/WindowsDrivePlatform.h"
#include "support/DiscMaker.h"
#include "support/SimulatedDrive.h"
#include "support/WindowsDriveStandIn.h"

#include <gtest/gtest.h>

/// The machine's platform with a clock that only its sleeps turn.
class SteppedWindowsPlatform : public WindowsDrivePlatform {
public:
    qint64 nowNanoseconds() override { return clock; }
    void sleepMilliseconds(int duration) override
    {
        sleeps.append(duration);
        clock += qint64{duration} * 1'000'000;
    }

    QList<int> sleeps;

private:
    qint64 clock = 0;
};

/// A simulated drive under the machine's own platform: the disc answers through
/// the stand-in for the operating system's calls.
class WindowsDrive : public ::testing::Test {
protected:
    using Code = WindowsDriveStandIn::Code;
    static inline const QString letter = QStringLiteral("T:");

    WindowsDrive() { simulated.audio = makeAudio(2000, 21); }

    QByteArray truth(quint32 lba, quint32 count = 1) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, qsizetype{count} * RAW_SECTOR_BYTES);
    }

    SimulatedDrive simulated;
    std::unique_ptr<DriveDevice> mechanism = simulated.open(simulated.letter);
    WindowsDriveStandIn system{letter, *mechanism};
    SteppedWindowsPlatform platform;
};

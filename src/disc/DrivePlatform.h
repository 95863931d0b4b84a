#pragma once

#include "base/ServiceOverride.h"
#include "disc/DriveDevice.h"

#include <QString>
#include <QStringList>

#include <memory>

/// The machine's optical drives, its clock and its sleep.
class DrivePlatform {
public:
    virtual ~DrivePlatform() = default;

    virtual QStringList enumerateDrives() = 0;
    /// Null when the drive cannot be opened.
    virtual std::unique_ptr<DriveDevice> open(const QString& letter) = 0;
    virtual qint64 nowNanoseconds() = 0; ///< monotonic
    virtual void sleepMilliseconds(int duration) = 0;
};

/// The platform in use; the machine's own unless a test has put another there.
DrivePlatform& drivePlatform();

/// Puts another platform in place for its lifetime; before any drive is opened.
using DrivePlatformOverride = ServiceOverride<DrivePlatform>;

/// The platform of the machine this was built for.
std::unique_ptr<DrivePlatform> makeDrivePlatform();

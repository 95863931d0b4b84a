#include "support/PlatformDrive.h"

#include "disc/WindowsDrivePlatform.h"
#include "support/SimulatedDrive.h"
#include "support/WindowsDriveStandIn.h"

namespace {

class ClockedPlatform : public WindowsDrivePlatform {
public:
    explicit ClockedPlatform(SimulatedDrive& clock) : drive(clock) {}

    qint64 nowNanoseconds() override { return drive.nowNanoseconds(); }
    void sleepMilliseconds(int duration) override { drive.sleepMilliseconds(duration); }

private:
    SimulatedDrive& drive;
};

} // namespace

class PlatformDrive::Machine {
public:
    explicit Machine(SimulatedDrive& drive) : mechanism(drive.open(drive.letter)), platform(drive) {}

private:
    const std::unique_ptr<DriveDevice> mechanism;
    WindowsDriveStandIn system{QStringLiteral("T:"), *mechanism};
    ClockedPlatform platform;
    const DrivePlatformOverride override{platform};
};

PlatformDrive::PlatformDrive(SimulatedDrive& drive) : machine(std::make_unique<Machine>(drive)) {}

PlatformDrive::~PlatformDrive() = default;

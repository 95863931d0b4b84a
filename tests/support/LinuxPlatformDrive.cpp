#include "support/PlatformDrive.h"

#include "disc/LinuxDrivePlatform.h"
#include "support/SgIoStandIn.h"
#include "support/SimulatedDrive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace {

class ClockedPlatform : public LinuxDrivePlatform {
public:
    ClockedPlatform(SimulatedDrive& clock, const QString& list, const QString& root)
        : LinuxDrivePlatform(list, root), drive(clock)
    {
    }

    qint64 nowNanoseconds() override { return drive.nowNanoseconds(); }
    void sleepMilliseconds(int duration) override { drive.sleepMilliseconds(duration); }

private:
    SimulatedDrive& drive;
};

} // namespace

class PlatformDrive::Machine {
public:
    explicit Machine(SimulatedDrive& drive)
        : mechanism(drive.open(drive.letter)), platform(drive, list(), sys())
    {
        QFile file(list());
        if (file.open(QIODevice::WriteOnly))
            file.write("drive name:\t\tstood-in-sr0\n");
        const QString block = sys() + (drive.usb ? QStringLiteral("/usb1/sr") : QStringLiteral("/ata1/sr"));
        const QString classes = sys() + QStringLiteral("/class/block");
        QDir().mkpath(block + QStringLiteral("/device/scsi_generic/sg-stood-in"));
        QDir().mkpath(classes);
        QFile::link(block, classes + QStringLiteral("/stood-in-sr0"));
        system.genericPath = "/dev/sg-stood-in";
    }

private:
    QString list() const { return folder.filePath(QStringLiteral("info")); }
    QString sys() const { return folder.filePath(QStringLiteral("sys")); }

    const QTemporaryDir folder;
    const std::unique_ptr<DriveDevice> mechanism;
    SgIoStandIn system{"/dev/stood-in-sr0", *mechanism};
    ClockedPlatform platform;
    const DrivePlatformOverride override{platform};
};

PlatformDrive::PlatformDrive(SimulatedDrive& drive) : machine(std::make_unique<Machine>(drive)) {}

PlatformDrive::~PlatformDrive() = default;

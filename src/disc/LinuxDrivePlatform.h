#pragma once

#include "disc/DrivePlatform.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Device paths of the names on the "drive name:" line of the kernel's list of
/// optical drives, sorted. A list without that line has none.
QStringList drivesInKernelList(const QByteArray& list);

/// The optical drives that the kernel lists; the letter of a drive is its
/// device path.
class LinuxDrivePlatform : public DrivePlatform {
public:
    /// @param driveList  the kernel's list of optical drives
    /// @param sysRoot    where the kernel's tree of devices is mounted
    explicit LinuxDrivePlatform(QString driveList = QStringLiteral("/proc/sys/dev/cdrom/info"),
                                QString sysRoot = QStringLiteral("/sys"));

    QStringList enumerateDrives() override;
    std::unique_ptr<DriveDevice> open(const QString& letter) override;
    qint64 nowNanoseconds() override;
    void sleepMilliseconds(int duration) override;

private:
    QString driveList;
    QString sysRoot;
};

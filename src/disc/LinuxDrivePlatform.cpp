#include "disc/LinuxDrivePlatform.h"

#include "disc/DrivePlatform.h"

#include <QFile>

#include <chrono>
#include <thread>

namespace {

class LinuxDrivePlatform : public DrivePlatform {
public:
    QStringList enumerateDrives() override
    {
        QFile list(QStringLiteral("/proc/sys/dev/cdrom/info"));
        return list.open(QIODevice::ReadOnly) ? drivesInKernelList(list.readAll()) : QStringList();
    }

    // Commands to a drive are not carried on this platform yet, so no drive opens.
    std::unique_ptr<DriveDevice> open(const QString&) override { return nullptr; }

    qint64 nowNanoseconds() override
    {
        return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    }

    void sleepMilliseconds(int duration) override
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(duration));
    }
};

} // namespace

QStringList drivesInKernelList(const QByteArray& list)
{
    QStringList drives;
    for (const QByteArray& line : list.split('\n')) {
        if (!line.startsWith("drive name:"))
            continue;
        for (const QByteArray& name : line.mid(line.indexOf(':') + 1).simplified().split(' ')) {
            if (!name.isEmpty())
                drives.append(QStringLiteral("/dev/") + QString::fromUtf8(name));
        }
    }
    drives.sort();
    return drives;
}

std::unique_ptr<DrivePlatform> makeDrivePlatform()
{
    return std::make_unique<LinuxDrivePlatform>();
}

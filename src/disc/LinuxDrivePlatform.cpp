#include "disc/LinuxDrivePlatform.h"

#include "disc/LinuxDriveDevice.h"

#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <thread>

#include <fcntl.h>

namespace {

// Without O_NONBLOCK the kernel waits for a disc and closes the tray.
FileDescriptor openDrive(const QByteArray& path)
{
    FileDescriptor file(::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
    if (!file.isOpen())
        file = FileDescriptor(::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    return file;
}

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

LinuxDrivePlatform::LinuxDrivePlatform(QString list, QString root)
    : driveList(std::move(list))
    , sysRoot(std::move(root))
{
}

QStringList LinuxDrivePlatform::enumerateDrives()
{
    QFile list(driveList);
    return list.open(QIODevice::ReadOnly) ? drivesInKernelList(list.readAll()) : QStringList();
}

std::unique_ptr<DriveDevice> LinuxDrivePlatform::open(const QString& letter)
{
    FileDescriptor file = openDrive(QFile::encodeName(letter));
    if (!file.isOpen())
        return nullptr;
    const QString blockFolder = sysRoot + QStringLiteral("/class/block/") + QFileInfo(letter).fileName();
    return std::make_unique<LinuxDriveDevice>(std::move(file), blockFolder);
}

qint64 LinuxDrivePlatform::nowNanoseconds()
{
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void LinuxDrivePlatform::sleepMilliseconds(int duration)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(duration));
}

std::unique_ptr<DrivePlatform> makeDrivePlatform()
{
    return std::make_unique<LinuxDrivePlatform>();
}

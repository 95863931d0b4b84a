#include "disc/LinuxDrivePlatform.h"

#include "disc/DriveTimeOut.h"
#include "disc/LinuxDriveDevice.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>

namespace {

FileDescriptor openNode(const QString& path, int access)
{
    // Without O_NONBLOCK the kernel waits for a disc and closes the tray.
    return FileDescriptor(::open(QFile::encodeName(path).constData(), access | O_NONBLOCK | O_CLOEXEC));
}

FileDescriptor openBlockNode(const QString& path)
{
    FileDescriptor file = openNode(path, O_RDWR);
    return file.isOpen() ? std::move(file) : openNode(path, O_RDONLY);
}

// Empty for a drive without one.
QString genericNodeOf(const QString& blockFolder)
{
    const QStringList names = QDir(blockFolder + QStringLiteral("/device/scsi_generic"))
                                  .entryList({QStringLiteral("sg*")}, QDir::Dirs | QDir::NoDotAndDotDot);
    return names.isEmpty() ? QString() : QStringLiteral("/dev/") + names.first();
}

// A refused generic node costs time alone, so it is no failure.
FileDescriptor openGenericNode(const QString& letter, const QString& path)
{
    FileDescriptor file;
    QString choice = QStringLiteral("no generic node, commands go through the block node");
    if (!path.isEmpty()) {
        file = openNode(path, O_RDWR);
        const int error = errno;
        choice = QStringLiteral("commands go through ") + path;
        if (!file.isOpen())
            choice = QStringLiteral("cannot open %1 (error %2), commands go through the block node")
                         .arg(path)
                         .arg(error);
    }
    qDebug().noquote().nospace() << "[CdDrive] " << letter << ": " << choice
                                 << "; the kernel cancels a read that hangs after "
                                 << (file.isOpen() ? driveTimeOutMs : leastBlockTimeOutMs) << " ms";
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
    : driveList(std::move(list)), sysRoot(std::move(root))
{
}

QStringList LinuxDrivePlatform::enumerateDrives()
{
    QFile list(driveList);
    return list.open(QIODevice::ReadOnly) ? drivesInKernelList(list.readAll()) : QStringList();
}

std::unique_ptr<DriveDevice> LinuxDrivePlatform::open(const QString& letter)
{
    DriveNodes nodes{openBlockNode(letter), {}};
    if (!nodes.block.isOpen())
        return nullptr;
    const QString blockFolder = sysRoot + QStringLiteral("/class/block/") + QFileInfo(letter).fileName();
    nodes.generic = openGenericNode(letter, genericNodeOf(blockFolder));
    return std::make_unique<LinuxDriveDevice>(std::move(nodes), blockFolder);
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

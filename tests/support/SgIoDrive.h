#pragma once

#include "disc/LinuxDrivePlatform.h"
#include "support/DiscMaker.h"
#include "support/SgIoStandIn.h"
#include "support/SimulatedDrive.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// The machine's platform on a tree of files of its own, with a clock that only
/// its sleeps turn.
class SteppedLinuxPlatform : public LinuxDrivePlatform {
public:
    using LinuxDrivePlatform::LinuxDrivePlatform;

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
class SgIoDrive : public ::testing::Test {
protected:
    static inline const QString devicePath = QStringLiteral("/dev/stood-in-sr0");

    SgIoDrive() { simulated.audio = makeAudio(2000, 21); }

    QByteArray truth(quint32 lba, quint32 count = 1) const
    {
        return simulated.audio.mid(qsizetype{lba} * RAW_SECTOR_BYTES, qsizetype{count} * RAW_SECTOR_BYTES);
    }

    QString sysRoot() const { return folder.filePath(QStringLiteral("sys")); }

    QString sysEntry() const { return sysRoot() + QStringLiteral("/class/block/stood-in-sr0"); }

    /// Puts the kernel's entry of the drive into the tree, below a path of devices.
    void makeSysEntry(const QString& devices = QStringLiteral("devices/pci0000:00/host0"),
                      const QByteArray& vendor = "V\n", const QByteArray& model = "P\n") const
    {
        const QString block = sysRoot() + u'/' + devices + QStringLiteral("/block/stood-in-sr0");
        ASSERT_TRUE(QDir().mkpath(block + QStringLiteral("/device")));
        ASSERT_TRUE(QDir().mkpath(block + QStringLiteral("/queue")));
        ASSERT_TRUE(QDir().mkpath(sysRoot() + QStringLiteral("/class/block")));
        writeFile(block + QStringLiteral("/device"), QStringLiteral("vendor"), vendor);
        writeFile(block + QStringLiteral("/device"), QStringLiteral("model"), model);
        ASSERT_TRUE(QFile::link(block, sysEntry()));
    }

    /// Gives the drive of the entry a generic node.
    void makeGenericNode()
    {
        ASSERT_TRUE(QDir().mkpath(sysEntry() + QStringLiteral("/device/scsi_generic/sg-stood-in")));
        system.genericPath = "/dev/sg-stood-in";
    }

    /// Lets the kernel take so much in one request, and say so.
    void limitTransfers(size_t kibibytes)
    {
        writeFile(sysEntry() + QStringLiteral("/queue"), QStringLiteral("max_hw_sectors_kb"),
                  QByteArray::number(kibibytes) + '\n');
        system.transferLimit = kibibytes * 1024;
    }

    QTemporaryDir folder;
    SimulatedDrive simulated;
    std::unique_ptr<DriveDevice> mechanism = simulated.open(simulated.letter);
    SgIoStandIn system{devicePath.toUtf8(), *mechanism};
    SteppedLinuxPlatform platform{folder.filePath(QStringLiteral("info")), sysRoot()};
};

#include "disc/CdDrive.h"

#include "disc/CueDisc.h"
#include "disc/DrivePlatform.h"
#include "disc/ImageSource.h"
#include "disc/PhysicalDrive.h"

#include <QDebug>
#include <QFileInfo>

#include <utility>

CdDrive::CdDrive() = default;

CdDrive::~CdDrive() = default;

QStringList CdDrive::enumerateDrives()
{
    return drivePlatform().enumerateDrives();
}

bool CdDrive::open(const QString& letter)
{
    if (isBorrowed())
        return false;
    close();
    image = false;
    figures.c2Errors = 0;
    auto opened = drivePlatform().open(letter);
    if (!opened) {
        qWarning().noquote() << "CdDrive: cannot open" << letter;
        return false;
    }
    source = std::make_unique<PhysicalDrive>(std::move(opened));
    driveName = letter;
    return true;
}

bool CdDrive::openCue(const QString& path)
{
    if (isBorrowed())
        return false;
    close();
    image = true;
    auto opened = std::make_unique<ImageSource>(path);
    const bool whole = opened->isOpen();
    source = std::move(opened);
    if (whole)
        driveName = QFileInfo(path).fileName();
    return whole;
}

bool CdDrive::borrow()
{
    Lease expected = Lease::none;
    return lease.compare_exchange_strong(expected, Lease::borrowed);
}

void CdDrive::giveBack()
{
    Lease expected = Lease::borrowed;
    if (lease.compare_exchange_strong(expected, Lease::none))
        return;
    if (expected == Lease::closeOnReturn) {
        release();
        lease = Lease::none;
    }
}

void CdDrive::close()
{
    Lease expected = Lease::borrowed;
    if (lease.compare_exchange_strong(expected, Lease::closeOnReturn) || expected == Lease::closeOnReturn)
        return;
    release();
}

void CdDrive::release()
{
    source.reset();
}

DiscToc CdDrive::parseCue(const QString& path)
{
    return readCueDisc(path);
}

DiscToc CdDrive::readToc()
{
    return source ? source->readToc(failureOfLastToc) : DiscToc();
}

QByteArray CdDrive::readSector(quint32 lba)
{
    QByteArray sector = source ? source->readSector(lba, ReadPurpose::judged) : QByteArray();
    takeFigures();
    return sector;
}

QByteArray CdDrive::readSectorUnjudged(quint32 lba)
{
    QByteArray sector = source ? source->readSector(lba, ReadPurpose::unjudged) : QByteArray();
    takeFigures();
    return sector;
}

QByteArray CdDrive::readSectorFresh(quint32 lba)
{
    QByteArray sector = source ? source->readSectorFresh(lba) : QByteArray();
    takeFigures();
    return sector;
}

void CdDrive::flushDriveCache(quint32 lba)
{
    if (source)
        source->flushCache(lba);
    takeFigures();
}

// An image leaves those of the drive before it alone.
void CdDrive::takeFigures()
{
    if (image)
        return;
    figures = source ? *source->figures() : ReadFigures();
}

bool CdDrive::probeC2(quint32 lba)
{
    return source && source->probeC2(lba);
}

void CdDrive::setC2Enabled(bool on)
{
    if (source)
        source->setC2Enabled(on);
}

bool CdDrive::c2Enabled() const
{
    return source && source->c2Enabled();
}

bool CdDrive::isUsb()
{
    return source && source->isUsb();
}

QString CdDrive::queryModel()
{
    return source ? source->queryModel() : QString();
}

// Reads a disc as the program does, through the machine's own platform, and says what
// it found: the drives, the model, the bus, the tracks, a sector's digest, and how long
// the reads took by this thread's clock.

#include "disc/CdDrive.h"
#include "disc/DrivePlatform.h"

#include <QCryptographicHash>
#include <QTextStream>

int main(int, char** argv)
{
    QTextStream out(stdout);
    out << "drives " << CdDrive::enumerateDrives().join(u' ') << '\n';
    CdDrive drive;
    if (!drive.open(QStringLiteral("/dev/sr0")))
        return 1;
    const DiscToc disc = drive.readToc();
    out << "model " << drive.queryModel() << '\n' << "usb " << (drive.isUsb() ? 1 : 0) << '\n' << "tracks";
    for (const TrackInfo& track : disc.tracks)
        out << ' ' << track.startLba;
    const auto lba = QByteArray(argv[1]).toUInt();
    const qint64 before = drivePlatform().nowNanoseconds();
    const QByteArray sector = drive.readSector(lba);
    const qint64 passed = drivePlatform().nowNanoseconds() - before;
    out << "\nsector " << QCryptographicHash::hash(sector, QCryptographicHash::Sha1).toHex() << '\n'
        << "milliseconds " << passed / 1'000'000 << '\n';
    return 0;
}

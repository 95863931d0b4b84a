#include "disc/DriveTimeOut.h"

#include <QDebug>

void logUnresponsiveSector(quint32 lba)
{
    qWarning() << "[CdDrive] Sector" << lba << "unresponsive after" << driveTimeOutMs << "ms, cancelling I/O";
}

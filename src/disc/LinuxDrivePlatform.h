#pragma once

#include <QByteArray>
#include <QStringList>

/// Device paths of the names on the "drive name:" line of the kernel's list of
/// optical drives, sorted. A list without that line has none.
QStringList drivesInKernelList(const QByteArray& list);
